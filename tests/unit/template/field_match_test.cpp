// One field against a text, by the plain matcher: what each type consumes.

#include "input/CTNParsedFileBlock.h"
#include "input/CTNStringCharBuffIter.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/TemplateBuilder.h"

#include <gtest/gtest.h>
#include <string>

namespace bomparser::test {
namespace {

using namespace std::string_literals;

constexpr const char* kNo = "no match";

/// "took 'text'" and where the cursor stands when it is not behind the text; kNo when the field
/// fails and the cursor is back where it was.
std::string Matched(const FieldSpec& spec, std::string_view text, std::uint32_t position = 0,
                    const FieldSpec* next = nullptr) {
  CTNTemplateRecord record(nullptr);
  CTNTemplRecInField& field = AddField(record, spec);
  CTNTemplRecInField* follower = next != nullptr ? &AddField(record, *next) : nullptr;
  CTNStringCharBuffIter cursor(text);
  cursor.SetPosition(position);
  std::string value = "untouched";
  if (!field.Match(cursor, nullptr, value, follower, KeepValues::No)) {
    EXPECT_EQ(cursor.GetPosition(), position);
    EXPECT_EQ(value, "untouched");
    EXPECT_EQ(field.GetCurrentValue(), "");
    return kNo;
  }
  EXPECT_EQ(field.GetCurrentValue(), value);
  EXPECT_EQ(text.substr(position, value.size()), value);
  const std::size_t taken = cursor.GetPosition() - position;
  if (taken == value.size()) return "took '" + value + "'";
  return "took '" + value + "' in " + std::to_string(taken);
}

std::string Took(const std::string& text) { return "took '" + text + "'"; }

TEST(FieldMatch, StringTakesTheFirstValueThatStandsThere) {
  EXPECT_EQ(Matched(String("AB|A"), "ax"), Took("a"));
  EXPECT_EQ(Matched(String("A|AB"), "abx"), Took("a"));
  EXPECT_EQ(Matched(String("AB|A"), "aBx"), Took("aB"));
  EXPECT_EQ(Matched(String("AB|B"), "ax"), kNo);
  EXPECT_EQ(Matched(String("abc"), "ab"), kNo);
  EXPECT_EQ(Matched(String("b"), "abc", 1), Took("b"));
}

TEST(FieldMatch, StringWithoutValuesFails) {
  EXPECT_EQ(Matched(String(""), "a"), kNo);
  EXPECT_EQ(Matched(String("|"), "|"), kNo);
}

TEST(FieldMatch, StringComparesWithCaseWhenTheFieldSaysSo) {
  EXPECT_EQ(Matched(CaseSensitive(String("AB|A")), "Ab"), Took("A"));
  EXPECT_EQ(Matched(CaseSensitive(String("AB")), "Ab"), kNo);
  EXPECT_EQ(Matched(String("\xC4"), "\xE4"), kNo);
}

TEST(FieldMatch, StringMayHoldAnyCharacter) {
  EXPECT_EQ(Matched(String("a\nb"), "A\nB"), Took("A\nB"));
  EXPECT_EQ(Matched(String("\xFF"), "\xFF"), Took("\xFF"));
  EXPECT_EQ(Matched(String("\xFF"), ""), kNo);
}

TEST(FieldMatch, ColumnTakesExactlyItsLength) {
  EXPECT_EQ(Matched(Column(3), "a \tb"), Took("a \t"));
  EXPECT_EQ(Matched(Column(3), "abc"), Took("abc"));
  EXPECT_EQ(Matched(Column(3), "ab"), kNo);
  EXPECT_EQ(Matched(Column(2), "a\0"s), Took("a\0"s));
}

TEST(FieldMatch, ColumnOfThreeAtTwoCharactersAndALineFeedFailsAndGoesBack) {
  EXPECT_EQ(Matched(Column(3), "ab\n"), kNo);
  EXPECT_EQ(Matched(Column(3), "xab\ncd", 1), kNo);
}

TEST(FieldMatch, ColumnOfLengthZeroTakesNothing) {
  EXPECT_EQ(Matched(Column(0), "ab"), Took(""));
  EXPECT_EQ(Matched(Column(0), ""), Took(""));
}

TEST(FieldMatch, ColumnWithANegativeLengthFails) {
  CTNTemplateRecord record(nullptr);
  CTNTemplRecInField& field = AddField(record, Column(0));
  field.SetMatchLength(-1);
  CTNStringCharBuffIter cursor("ab");
  std::string value;
  EXPECT_FALSE(field.Match(cursor, nullptr, value, nullptr, KeepValues::No));
}

TEST(FieldMatch, AlphanumericTakesLettersAndDigits) {
  EXPECT_EQ(Matched(Alnum(), "R12,"), Took("R12"));
  EXPECT_EQ(Matched(Alnum(), "9z"), Took("9z"));
  EXPECT_EQ(Matched(Alnum(), "_a"), kNo);
  EXPECT_EQ(Matched(Alnum(), "a\xE4"), Took("a"));
  EXPECT_EQ(Matched(Alnum(), ""), kNo);
}

TEST(FieldMatch, AlphaTakesLetters) {
  EXPECT_EQ(Matched(Alpha(), "aZ1"), Took("aZ"));
  EXPECT_EQ(Matched(Alpha(), "1a"), kNo);
  EXPECT_EQ(Matched(Alpha(), "\xC4"), kNo);
}

TEST(FieldMatch, RunsMustEqualAMatchValueAsAWhole) {
  EXPECT_EQ(Matched(Alpha("top|bottom"), "TOP 1"), Took("TOP"));
  EXPECT_EQ(Matched(Alpha("top|bottom"), "topper"), kNo);
  EXPECT_EQ(Matched(Alnum("r1"), "R12"), kNo);
  EXPECT_EQ(Matched(Alnum("r1"), "R1-"), Took("R1"));
  EXPECT_EQ(Matched(CaseSensitive(Alnum("r1")), "R1"), kNo);
  EXPECT_EQ(Matched(CaseSensitive(Alpha("Top")), "Top"), Took("Top"));
}

TEST(FieldMatch, WholeNumberTakesAnOptionalSignAndDigits) {
  EXPECT_EQ(Matched(WholeNum(), "12.5"), Took("12"));
  EXPECT_EQ(Matched(WholeNum(), "-12"), Took("-12"));
  EXPECT_EQ(Matched(WholeNum(), "+0"), Took("+0"));
  EXPECT_EQ(Matched(WholeNum(), "+-1"), kNo);
  EXPECT_EQ(Matched(WholeNum(), "-"), kNo);
  EXPECT_EQ(Matched(WholeNum(), "- 1"), kNo);
  EXPECT_EQ(Matched(WholeNum(), ".5"), kNo);
  EXPECT_EQ(Matched(WholeNum(), ""), kNo);
}

TEST(FieldMatch, WholeNumberWithValueFiveMatchesPlusFiveAndNotMinusFive) {
  EXPECT_EQ(Matched(WholeNum("5"), "+5"), Took("+5"));
  EXPECT_EQ(Matched(WholeNum("5"), "-5"), kNo);
  EXPECT_EQ(Matched(WholeNum("5"), "5"), Took("5"));
  EXPECT_EQ(Matched(WholeNum("5"), "55"), kNo);
}

TEST(FieldMatch, AValueWithASignWantsThatSign) {
  EXPECT_EQ(Matched(WholeNum("-5"), "-5"), Took("-5"));
  EXPECT_EQ(Matched(WholeNum("-5"), "5"), kNo);
  EXPECT_EQ(Matched(WholeNum("+5"), "+5"), Took("+5"));
  EXPECT_EQ(Matched(WholeNum("+5"), "5"), kNo);
}

TEST(FieldMatch, DecimalNumberNeedsASeparatorAndADigit) {
  EXPECT_EQ(Matched(DecimalNum(), "12"), kNo);
  EXPECT_EQ(Matched(DecimalNum(), "12."), Took("12."));
  EXPECT_EQ(Matched(DecimalNum(), ".5"), Took(".5"));
  EXPECT_EQ(Matched(DecimalNum(), "-1,25"), Took("-1,25"));
  EXPECT_EQ(Matched(DecimalNum(), "+."), kNo);
  EXPECT_EQ(Matched(DecimalNum(), "."), kNo);
  EXPECT_EQ(Matched(DecimalNum(), ","), kNo);
  EXPECT_EQ(Matched(DecimalNum(), "-"), kNo);
  EXPECT_EQ(Matched(DecimalNum(), "+.5"), Took("+.5"));
  EXPECT_EQ(Matched(DecimalNum(), ""), kNo);
}

TEST(FieldMatch, ASecondSeparatorEndsADecimalNumber) {
  EXPECT_EQ(Matched(DecimalNum(), "1.2.3"), Took("1.2"));
  EXPECT_EQ(Matched(DecimalNum(), "1.,3"), Took("1."));
  EXPECT_EQ(Matched(DecimalNum(), "1.2e5"), Took("1.2"));
}

TEST(FieldMatch, DecimalNumberWithValuesTriesAgainWithoutItsPlusSign) {
  EXPECT_EQ(Matched(DecimalNum("1.5"), "+1.5"), Took("+1.5"));
  EXPECT_EQ(Matched(DecimalNum("1.5"), "-1.5"), kNo);
  EXPECT_EQ(Matched(DecimalNum("1.5"), "1,5"), kNo);
  EXPECT_EQ(Matched(DecimalNum("1.5|1,5"), "1,5"), Took("1,5"));
}

TEST(FieldMatch, SpaceTakesOneBlank) {
  EXPECT_EQ(Matched(Space(), "  "), Took(" "));
  EXPECT_EQ(Matched(Space(), "\t"), kNo);
  EXPECT_EQ(Matched(Space(), ""), kNo);
}

TEST(FieldMatch, TabTakesOneTab) {
  EXPECT_EQ(Matched(Tab(), "\t\t"), Took("\t"));
  EXPECT_EQ(Matched(Tab(), " "), kNo);
  EXPECT_EQ(Matched(Tab(), ""), kNo);
}

TEST(FieldMatch, WhiteSpaceTakesARunOfBlanksAndTabs) {
  EXPECT_EQ(Matched(WhtSpace(), " \t \n"), Took(" \t "));
  EXPECT_EQ(Matched(WhtSpace(), "\n"), kNo);
  EXPECT_EQ(Matched(WhtSpace(), "\r"), kNo);
}

TEST(FieldMatch, NotWhiteSpaceTakesEverythingElseUpToTheLineEnd) {
  EXPECT_EQ(Matched(NotWhtSpace(), "a-\xFF\r b"), Took("a-\xFF\r"));
  EXPECT_EQ(Matched(NotWhtSpace(), "a\nb"), Took("a"));
  EXPECT_EQ(Matched(NotWhtSpace(), "\0b\t"s), Took("\0b"s));
  EXPECT_EQ(Matched(NotWhtSpace(), "\n"), kNo);
  EXPECT_EQ(Matched(NotWhtSpace(), " a"), kNo);
}

TEST(FieldMatch, NotWhiteSpaceWithMatchValuesMustBeOne) {
  const FieldSpec either = Field(FieldKind::NotWhtSpace, "a-b|c");
  EXPECT_EQ(Matched(either, "A-B x"), Took("A-B"));
  EXPECT_EQ(Matched(either, "a-bc"), kNo);
}

TEST(FieldMatch, NewlineTakesOneLineFeedAndItsTextIsEmpty) {
  EXPECT_EQ(Matched(Newline(), "\n\n"), "took '' in 1");
  EXPECT_EQ(Matched(Newline(), "\r\n"), kNo);
  EXPECT_EQ(Matched(Newline(), ""), kNo);
}

TEST(FieldMatch, AnUndefinedTypeMatchesNothing) {
  EXPECT_EQ(Matched(Field(FieldKind::Undefined), "a"), kNo);
  EXPECT_EQ(Matched(Field(static_cast<FieldKind>(13)), "a"), kNo);
}

TEST(FieldMatch, AMatchLengthThatIsNotUsedIsIgnored) {
  FieldSpec alpha = Alpha();
  alpha.length = 1;
  EXPECT_EQ(Matched(alpha, "abc"), Took("abc"));
  FieldSpec number = WholeNum();
  number.length = 2;
  EXPECT_EQ(Matched(number, "1234"), Took("1234"));
}

TEST(FieldMatch, FieldsFailBehindTheEndOfTheText) {
  for (const FieldSpec& spec : {String("a"), Column(1), Alnum(), Alpha(), WholeNum(), DecimalNum(),
                                Space(), Tab(), WhtSpace(), NotWhtSpace(), Newline()}) {
    EXPECT_EQ(Matched(spec, "a1 \n", 4), kNo);
  }
}

TEST(FieldMatch, ScanWithoutAFollowerFails) { EXPECT_EQ(Matched(Scan(), "ab"), kNo); }

TEST(FieldMatch, ScanBeforeAnotherScanFails) {
  const FieldSpec next = Scan();
  EXPECT_EQ(Matched(Scan(), "ab", 0, &next), kNo);
}

TEST(FieldMatch, ScanTakesWhatStandsBeforeItsFollower) {
  const FieldSpec x = String("X");
  EXPECT_EQ(Matched(Scan(), "abXX", 0, &x), Took("ab"));
  EXPECT_EQ(Matched(Scan(), "Xab", 0, &x), Took(""));
  EXPECT_EQ(Matched(Scan(), "a\n\nX", 0, &x), Took("a\n\n"));
  EXPECT_EQ(Matched(Scan(), "abc", 0, &x), kNo);
  EXPECT_EQ(Matched(Scan(), "", 0, &x), kNo);
}

TEST(FieldMatch, ScanOfTwoSkipsThreeCharactersAndNotFour) {
  const FieldSpec x = String("X");
  EXPECT_EQ(Matched(Scan(2), "abX", 0, &x), Took("ab"));
  EXPECT_EQ(Matched(Scan(2), "abcX", 0, &x), Took("abc"));
  EXPECT_EQ(Matched(Scan(2), "abcdX", 0, &x), kNo);
  EXPECT_EQ(Matched(Scan(1), "abX", 0, &x), Took("ab"));
  EXPECT_EQ(Matched(Scan(1), "abcX", 0, &x), kNo);
}

TEST(FieldMatch, ScanLimitBelowOneIsNoLimit) {
  const FieldSpec x = String("X");
  const std::string text = std::string(1000, 'a') + "X";
  EXPECT_EQ(Matched(Scan(0), text, 0, &x), Took(std::string(1000, 'a')));
  CTNTemplateRecord record(nullptr);
  CTNTemplRecInField& scan = AddField(record, Scan());
  scan.SetMatchLength(-5);
  CTNStringCharBuffIter cursor(text);
  std::string value;
  EXPECT_TRUE(scan.Match(cursor, nullptr, value, &AddField(record, x), KeepValues::No));
  EXPECT_EQ(value.size(), 1000U);
}

TEST(FieldMatch, ScanStopsAtTheEndWhereAnEmptyColumnMatches) {
  const FieldSpec nothing = Column(0);
  EXPECT_EQ(Matched(Scan(), "ab", 0, &nothing), Took(""));
  EXPECT_EQ(Matched(Scan(), "", 0, &nothing), Took(""));
}

TEST(FieldMatch, ATrialLeavesTheFollowerItsValue) {
  CTNTemplateRecord record(nullptr);
  CTNTemplRecInField& scan = AddField(record, Scan());
  CTNTemplRecInField& number = AddField(record, WholeNum());
  CTNStringCharBuffIter cursor("ab12");
  std::string value;
  ASSERT_TRUE(scan.Match(cursor, nullptr, value, &number, KeepValues::No));
  EXPECT_EQ(number.GetCurrentValue(), "12");
  EXPECT_EQ(cursor.GetPosition(), 2U);
}

TEST(FieldMatch, AMatchAddsItsElementToTheBlock) {
  CTNTemplateRecord record(nullptr);
  CTNTemplRecInField& field = AddField(record, Alpha());
  CTNParsedFileBlock block(nullptr);
  CTNStringCharBuffIter cursor("ab1");
  std::string value;
  ASSERT_TRUE(field.Match(cursor, &block, value, nullptr, KeepValues::No));
  EXPECT_EQ(block.ToReadableText(), "\?\?{F1=ab}");
}

TEST(FieldMatch, AFieldWhoseElementTheBlockRefusesFailsAndGoesBack) {
  CTNTemplateRecord record(nullptr);
  CTNTemplateRecord other(nullptr);
  CTNTemplRecInField& field = AddField(record, Alpha());
  CTNTemplRecInField& foreign = AddField(other, Alpha());
  CTNParsedFileBlock block(nullptr);
  CTNStringCharBuffIter cursor("ab1");
  std::string value;
  ASSERT_TRUE(field.Match(cursor, &block, value, nullptr, KeepValues::No));
  cursor.SetPosition(0);
  EXPECT_FALSE(foreign.Match(cursor, &block, value, nullptr, KeepValues::No));
  EXPECT_EQ(cursor.GetPosition(), 0U);
}

TEST(FieldMatch, ASubRecordFieldWithoutARecordFails) {
  EXPECT_EQ(Matched(SubRecord("A1"), "a"), kNo);
}

TEST(FieldMatch, ASubRecordFieldTakesOneInstanceAndItsTextIsEmpty) {
  CTNParserTemplate document(nullptr);
  AddRecord(document, RecordKind::SubRecord, "word", {Alpha(), Optional(Space())});
  CTNTemplateRecord& record =
      AddRecord(document, RecordKind::SubRecord, "words", {SubRecord("A1")});
  CTNTemplRecInField& field = *record.GetInputFields()[0];
  CTNParsedFileBlock block(nullptr);
  CTNStringCharBuffIter cursor("ab cd");
  std::string value = "untouched";
  ASSERT_TRUE(field.Match(cursor, &block, value, nullptr, KeepValues::No));
  EXPECT_EQ(value, "");
  EXPECT_EQ(cursor.GetPosition(), 3U);
  EXPECT_EQ(block.ToReadableText(), "A2{F1=A1{F1=ab|F2= }}");
}

TEST(FieldMatch, ASubRecordFieldWhoseElementTheBlockRefusesFailsAndGoesBack) {
  CTNParserTemplate document(nullptr);
  AddRecord(document, RecordKind::SubRecord, "word", {Alpha()});
  CTNTemplateRecord& record = AddRecord(document, RecordKind::SubRecord, "one", {SubRecord("A1")});
  CTNTemplateRecord& other = AddRecord(document, RecordKind::SubRecord, "two", {SubRecord("A1")});
  CTNParsedFileBlock block(nullptr);
  CTNStringCharBuffIter cursor("ab");
  std::string value;
  const auto match = [&](CTNTemplateRecord& of) {
    return of.GetInputFields()[0]->Match(cursor, &block, value, nullptr, KeepValues::No);
  };
  ASSERT_TRUE(match(record));
  cursor.SetPosition(0);
  EXPECT_FALSE(match(other));
  EXPECT_EQ(cursor.GetPosition(), 0U);
  EXPECT_EQ(block.ToReadableText(), "A2{F1=A1{F1=ab}}");
}

TEST(FieldMatch, ASubRecordFieldMatchesWithoutABlock) {
  CTNParserTemplate document(nullptr);
  AddRecord(document, RecordKind::SubRecord, "word", {Alpha()});
  CTNTemplateRecord& record =
      AddRecord(document, RecordKind::SubRecord, "words", {SubRecord("A1")});
  CTNTemplRecInField& field = *record.GetInputFields()[0];
  CTNStringCharBuffIter cursor("ab1");
  std::string value;
  EXPECT_TRUE(field.Match(cursor, nullptr, value, nullptr, KeepValues::No));
  EXPECT_EQ(cursor.GetPosition(), 2U);
  EXPECT_FALSE(field.Match(cursor, nullptr, value, nullptr, KeepValues::No));
  EXPECT_EQ(cursor.GetPosition(), 2U);
}

class FieldMatchUnderACommaLocale : public CommaLocaleTest {};

TEST_F(FieldMatchUnderACommaLocale, BothSeparatorsAndTheClassesStay) {
  EXPECT_EQ(Matched(DecimalNum(), "1.5"), Took("1.5"));
  EXPECT_EQ(Matched(DecimalNum(), "1,5"), Took("1,5"));
  EXPECT_EQ(Matched(Alpha(), "a\xE4"), Took("a"));
}

}  // namespace
}  // namespace bomparser::test
