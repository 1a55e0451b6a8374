#include "ui/views/CTNInFilePropPage.h"

#include "ui/controls/DisplayText.h"
#include "ui/controls/Icons.h"
#include "ui/controls/Mnemonic.h"
#include "ui/views/ColourLegend.h"

#include <QAction>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace bomparser {
namespace {

/// A line to filter by: Escape empties it before it means anything to the dialog, and Return goes
/// on to the list.
class FilterEdit final : public QLineEdit {
 public:
  explicit FilterEdit(QWidget& list) : m_list(list) {}

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    switch (event->key()) {
      case Qt::Key_Escape:
        if (text().isEmpty()) break;
        clear();
        event->accept();
        return;
      case Qt::Key_Return:
      case Qt::Key_Enter:
      case Qt::Key_Down:
        m_list.setFocus(Qt::OtherFocusReason);
        event->accept();
        return;
      default:
        break;
    }
    QLineEdit::keyPressEvent(event);
  }

 private:
  QWidget& m_list;
};

QPushButton* MakeSearchButton(Ctrl number, Msg text, char letter, const QString& key) {
  auto* const button = new QPushButton(WithMnemonic(text, letter));
  SetControlId(*button, number);
  button->setAutoDefault(false);
  button->setToolTip(MessageText(text) + QStringLiteral(" (%1)").arg(key));
  button->setAccessibleName(MessageText(text));
  return button;
}

}  // namespace

CTNInFilePropPage::CTNInFilePropPage(QWidget* parent)
    : CTNPropPage(parent), m_list(new CTNParserInFileListCtrl(this)) {
  SetDialogId(*this, DialogId::InputFilePage);
  auto* const rows = new QVBoxLayout(this);
  rows->addWidget(MakeFilterRow());
  rows->addWidget(m_list, 1);
  rows->addWidget(MakeSwitchRow());
  rows->addWidget(MakeStateRow());
  AddKeys();

  const CTNParserInFileModel& model = m_list->GetModel();
  connect(&model, &CTNParserInFileModel::modelReset, this, &CTNInFilePropPage::ShowCounts);
  connect(&model, &CTNParserInFileModel::rowsInserted, this, &CTNInFilePropPage::ShowCounts);
  connect(&model, &CTNParserInFileModel::ScanBegun, this, &CTNInFilePropPage::ShowCounts);
  connect(&model, &CTNParserInFileModel::ScanEnded, this, &CTNInFilePropPage::ShowCounts);
  connect(m_list, &CTNParserInFileListCtrl::UnmatchedSought, this, &CTNInFilePropPage::ShowSearch);
  ShowCounts();
}

// Making the controls.

QWidget* CTNInFilePropPage::MakeFilterRow() {
  auto* const row = new QWidget;
  auto* const layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);

  m_filter = new FilterEdit(*m_list);
  SetControlId(*m_filter, Ctrl::FilterText);
  m_filter->setPlaceholderText(MessageText(Msg::FilterHint));
  m_filter->setAccessibleName(MessageText(Msg::FilterLabel).remove(u':'));
  m_filter->setClearButtonEnabled(true);
  m_errorMark = m_filter->addAction(Icon(IconId::Invalid), QLineEdit::LeadingPosition);
  m_errorMark->setVisible(false);
  auto* const label = new QLabel(WithMnemonic(Msg::FilterLabel, 'F'));
  label->setBuddy(m_filter);

  m_isExpression = new QCheckBox(WithMnemonic(Msg::FilterIsExpression, 'R'));
  SetControlId(*m_isExpression, Ctrl::FilterIsExpression);
  m_isExpression->setAccessibleName(MessageText(Msg::FilterIsExpression));
  QPushButton* const previous = MakeSearchButton(Ctrl::PreviousUnmatched, Msg::PreviousUnmatched,
                                                 'P', QStringLiteral("Shift+F8"));
  QPushButton* const next =
      MakeSearchButton(Ctrl::NextUnmatched, Msg::NextUnmatched, 'N', QStringLiteral("F8"));

  layout->addWidget(label);
  layout->addWidget(m_filter, 1);
  layout->addWidget(m_isExpression);
  layout->addWidget(previous);
  layout->addWidget(next);
  connect(m_filter, &QLineEdit::textChanged, this, &CTNInFilePropPage::OnFilterChanged);
  connect(m_isExpression, &QCheckBox::toggled, this, &CTNInFilePropPage::OnFilterChanged);
  connect(previous, &QPushButton::clicked, m_list,
          [this] { m_list->GoToUnmatched(SearchDirection::Up); });
  connect(next, &QPushButton::clicked, m_list,
          [this] { m_list->GoToUnmatched(SearchDirection::Down); });
  return row;
}

QCheckBox* CTNInFilePropPage::MakeKindSwitch(Ctrl number, Msg text, char letter,
                                             std::uint32_t kind) {
  auto* const box = new QCheckBox(WithMnemonic(text, letter));
  SetControlId(*box, number);
  box->setAccessibleName(MessageText(text));
  box->setChecked((m_kinds & kind) != 0);
  connect(box, &QCheckBox::clicked, this, [this, kind](bool checked) {
    m_kinds = checked ? m_kinds | kind : m_kinds & ~kind;
    emit DisplayOptionsChanged();
  });
  return box;
}

