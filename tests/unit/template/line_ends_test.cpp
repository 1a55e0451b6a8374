#include "template/LineEnds.h"
#include "tests/support/RandomMatch.h"
#include "tests/support/TemplateBuilder.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser::test {
namespace {

// ------------------------------------------------------------------------------- many together

FieldSpec RandomFieldAtEnd(Chooser& choose, std::uint32_t records) {
  FieldSpec field = SubRecord("A" + std::to_string(1 + choose.Below(records)));
  if (choose.OneIn(6)) field = Newline();
  if (choose.OneIn(6)) field = Alpha();
  return choose.OneIn(3) ? Optional(field) : field;
}

/// Sub-record fields name records that are there already or come later: those have no link yet.
void AddRandomRecords(Chooser& choose, CTNParserTemplate& document, std::uint32_t records) {
  for (std::uint32_t i = 0; i < records; ++i) {
    CTNTemplateRecord* record = document.AddRecord(RecordKind::MultipleMatch, "");
    for (std::uint32_t left = choose.Below(4); left > 0; --left)
      AddField(*record, RandomFieldAtEnd(choose, records));
  }
}

/// How many answers are yes; every one is that of the record alone.
int CompareAll(const CTNParserTemplate& document, LineEnds& together) {
  int yes = 0;
  for (const auto& record : document.GetAuxiliaryRecords()) {
    const bool alone = record->EndsWithRequiredNewline();
    EXPECT_EQ(together.AreRequiredBy(*record), alone) << record->GetRecordId();
    yes += alone ? 1 : 0;
  }
  return yes;
}

TEST(LineEnds, ManyRecordsAskedTogetherAnswerLikeEachAloneWhileLinksAreMade) {
  constexpr std::uint32_t kRecords = 9;
  int changes = 0;
  for (std::uint32_t seed = 1; seed <= 300 && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    SeededChooser choose(seed);
    CTNParserTemplate document(nullptr);
    AddRandomRecords(choose, document, kRecords);
    LineEnds together;
    int yes = CompareAll(document, together);
    for (const auto& record : document.GetAuxiliaryRecords()) {
      for (const auto& field : record->GetInputFields()) {
        if (field->GetType() != FieldKind::SubRecord || field->GetSubRecord() != nullptr) continue;
        field->ResolveSubRecord();
        together.OnLinked(*record);
        const int before = yes;
        yes = CompareAll(document, together);
        changes += yes != before ? 1 : 0;
      }
    }
  }
  EXPECT_GT(changes, 100) << "links that changed nothing would prove nothing";
}

// ------------------------------------------------------------------------------- long chains

// Of so many records that one walk to the end of the chain for each of them would take minutes.
constexpr std::size_t kLinks = 100'000;

/// Auxiliary records, each of which ends in the one that `next` names; the last of the chain, which
/// names itself, in a field of the type `end`.
template <class Next>
std::string ChainOf(Next next, std::string_view end) {
  std::string xml = "<PARSER_TEMPLATE>";
  for (std::size_t i = 1; i <= kLinks; ++i) {
    xml += "<TEMPLATE_RECORD TYPE=\"Multiple Match\"><INPUT_FIELD TYPE=\"";
    const std::size_t named = next(i);
    if (named == i) {
      xml.append(end).append("\"/>");
    } else {
      xml += "SUBRECORD\"><MATCH_VALUE_STR>A" + std::to_string(named);
      xml += "</MATCH_VALUE_STR></INPUT_FIELD>";
    }
    xml += "</TEMPLATE_RECORD>";
  }
  return xml + "</PARSER_TEMPLATE>";
}

std::size_t CountValid(const CTNParserTemplate& document) {
  std::size_t count = 0;
  for (const auto& record : document.GetAuxiliaryRecords())
    count += record->IsValid() != 0 ? 1 : 0;
  return count;
}

std::size_t ForwardFrom(std::size_t record) { return record < kLinks ? record + 1 : record; }
std::size_t BackFrom(std::size_t record) { return record > 1 ? record - 1 : record; }

TEST(LineEndsOfLongChains, AreFoundOnceForAllRecordsOfATemplate) {
  CTNParserTemplate document(nullptr);
  ASSERT_EQ(document.LoadFromXml(ChainOf(ForwardFrom, "NEWLINE")), kXmlOk);
  EXPECT_EQ(CountValid(document), kLinks);
  EXPECT_EQ(document.Validate(), 1);
}

TEST(LineEndsOfLongChains, AreMissedOnceForAllRecordsOfATemplate) {
  CTNParserTemplate document(nullptr);
  ASSERT_EQ(document.LoadFromXml(ChainOf(ForwardFrom, "ALPHA")), kXmlOk);
  EXPECT_EQ(CountValid(document), 0U);
  EXPECT_EQ(document.Validate(), 0);
}

TEST(LineEndsOfLongChains, AreFoundOnceWhereRecordsNameThoseInFrontOfThem) {
  CTNParserTemplate document(nullptr);
  ASSERT_EQ(document.LoadFromXml(ChainOf(BackFrom, "NEWLINE")), kXmlOk);
  EXPECT_EQ(document.Validate(), 1);
}

}  // namespace
}  // namespace bomparser::test
