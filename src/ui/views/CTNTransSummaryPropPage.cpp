#include "ui/views/CTNTransSummaryPropPage.h"

#include "entry/CTNFileParserEngine.h"
#include "ui/controls/CTNUserDialogs.h"
#include "ui/controls/CTNWebBrowser2.h"
#include "ui/controls/DisplayText.h"
#include "ui/controls/Ids.h"
#include "ui/controls/Mnemonic.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QVBoxLayout>
#include <array>
#include <cstdint>
#include <new>
#include <utility>

namespace bomparser {
namespace {

struct Counter {
  Ctrl number;
  Msg label;
  char mnemonic;
  std::uint64_t (*value)(const ApplicationStats& stats);
};

/// The counts of lines, which stand in one column, and those of blocks, which stand beside it.
constexpr std::array<Counter, 7> kCounters = {{
    {Ctrl::TotalLines, Msg::TotalLines, 'F', [](const auto& stats) { return stats.totalLines; }},
    {Ctrl::ParseableLines, Msg::ParseableLines, 'P',
     [](const auto& stats) { return stats.ParseableLines(); }},
    {Ctrl::MatchedLines, Msg::MatchedLines, 'd',
     [](const auto& stats) { return stats.MatchedLines(); }},
    {Ctrl::UnmatchedLines, Msg::UnmatchedLines, 'U',
     [](const auto& stats) { return stats.unmatchedLines; }},
    {Ctrl::TotalBlocks, Msg::TotalBlocks, 'T',
     [](const auto& stats) { return std::uint64_t{stats.MatchedBlocks()}; }},
    {Ctrl::EntityBlocks, Msg::EntityBlocks, 'E',
     [](const auto& stats) { return std::uint64_t{stats.entityBlocks}; }},
    {Ctrl::AuxiliaryBlocks, Msg::AuxiliaryBlocks, 'A',
     [](const auto& stats) { return std::uint64_t{stats.AuxiliaryBlocks()}; }},
}};
constexpr std::size_t kLineCounters = 4;

CTNWebBrowser2* MakeViewer(QWidget* parent) {
  try {
    return new CTNWebBrowser2(parent);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

QLineEdit* MakeCounter(const Counter& counter) {
  constexpr auto kWidestNumber = "0000000000000";
  auto* const edit = new QLineEdit(QString::number(0));
  edit->setReadOnly(true);
  edit->setAlignment(Qt::AlignRight);
  edit->setMaximumWidth(edit->fontMetrics().horizontalAdvance(QLatin1String(kWidestNumber)));
  edit->setAccessibleName(MessageText(counter.label));
  SetControlId(*edit, counter.number);
  return edit;
}

QLabel* MakeLabel(const Counter& counter, QWidget* edit) {
  auto* const label = new QLabel(WithMnemonic(counter.label, counter.mnemonic));
  label->setBuddy(edit);
  return label;
}

}  // namespace

CTNTransSummaryPropPage::CTNTransSummaryPropPage(CTNFileParserEngine* engine, QWidget* parent)
    : CTNTransSummaryPropPage(engine, MakeViewer, parent) {}

CTNTransSummaryPropPage::CTNTransSummaryPropPage(CTNFileParserEngine* engine,
                                                 ViewerMaker makeViewer, QWidget* parent)
    : CTNPropPage(parent),
      m_engine(engine),
      m_makeViewer(std::move(makeViewer)),
      m_views(new QTabWidget) {
  SetDialogId(*this, DialogId::ResultsPage);
  auto* const counters = new QGridLayout;
  AddCounters(*counters);
  m_views->setTabBarAutoHide(true);
  m_views->setDocumentMode(true);
  auto* const output = new QGroupBox(LabelText(Msg::OutputGroup));
  auto* const outputLayout = new QVBoxLayout(output);
  outputLayout->addWidget(m_views);
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(counters);
  layout->addWidget(output, 1);
}

void CTNTransSummaryPropPage::AddCounters(QGridLayout& layout) {
  constexpr int kColumnsOfOne = 2;
  constexpr int kGapColumn = 2;
  constexpr int kRestColumn = 5;
  constexpr int kGap = 24;
  for (std::size_t i = 0; i < kCounters.size(); ++i) {
    const bool ofLines = i < kLineCounters;
    const int row = static_cast<int>(ofLines ? i : i - kLineCounters);
    const int column = ofLines ? 0 : kColumnsOfOne + 1;
    QLineEdit* const edit = MakeCounter(kCounters[i]);
    layout.addWidget(MakeLabel(kCounters[i], edit), row, column);
    layout.addWidget(edit, row, column + 1);
    m_counters.push_back(edit);
  }
  layout.setColumnMinimumWidth(kGapColumn, kGap);
  layout.setColumnStretch(kRestColumn, 1);
}

void CTNTransSummaryPropPage::OnInitDialog() {
  m_viewer = m_makeViewer(m_views);
  if (m_viewer == nullptr) {
    UserDialogs().Ask(this, {MessageText(Msg::DialogTitle), MessageText(Msg::NoBrowserControl),
                             BoxIcon::None, BoxButtons::Ok});
    return;
  }
  SetControlId(*m_viewer, Ctrl::ResultViewer);
  m_viewer->setAccessibleName(MessageText(Msg::OutputGroup));
  m_views->addTab(m_viewer, LabelText(Msg::EntityList));
}

void CTNTransSummaryPropPage::Refresh() {
  const CTNParserInFile* const inputFile = m_engine != nullptr ? m_engine->GetInputFile() : nullptr;
  if (inputFile == nullptr || !inputFile->IsApplied()) {
    if (m_viewer != nullptr) m_viewer->Clear();
    return;
  }
  if (inputFile->IsStale()) {
    DeleteEntityList();
    if (m_viewer != nullptr) m_viewer->Clear();
    ShowCounters({});
    return;
  }
  ShowCounters(m_engine->GetStats());
  if (m_viewer != nullptr) ShowEntityList();
}

void CTNTransSummaryPropPage::ShowCounters(const ApplicationStats& stats) {
  for (std::size_t i = 0; i < kCounters.size(); ++i)
    m_counters[i]->setText(QString::number(kCounters[i].value(stats)));
}

void CTNTransSummaryPropPage::ShowEntityList() {
  std::string path;
  std::string error;
  if (m_engine->GetSideCopyPath(path, error)) {
    m_viewer->Navigate(path);
  } else {
    m_viewer->ShowFailure(ToDisplayText(error));
  }
}

void CTNTransSummaryPropPage::DeleteEntityList() {
  std::string error;
  if (!m_engine->DeleteSideCopy(error)) ReportFileError(error);
}

void CTNTransSummaryPropPage::ReportFileError(const std::string& error) {
  UserDialogs().Ask(this, {MessageText(Msg::DialogTitle), ToDisplayText(error), BoxIcon::Warning,
                           BoxButtons::Ok});
}

}  // namespace bomparser
