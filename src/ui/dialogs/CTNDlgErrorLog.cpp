#include "ui/dialogs/CTNDlgErrorLog.h"

#include "input/CTNParserErrorLog.h"
#include "ui/controls/Ids.h"
#include "ui/controls/Mnemonic.h"

#include <QAbstractTableModel>
#include <QAction>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QHeaderView>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace bomparser {
namespace {

/// A message may hold a line feed; it is one row nevertheless.
QString RowText(QString line) {
  return line.replace(QStringLiteral("\r\n"), QStringLiteral(" ")).replace(u'\n', u' ');
}

class ErrorLinesModel final : public QAbstractTableModel {
 public:
  ErrorLinesModel(std::vector<std::string> lines, QObject* parent)
      : QAbstractTableModel(parent), m_lines(std::move(lines)) {}

  int rowCount(const QModelIndex& parent) const override {
    return parent.isValid() ? 0 : static_cast<int>(m_lines.size());
  }
  int columnCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : 1; }

  QVariant data(const QModelIndex& index, int role) const override {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole)) return {};
    const QString line = ToDisplayText(m_lines[static_cast<std::size_t>(index.row())]);
    return role == Qt::ToolTipRole ? AsToolTip(line) : line;
  }

  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole) return QString();
    return QAbstractTableModel::headerData(section, orientation, role);
  }

  const std::vector<std::string>& GetLines() const { return m_lines; }

 private:
  std::vector<std::string> m_lines;
};

class OneRowDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  QString displayText(const QVariant& value, const QLocale&) const override {
    return RowText(value.toString());
  }
};

/// Nearly how wide a line is painted, without laying it out, which takes a thousand times as long.
class WidthGuess {
 public:
  explicit WidthGuess(const QFontMetrics& metrics) {
    constexpr unsigned kFirstNonAscii = 0x80;
    constexpr unsigned kFirstLead = 0xC0;
    for (unsigned byte = 0; byte < m_ofByte.size(); ++byte) {
      const bool ascii = byte < kFirstNonAscii;
      const bool continues = !ascii && byte < kFirstLead;
      m_ofByte[byte] = continues ? 0
                       : ascii   ? metrics.horizontalAdvance(QChar(static_cast<char16_t>(byte)))
                                 : metrics.maxWidth() / 2;
    }
  }
  int Of(const std::string& line) const {
    return std::accumulate(line.begin(), line.end(), 0, [this](int width, char byte) {
      return width + m_ofByte[static_cast<unsigned char>(byte)];
    });
  }

 private:
  std::array<int, 256> m_ofByte{};
};

int WidestLine(const QTableView& list, const std::vector<std::string>& lines) {
  constexpr std::size_t kMeasured = 100;
  const WidthGuess guess(list.fontMetrics());
  std::vector<std::pair<int, std::size_t>> guesses;
  guesses.reserve(lines.size());
  for (std::size_t i = 0; i < lines.size(); ++i)
    guesses.emplace_back(guess.Of(lines[i]), i);
  const auto count = static_cast<std::ptrdiff_t>(std::min(kMeasured, guesses.size()));
  std::ranges::partial_sort(guesses, guesses.begin() + count, std::greater<>());
  int widest = 0;
  for (auto at = guesses.begin(); at != guesses.begin() + count; ++at) {
    const QString text = RowText(ToDisplayText(lines[at->second]));
    widest = std::max(widest, list.fontMetrics().horizontalAdvance(text));
  }
  return widest;
}

void CopySelectedLines(const QTableView& list) {
  QStringList lines;
  const QAbstractItemModel& model = *list.model();
  for (int row = 0; row < model.rowCount(); ++row) {
    const QModelIndex line = model.index(row, 0);
    if (list.selectionModel()->isSelected(line)) lines += line.data().toString();
  }
  if (!lines.isEmpty()) QGuiApplication::clipboard()->setText(lines.join(u'\n'));
}

void AddCopyCommand(QTableView& list) {
  auto* copy = new QAction(MessageText(Msg::CopyCommand), &list);
  copy->setShortcut(QKeySequence::Copy);
  copy->setShortcutContext(Qt::WidgetShortcut);
  QObject::connect(copy, &QAction::triggered, &list, [&list] { CopySelectedLines(list); });
  list.addAction(copy);
  list.setContextMenuPolicy(Qt::ActionsContextMenu);
}

}  // namespace

CTNDlgErrorLog::CTNDlgErrorLog(const CTNParserErrorLog* log, const QString& mainTitle,
                               QWidget* parent)
    : QDialog(parent) {
  SetDialogId(*this, DialogId::ErrorLog);
  setWindowTitle(mainTitle);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  QPushButton* const close = buttons->button(QDialogButtonBox::Close);
  close->setText(WithMnemonic(Msg::CloseInputFile, 'C'));
  SetControlId(*close, Ctrl::Cancel);
  connect(buttons, &QDialogButtonBox::rejected, this, &CTNDlgErrorLog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(BuildList(log));
  layout->addWidget(buttons);
  close->setDefault(true);  // Has no effect outside a dialog.
}

QTableView* CTNDlgErrorLog::BuildList(const CTNParserErrorLog* log) {
  auto* list = new QTableView;
  auto* model =
      new ErrorLinesModel(log != nullptr ? log->GetAllLines() : std::vector<std::string>(), list);
  SetControlId(*list, Ctrl::ErrorLines);
  list->setAccessibleName(MessageText(Msg::ErrorCaption));
  list->setModel(model);
  list->setItemDelegate(new OneRowDelegate(list));
  list->setEditTriggers(QAbstractItemView::NoEditTriggers);
  list->setSelectionBehavior(QAbstractItemView::SelectRows);
  list->setSelectionMode(QAbstractItemView::ExtendedSelection);
  list->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  list->setShowGrid(false);
  list->setWordWrap(false);
  list->setTabKeyNavigation(false);
  list->verticalHeader()->hide();
  const int margin = list->style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1;
  list->verticalHeader()->setDefaultSectionSize(list->fontMetrics().height() + 2 * margin);
  // As wide as the list, or as the widest line if that is more.
  list->horizontalHeader()->setMinimumSectionSize(WidestLine(*list, model->GetLines()) +
                                                  2 * margin);
  list->horizontalHeader()->setStretchLastSection(true);
  AddCopyCommand(*list);
  if (model->rowCount({}) > 0) list->setCurrentIndex(model->index(0, 0));
  return list;
}

QSize CTNDlgErrorLog::sizeHint() const {
  constexpr int kColumns = 100;
  constexpr int kRows = 18;
  return {fontMetrics().averageCharWidth() * kColumns, fontMetrics().lineSpacing() * kRows};
}

}  // namespace bomparser
