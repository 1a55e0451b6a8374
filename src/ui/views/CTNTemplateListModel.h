#pragma once

#include "ui/views/CTNTemplateListNode.h"

#include <QAbstractTableModel>
#include <QIcon>
#include <QVariant>
#include <cstdint>
#include <memory>
#include <vector>

namespace bomparser {

enum class Msg : std::uint32_t;

/// The column of the identifiers, which shows the state as well.
inline constexpr int kStateColumn = 0;

/// The rows of a template list, a node each. Texts, colours and states are asked for when a row is
/// painted, so that an edit needs no refilling.
class CTNTemplateListModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  using Nodes = std::vector<std::shared_ptr<CTNTemplateListNode>>;

  explicit CTNTemplateListModel(std::vector<Msg> titles, QObject* parent = nullptr);

  /// Null for a row that the list does not have.
  std::shared_ptr<CTNTemplateListNode> GetNode(int row) const;
  const Nodes& GetNodes() const { return m_nodes; }
  /// True when these nodes are of the elements that are shown already, in the same order.
  bool ShowsSame(const Nodes& nodes) const;
  /// Shows other elements: the views start over.
  void Replace(Nodes nodes);
  /// Everything shown may have changed.
  void TellChanged();

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  const QIcon& StateIcon(ElementState state) const;

  std::vector<Msg> m_titles;
  Nodes m_nodes;
  // Kept, because they are drawn once for each row otherwise.
  QIcon m_valid;
  QIcon m_note;
  QIcon m_invalid;
};

}  // namespace bomparser
