#include "ui/views/CTNTemplateListModel.h"

#include "input/MessageTexts.h"
#include "ui/controls/DisplayText.h"
#include "ui/controls/Icons.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace bomparser {
namespace {

QString StateName(ElementState state) {
  switch (state) {
    case ElementState::Invalid:
      return MessageText(Msg::StateInvalid);
    case ElementState::Note:
      return MessageText(Msg::StateNote);
    case ElementState::Valid:
      break;
  }
  return MessageText(Msg::StateValid);
}

// The status and what the colours say, a line each.
QString HintOf(const CTNTemplateListNode& node) {
  QString hint = ToDisplayText(node.GetStatusText());
  const QString remark = node.GetRemark();
  if (!hint.isEmpty() && !remark.isEmpty()) hint += u'\n';
  return hint + remark;
}

QVariant OrNothing(const QString& text) { return text.isEmpty() ? QVariant() : QVariant(text); }

QVariant OrNothing(const QColor& colour) {
  return colour.isValid() ? QVariant(colour) : QVariant();
}

}  // namespace

CTNTemplateListModel::CTNTemplateListModel(std::vector<Msg> titles, QObject* parent)
    : QAbstractTableModel(parent),
      m_titles(std::move(titles)),
      m_valid(Icon(IconId::Valid)),
      m_note(Icon(IconId::Note)),
      m_invalid(Icon(IconId::Invalid)) {}

const QIcon& CTNTemplateListModel::StateIcon(ElementState state) const {
  switch (state) {
    case ElementState::Invalid:
      return m_invalid;
    case ElementState::Note:
      return m_note;
    case ElementState::Valid:
      break;
  }
  return m_valid;
}

std::shared_ptr<CTNTemplateListNode> CTNTemplateListModel::GetNode(int row) const {
  return row >= 0 && row < rowCount() ? m_nodes[static_cast<std::size_t>(row)] : nullptr;
}

bool CTNTemplateListModel::ShowsSame(const Nodes& nodes) const {
  return std::equal(
      m_nodes.begin(), m_nodes.end(), nodes.begin(), nodes.end(),
      [](const auto& shown, const auto& node) { return shown->GetKey() == node->GetKey(); });
}

void CTNTemplateListModel::Replace(Nodes nodes) {
  beginResetModel();
  m_nodes = std::move(nodes);
  endResetModel();
}

void CTNTemplateListModel::TellChanged() {
  if (m_nodes.empty()) return;
  emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

int CTNTemplateListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_nodes.size());
}

int CTNTemplateListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_titles.size());
}

Qt::ItemFlags CTNTemplateListModel::flags(const QModelIndex& index) const {
  const auto node = GetNode(index.row());
  if (!node) return Qt::NoItemFlags;
  const bool editable = node->IsEditable(index.column());
  return QAbstractTableModel::flags(index) | Qt::ItemIsDragEnabled |
         (editable ? Qt::ItemIsEditable : Qt::NoItemFlags);
}

QVariant CTNTemplateListModel::data(const QModelIndex& index, int role) const {
  if (index.row() < 0 || index.row() >= rowCount()) return {};
  const CTNTemplateListNode& node = *m_nodes[static_cast<std::size_t>(index.row())];
  const int column = index.column();
  switch (role) {
    case Qt::DisplayRole:
      return node.GetText(column);
    case Qt::DecorationRole:
      return column == kStateColumn ? StateIcon(node.GetState()) : QVariant();
    case Qt::BackgroundRole:
      return OrNothing(node.GetColours(column).background);
    case Qt::ForegroundRole:
      return OrNothing(node.GetColours(column).text);
    case Qt::ToolTipRole:
      return OrNothing(AsToolTip(HintOf(node)));
    case Qt::AccessibleTextRole:
      return column == kStateColumn
                 ? QStringLiteral("%1, %2").arg(node.GetText(column), StateName(node.GetState()))
                 : QVariant();
    case Qt::AccessibleDescriptionRole:
      return OrNothing(HintOf(node));
    default:
      return {};
  }
}

QVariant CTNTemplateListModel::headerData(int section, Qt::Orientation orientation,
                                          int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
      section >= columnCount()) {
    return QAbstractTableModel::headerData(section, orientation, role);
  }
  return MessageText(m_titles[static_cast<std::size_t>(section)]).toUpper();
}

}  // namespace bomparser
