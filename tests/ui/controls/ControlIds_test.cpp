#include "res/ControlIds.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace bomparser::test {
namespace {

// Help files and scripts know controls and dialogs by these numbers.

TEST(ControlIds, AreTheNumbersThatOthersKnow) {
  const std::vector<std::pair<Ctrl, int>> numbers = {
      {Ctrl::InputRows, 3003},         {Ctrl::RecordSheet, 3018},
      {Ctrl::InputSheet, 3026},        {Ctrl::ResultViewer, 3048},
      {Ctrl::TotalLines, 3055},        {Ctrl::ParseableLines, 3056},
      {Ctrl::MatchedLines, 3057},      {Ctrl::UnmatchedLines, 3058},
      {Ctrl::TotalBlocks, 3059},       {Ctrl::EntityBlocks, 3060},
      {Ctrl::AuxiliaryBlocks, 3061},   {Ctrl::ErrorLines, 3068},
      {Ctrl::ShowEntityBlocks, 3071},  {Ctrl::ShowAuxiliaryBlocks, 3072},
      {Ctrl::ShowUnmatched, 3073},     {Ctrl::ShowIgnored, 3074},
      {Ctrl::ShowNewlines, 3077},      {Ctrl::ShowDataFieldInfo, 3119},
      {Ctrl::TabStop, 3045},           {Ctrl::SearchPath, 3065},
      {Ctrl::SelectAllTriggers, 3120}, {Ctrl::UnselectAllTriggers, 3121},
      {Ctrl::ParamTitle, 3035},        {Ctrl::ParamUnits, 3030},
      {Ctrl::ParamScale, 3062},        {Ctrl::ParamIgnoreBefore, 3032},
      {Ctrl::ParamIgnoreAfter, 3034},  {Ctrl::ParamFromBottom, 3044},
      {Ctrl::ParamFromTop, 3043}};
  for (const auto& [control, number] : numbers)
    EXPECT_EQ(static_cast<int>(control), number);
}

TEST(DialogIds, AreTheNumbersThatOthersKnow) {
  EXPECT_EQ(static_cast<int>(DialogId::Main), 702);
  EXPECT_EQ(static_cast<int>(DialogId::ResultsPage), 743);
  EXPECT_EQ(static_cast<int>(DialogId::InputFilePage), 744);
  EXPECT_EQ(static_cast<int>(DialogId::TemplateParams), 745);
  EXPECT_EQ(static_cast<int>(DialogId::ErrorLog), 755);
  EXPECT_EQ(static_cast<int>(DialogId::AppSettings), 758);
}

}  // namespace
}  // namespace bomparser::test