QCheckBox* CTNInFilePropPage::MakeSwitch(Ctrl number, Msg text, char letter, bool& state) {
  auto* const box = new QCheckBox(WithMnemonic(text, letter));
  SetControlId(*box, number);
  box->setAccessibleName(MessageText(text));
  box->setChecked(state);
  connect(box, &QCheckBox::clicked, this, [this, &state](bool checked) {
    state = checked;
    emit DisplayOptionsChanged();
  });
  return box;
}

QWidget* CTNInFilePropPage::MakeSwitchRow() {
  auto* const row = new QWidget;
  auto* const layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(
      MakeKindSwitch(Ctrl::ShowEntityBlocks, Msg::ShowEntityBlocks, 'B', kShowEntities));
  layout->addWidget(
      MakeKindSwitch(Ctrl::ShowAuxiliaryBlocks, Msg::ShowAuxiliaryBlocks, 'k', kShowAuxiliary));
  layout->addWidget(MakeKindSwitch(Ctrl::ShowUnmatched, Msg::UnmatchedBlock, 'a', kShowUnmatched));
  layout->addWidget(MakeKindSwitch(Ctrl::ShowIgnored, Msg::IgnoredBlock, 'I', kShowIgnored));
  layout->addWidget(MakeSwitch(Ctrl::ShowNewlines, Msg::ShowNewlines, 'w', m_newlines));
  layout->addWidget(MakeSwitch(Ctrl::ShowDataFieldInfo, Msg::ShowDataFieldInfo, 'I', m_markup));
  layout->addStretch(1);
  return row;
}

QWidget* CTNInFilePropPage::MakeStateRow() {
  auto* const row = new QWidget;
  auto* const layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  m_status = new QLabel;
  SetControlId(*m_status, Ctrl::FilterStatus);
  m_status->setTextFormat(Qt::PlainText);
  m_status->setTextInteractionFlags(Qt::NoTextInteraction);
  // A long text is cut rather than making the page wider.
  m_status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  layout->addWidget(new ColourLegend);
  layout->addWidget(m_status, 1);
  return row;
}

void CTNInFilePropPage::AddKeys() {
  const auto add = [this](const QKeySequence& key, auto work) {
    auto* const action = new QAction(this);
    action->setShortcut(key);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(action, &QAction::triggered, this, work);
    addAction(action);
    return action;
  };
  add(QKeySequence::Find, [this] {
    m_filter->setFocus(Qt::ShortcutFocusReason);
    m_filter->selectAll();
  });
  SetCommandId(*add(Qt::Key_F8, [this] { m_list->GoToUnmatched(SearchDirection::Down); }),
               Cmd::NextUnmatched);
  SetCommandId(*add(Qt::SHIFT | Qt::Key_F8, [this] { m_list->GoToUnmatched(SearchDirection::Up); }),
               Cmd::PreviousUnmatched);
}

// What they do.

void CTNInFilePropPage::ApplyDisplayOptions() {
  m_list->SetShowFlags(m_kinds);
  m_list->SetShowNewlines(m_newlines);
  m_list->SetShowMarkup(m_markup);
  m_list->Fill();
}

void CTNInFilePropPage::OnFilterChanged() {
  const RowFilter filter(m_filter->text(), m_isExpression->isChecked() ? RowFilter::Kind::Expression
                                                                       : RowFilter::Kind::Text);
  const QString error = filter.GetError();
  ShowFilterError(error);
  if (!error.isEmpty()) return;  // The list stays as it was.
  m_list->SetFilter(filter);
  m_list->Fill();
}

void CTNInFilePropPage::ShowFilterError(const QString& error) {
  const bool isWrong = !error.isEmpty();
  QPalette colours;
  if (isWrong) {
    colours.setColor(QPalette::Base, QColor(255, 214, 214));
    colours.setColor(QPalette::Text, Qt::black);
  }
  m_filter->setPalette(colours);
  m_filter->setToolTip(error);
  m_filter->setAccessibleDescription(error);
  m_errorMark->setVisible(isWrong);
  m_errorMark->setToolTip(error);
  if (isWrong) {
    m_status->setText(error);
  } else {
    ShowCounts();
  }
}

void CTNInFilePropPage::ShowCounts() {
  if (m_errorMark->isVisible()) return;  // Why the filter is none is of more use.
  const CTNParserInFileModel& model = m_list->GetModel();
  const bool searching = model.HasFilter() && model.IsScanning();
  m_status->setText(ToDisplayText(
      searching ? FormatMessageText(Msg::SearchingLines, model.rowCount())
                : FormatMessageText(Msg::LinesShown, model.rowCount(), model.GetLineCount())));
}

void CTNInFilePropPage::ShowSearch(UnmatchedFound found, SearchDirection direction) {
  switch (found) {
    case UnmatchedFound::None:
      m_status->setText(MessageText(Msg::NoUnmatchedShown));
      return;
    case UnmatchedFound::WentRound:
      m_status->setText(
          MessageText(direction == SearchDirection::Down ? Msg::WentOnAtTop : Msg::WentOnAtBottom));
      return;
    case UnmatchedFound::Ahead:
      ShowCounts();
      return;
  }
}

}  // namespace bomparser
