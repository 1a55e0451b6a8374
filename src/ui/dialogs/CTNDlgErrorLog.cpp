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
#include <cstddef>
#include <functional>
#include <string>
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

  /// The lines among which the widest is: measuring all of a long log would take seconds.
  std::vector<QString> LongestLines() const {
    constexpr std::size_t kMeasured = 100;
    std::vector<std::size_t> order(m_lines.size());
    for (std::size_t i = 0; i < order.size(); ++i)
      order[i] = i;
    const std::size_t count = std::min(kMeasured, order.size());
    std::ranges::partial_sort(order, order.begin() + static_cast<std::ptrdiff_t>(count),
                              std::greater<>(),
                              [this](std::size_t line) { return m_lines[line].size(); });
    std::vector<QString> longest;
    for (std::size_t i = 0; i < count; ++i)
      longest.push_back(RowText(ToDisplayText(m_lines[order[i]])));
    return longest;
  }

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

int WidestLine(const QTableView& list, const ErrorLinesModel& model) {
  int widest = 0;
  for (const QString& line : model.LongestLines())
    widest = std::max(widest, list.fontMetrics().horizontalAdvance(line));
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
  list->horizontalHeader()->setMinimumSectionSize(WidestLine(*list, *model) + 2 * margin);
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
