#pragma once

#include "ui/controls/SearchDirection.h"
#include "ui/controls/ViewedFile.h"

#include <QAbstractListModel>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace bomparser {

/// A large entity list, an entity a row; what stands around the entities has rows of its own. A
/// text that is no such list has its lines as rows. All rows together are the file: what is longer
/// than a row may be goes on in the next.
///
/// The file stays where it is. Per row it is remembered where the row starts; texts are made when
/// they are asked for.
class EntityListModel final : public QAbstractListModel {
  Q_OBJECT

 public:
  /// In bytes.
  static constexpr std::size_t kLongestRow = 2000;

  explicit EntityListModel(QObject* parent = nullptr);

  /// Throws std::bad_alloc; there are no rows then.
  void SetFile(ViewedFile file);
  void Clear();

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role) const override;

  QString GetRowText(int row) const;
  /// The row with most bytes; -1 without rows.
  int GetLongestRow() const { return m_longest; }
  /// The nearest other row with the text, without regard to case: from `row` in the direction, then
  /// from the other end of the list to the row itself. -1 when there is none.
  int Find(int row, const QString& text, SearchDirection direction) const;

 private:
  std::string_view RowBytes(int row) const;
  int RowAt(std::size_t position) const;
  bool HasText(int row, const QString& text) const;
  int FindDown(int first, int last, const QString& text) const;
  int FindUp(int first, int last, const QString& text) const;

  void Forget();
  void CutIntoRows();
  void AddRows(std::size_t start, std::size_t end);
  std::size_t EndOfRow(std::size_t start, std::size_t end) const;

  ViewedFile m_file;
  std::vector<std::uint64_t> m_starts;
  bool m_framed = false;
  int m_longest = -1;
  std::size_t m_longestSize = 0;
};

}  // namespace bomparser
