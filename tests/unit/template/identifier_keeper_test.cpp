#include "template/CTNIdentifierKeeper.h"
#include "template/CTNParserTemplate.h"
#include "template/Identifiers.h"
#include "tests/support/OutputTexts.h"
#include "tests/support/TemplateBuilder.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {
namespace {

using namespace test;

using Texts = std::vector<std::string>;

// ------------------------------------------------------------------------------- identifiers

TEST(Identifiers, CountFromOneBehindTheirLetter) {
  EXPECT_EQ(MakeIdentifier(Msg::InputFieldIdPrefix, 0), "F1");
  EXPECT_EQ(MakeIdentifier(Msg::OutputElementIdPrefix, 9), "V10");
  EXPECT_EQ(MakeIdentifier(Msg::EntityIdPrefix, 0), "E1");
  EXPECT_EQ(MakeIdentifier(Msg::AuxiliaryIdPrefix, 99), "A100");
}

TEST(Identifiers, AreReadInAnyCase) {
  for (const std::string_view id : {"F12", "f12"}) {
    std::size_t index = 0;
    EXPECT_TRUE(ReadIdentifier(id, Msg::InputFieldIdPrefix, index)) << id;
    EXPECT_EQ(index, 11u) << id;
  }
}

TEST(Identifiers, AreThoseOfRecordsFieldsAndElements) {
  for (const char* word : {"E1", "a12", "F3", "v4"})
    EXPECT_TRUE(IsIdentifier(word)) << word;
  for (const char* word : {"Default", "E", "E0", "F01", "V1x", "B1", "12", ""})
    EXPECT_FALSE(IsIdentifier(word)) << word;
}

TEST(Identifiers, AreReadOnlyAsTheyAreWritten) {
  for (const std::string_view id : {"", "F", "F0", "F01", "F 1", "F-1", "F+1", "F1x", "xF1", "V1",
                                    "1", "??", "F99999999999999999999999"}) {
    std::size_t index = 7;
    EXPECT_FALSE(ReadIdentifier(id, Msg::InputFieldIdPrefix, index)) << id;
    EXPECT_EQ(index, 7u) << id;
  }
}

// ------------------------------------------------------------------------------- following

/// A1 and A2 are single-match records, E1 the record whose expressions are looked at.
class IdentifierKeeperTest : public testing::Test {
 protected:
  IdentifierKeeperTest() {
    const std::vector<FieldSpec> fields = {Alpha(), Tab(), Space(), Newline()};
    const std::vector<OutputSpec> outputs = {{OutputTag::Width, "1"}, {OutputTag::Height, "2"}};
    first = &AddRecord(document, RecordKind::SingleMatch, "first", fields, outputs);
    second = &AddRecord(document, RecordKind::SingleMatch, "second", fields, outputs);
    own = &AddRecord(document, RecordKind::Part, "own", fields);
  }

  void Write(const Texts& expressions) {
    while (!own->GetOutputFields().empty())
      own->RemoveField(own->GetOutputFields().back().get());
    for (const std::string& text : expressions)
      AddOutput(*own, {OutputTag::Size, text});
    own->Validate();
  }
  Texts Expressions() const {
    Texts texts;
    for (const auto& element : own->GetOutputFields())
      texts.push_back(element->GetExpression());
    return texts;
  }
  static CTNTemplRecInField* Field(CTNTemplateRecord* record, std::size_t number) {
    return record->GetInputFields()[number - 1].get();
  }
  static CTNTemplRecOutField* Element(CTNTemplateRecord* record, std::size_t number) {
    return record->GetOutputFields()[number - 1].get();
  }
  static void InsertBefore(CTNTemplateRecord* record, std::size_t number) {
    record->AddInputField(FieldKind::Alpha, true, Field(record, number));
  }

  CTNParserTemplate document{nullptr};
  CTNTemplateRecord* first = nullptr;
  CTNTemplateRecord* second = nullptr;
  CTNTemplateRecord* own = nullptr;
};

TEST_F(IdentifierKeeperTest, AFieldInsertedInFrontPushesTheOthers) {
  Write({"F1 F2 F3", "F4"});
  InsertBefore(own, 2);
  EXPECT_EQ(Expressions(), (Texts{"F1 F3 F4", "F5"}));
}

TEST_F(IdentifierKeeperTest, WhatIsAppendedAtTheEndChangesNoText) {
  Write({"F1 f2 F5", "V3 F9", "A3.F1 E2"});
  own->AddInputField(FieldKind::Alpha, true);
  own->InsertField(std::make_unique<CTNTemplRecOutField>(own));
  document.AddRecord(RecordKind::SingleMatch, "third");
  document.AddRecord(RecordKind::Part, "other");
  EXPECT_EQ(Expressions(), (Texts{"F1 f2 F5", "V3 F9", "A3.F1 E2", ""}));
}

TEST_F(IdentifierKeeperTest, ARemovedFieldBecomesUnknownAndTheOthersMoveUp) {
  Write({"F1 F2 F3", "F2"});
  own->RemoveField(Field(own, 2));
  EXPECT_EQ(Expressions(), (Texts{"F1 ?? F2", "??"}));
}

TEST_F(IdentifierKeeperTest, AMovedFieldTakesItsIdentifierAlong) {
  Write({"F1 F2 F3 F4"});
  own->MoveField(Field(own, 3), Field(own, 1));
  EXPECT_EQ(Expressions(), Texts{"F2 F3 F1 F4"});
  own->MoveField(Field(own, 1), nullptr);
  EXPECT_EQ(Expressions(), Texts{"F1 F2 F4 F3"});
}

TEST_F(IdentifierKeeperTest, AnElementInsertedInFrontPushesTheOthers) {
  Write({"V2", "V1 F1", "1"});
  auto inserted = std::make_unique<CTNTemplRecOutField>(own);
  inserted->SetExpression("V1 V3");
  own->InsertField(std::move(inserted), Element(own, 2));
  EXPECT_EQ(Expressions(), (Texts{"V3", "V1 V4", "V1 F1", "1"}))
      << "its own text is meant as it was written, before it had a place";
}

TEST_F(IdentifierKeeperTest, ARemovedElementBecomesUnknownAndTheOthersMoveUp) {
  Write({"V2 V3", "1", "V1 V2"});
  own->RemoveField(Element(own, 2));
  EXPECT_EQ(Expressions(), (Texts{"?? V2", "V1 ??"}));
}

TEST_F(IdentifierKeeperTest, AMovedElementTakesItsIdentifierAlong) {
  Write({"V2 V3", "1", "V1 V2"});
  own->MoveField(Element(own, 3), Element(own, 1));
  EXPECT_EQ(Expressions(), (Texts{"V2 V3", "V3 V1", "1"}));
}

// ------------------------------------------------------------------------------- other records

TEST_F(IdentifierKeeperTest, BehindADotTheFieldsOfTheNamedRecordAreMeant) {
  Write({"A1.F2 F2 A2.F2 E1.F2", "A1.V2 A2.V2"});
  InsertBefore(first, 1);
  EXPECT_EQ(Expressions(), (Texts{"A1.F3 F2 A2.F2 E1.F2", "A1.V2 A2.V2"}));
  first->RemoveField(Element(first, 1));
  EXPECT_EQ(Expressions(), (Texts{"A1.F3 F2 A2.F2 E1.F2", "A1.V1 A2.V2"}));
  InsertBefore(own, 1);
  EXPECT_EQ(Expressions(), (Texts{"A1.F3 F3 A2.F2 E1.F3", "A1.V1 A2.V2"}));
  first->RemoveField(Field(first, 3));
  EXPECT_EQ(Expressions(), (Texts{"A1.?? F3 A2.F2 E1.F3", "A1.V1 A2.V2"}));
}

TEST_F(IdentifierKeeperTest, EqualIdentifiersOfOtherRecordsMeanTheirOwnFields) {
  AddOutput(*second, {OutputTag::Size, "F2"});
  Write({"F2"});
  InsertBefore(own, 1);
  EXPECT_EQ(Element(second, 3)->GetExpression(), "F2");
  EXPECT_EQ(Expressions(), Texts{"F3"});
}

TEST_F(IdentifierKeeperTest, ADotReachesOnlyFromTheRecordRightBeforeIt) {
  Write({"A1 .F2", "A1. F2", "F1.F2", "A9.F2", "A1.TYPE F2", "A1.F1.F2"});
  InsertBefore(own, 1);
  EXPECT_EQ(Expressions(), (Texts{"A1 .F3", "A1. F3", "F2.F3", "A9.F3", "A1.TYPE F3", "A1.F1.F3"}));
}

TEST_F(IdentifierKeeperTest, ARecordAddedInFrontPushesTheOthers) {
  Write({"A1 A2.F2 E1.F1 A1.TYPE"});
  document.AddRecord(RecordKind::MultipleMatch, "new", second);
  EXPECT_EQ(Expressions(), Texts{"A1 A3.F2 E1.F1 A1.TYPE"});
  document.AddRecord(RecordKind::SingleMatch, "new", first);
  EXPECT_EQ(Expressions(), Texts{"A2 A4.F2 E1.F1 A2.TYPE"});
  document.AddRecord(RecordKind::Part, "new", own);
  EXPECT_EQ(Expressions(), Texts{"A2 A4.F2 E2.F1 A2.TYPE"});
}

TEST_F(IdentifierKeeperTest, ADeletedRecordBecomesUnknownWithItsFieldsAndTheOthersMoveUp) {
  Write({"A1 A1.F1 A2.F1 A1.TYPE", "A2"});
  document.DeleteRecord(first);
  EXPECT_EQ(Expressions(), (Texts{"?? ??.?? A1.F1 ??.??", "A1"}));
}

TEST_F(IdentifierKeeperTest, BehindADeletedRecordNothingMeansSomethingElse) {
  while (!first->GetOutputFields().empty())
    first->RemoveField(Element(first, 1));
  first->RemoveField(Field(first, 4));
  first->RemoveField(Field(first, 3));
  Write({"A1.F3", "A1.V1", "A1.A2", "A1.e1", "A1.templ_scale", "A1.TYPE", "A1..F1", "A1.mm A1.12"});
  document.DeleteRecord(first);
  EXPECT_EQ(Expressions(),
            (Texts{"??.??", "??.??", "??.??", "??.??", "??.??", "??.??", "??..??", "??.mm ??.12"}));
  for (std::size_t number = 1; number <= 6; ++number)
    EXPECT_EQ(ReadableItems(*Element(own, number)), "[text ??][text .][text ??]");
  EXPECT_EQ(ReadableItems(*Element(own, 7)), "[text ??][text .][text .][text ??]");
}

TEST_F(IdentifierKeeperTest, AMovedRecordTakesItsIdentifierAlong) {
  Write({"A1.F1 A2.F2", "A2"});
  document.MoveRecord(second, first);
  EXPECT_EQ(Expressions(), (Texts{"A2.F1 A1.F2", "A1"}));
  document.MoveRecord(second, nullptr);
  EXPECT_EQ(Expressions(), (Texts{"A1.F1 A2.F2", "A2"}));
}

TEST_F(IdentifierKeeperTest, ARecordThatWasGivenATypeOfTheOtherListTakesItsFieldsAlongToo) {
  Write({"A1.F2 A2.F1 F2"});
  first->SetType(RecordKind::Part);
  const auto field = first->RemoveField(Field(first, 2));
  EXPECT_EQ(Expressions(), Texts{"??.?? A2.F1 F2"});
  EXPECT_FALSE(Element(own, 1)->RefersTo(field.get()));
  EXPECT_EQ(ReadableItems(*Element(own, 1)),
            "[text ??][text .][text ??][blank][record A2[dot][field F1]][blank][field F2]");
}

TEST_F(IdentifierKeeperTest,
       BehindARecordThatWasGivenATypeOfTheOtherListNothingMeansSomethingElse) {
  Write({"A1.F1 A1.V2", "1"});
  first->SetType(RecordKind::Part);
  first->RemoveField(Field(first, 2));
  EXPECT_EQ(Expressions(), (Texts{"??.?? ??.??", "1"}));
  EXPECT_FALSE(Element(own, 1)->RefersTo(Field(own, 1)));
  EXPECT_FALSE(Element(own, 1)->RefersTo(Element(own, 2)));
}

TEST_F(IdentifierKeeperTest, ASubRecordFieldFollowsItsRecordToo) {
  CTNTemplRecInField& link = AddField(*own, SubRecord("A2"));
  document.AddRecord(RecordKind::MultipleMatch, "new", first);
  EXPECT_EQ(link.GetMatchValueText(), "A3");
  document.MoveRecord(second, first);
  EXPECT_EQ(link.GetMatchValueText(), "A2");
  document.DeleteRecord(second);
  EXPECT_EQ(link.GetMatchValueText(), "??");
}

// ------------------------------------------------------------------------------- texts

TEST_F(IdentifierKeeperTest, QuotedTextsStayAsTheyAre) {
  Write({"\"F2\" F2 \"A1.F2 F2\"F2"});
  InsertBefore(own, 1);
  EXPECT_EQ(Expressions(), Texts{"\"F2\" F3 \"A1.F2 F2\"F3"});
}

TEST_F(IdentifierKeeperTest, TextsThatDoNotParseFollowToo) {
  Write({"A1 F2 V1", "E1 F2", "A1.F77 F2", "F2 \"F2 open", "A2."});
  for (const auto& element : own->GetOutputFields()) {
    EXPECT_EQ(element->IsValid(), element->GetExpression() == "F2 \"F2 open" ? 1 : 0)
        << element->GetExpression();
  }
  InsertBefore(own, 1);
  document.DeleteRecord(first);
  EXPECT_EQ(Expressions(), (Texts{"?? F3 V1", "E1 F3", "??.?? F3", "F3 \"F2 open", "A1."}));
}

TEST_F(IdentifierKeeperTest, OperatorsBlanksAndParenthesesStayAsTheyAre) {
  Write({"  F2/F3-(F2)*2|F3^<F2>!F3+F2  "});
  InsertBefore(own, 1);
  EXPECT_EQ(Expressions(), Texts{"  F3/F4-(F3)*2|F4^<F3>!F4+F3  "});
}

TEST_F(IdentifierKeeperTest, WordsThatAreNoIdentifiersStayAsTheyAre) {
  const std::string words = "F F0 F02 F22 F2x xF2 F2_ F2,F3 E7 TYPE DESCRIPTION TEMPL_UNITS 2 ??";
  Write({words});
  InsertBefore(own, 1);
  EXPECT_EQ(Expressions(), Texts{words});
}

TEST_F(IdentifierKeeperTest, IdentifiersAreFoundInAnyCaseAndKeepTheirsWhereTheyStayTheSame) {
  Write({"f1 f3 a1.f1 a2", "v1 f1"});
  InsertBefore(own, 2);
  EXPECT_EQ(Expressions(), (Texts{"f1 F4 a1.f1 a2", "v1 f1"}));
  document.DeleteRecord(first);
  EXPECT_EQ(Expressions(), (Texts{"f1 F4 ??.?? A1", "v1 f1"}));
}

TEST_F(IdentifierKeeperTest, WhatIsUnknownStaysUnknownWhateverIsAdded) {
  Write({"F2 A1.F1", "F2"});
  own->RemoveField(Field(own, 2));
  document.DeleteRecord(first);
  InsertBefore(own, 2);
  document.AddRecord(RecordKind::SingleMatch, "new", second);
  EXPECT_EQ(Expressions(), (Texts{"?? ??.??", "??"}));
  for (const auto& field : own->GetInputFields())
    EXPECT_FALSE(document.IsFieldReferenced(field.get(), false));
}

// ------------------------------------------------------------------------------- parsing, saving

TEST_F(IdentifierKeeperTest, ExpressionsAreParsedAgainAndMeanTheSameFields) {
  Write({"F2 V2 A2.F3", "1"});
  const CTNTemplRecOutField* element = Element(own, 1);
  const CTNTemplRecInField* field = Field(own, 2);
  const CTNTemplRecOutField* other = Element(own, 2);
  const CTNTemplRecInField* far = Field(second, 3);
  const auto expectAllMeant = [&] {
    EXPECT_TRUE(element->RefersTo(field));
    EXPECT_TRUE(element->RefersTo(other));
    EXPECT_TRUE(element->RefersTo(far));
    EXPECT_EQ(element->GetExpressionText(), element->GetExpression());
  };
  expectAllMeant();
  InsertBefore(own, 1);
  expectAllMeant();
  own->MoveField(other, element);
  expectAllMeant();
  second->MoveField(far, nullptr);
  expectAllMeant();
  document.MoveRecord(second, first);
  expectAllMeant();
  EXPECT_EQ(element->GetExpression(), "F3 V1 A1.F4");
  own->RemoveField(field);
  EXPECT_FALSE(element->RefersTo(Field(own, 3)));
  EXPECT_TRUE(element->RefersTo(other));
}

TEST_F(IdentifierKeeperTest, TheFollowedTextIsWhatIsSaved) {
  Write({"F2 A2.F1"});
  InsertBefore(own, 1);
  document.DeleteRecord(second);
  std::string xml;
  ASSERT_EQ(document.GetXml(xml), kXmlOk);
  EXPECT_NE(xml.find("<VALUE>F3 ??.?"
                     "?</VALUE>"),
            std::string::npos)
      << xml;
  CTNParserTemplate loaded(nullptr);
  ASSERT_EQ(loaded.LoadFromXml(xml), kXmlOk);
  EXPECT_EQ(loaded.GetEntityRecords()[0]->GetOutputFields()[0]->GetExpression(), "F3 ??.??");
}

TEST_F(IdentifierKeeperTest, ARecordOutsideAnyTemplateKeepsItsExpressionsInStepToo) {
  CTNTemplateRecord alone(nullptr);
  AddField(alone, Alpha());
  AddField(alone, Newline());
  AddOutput(alone, {OutputTag::Size, "F1 F2 A1.F1 V2"});
  alone.MoveField(Field(&alone, 2), Field(&alone, 1));
  EXPECT_EQ(Element(&alone, 1)->GetExpression(), "F2 F1 A1.F2 V2")
      << "without a template A1 is a word like any other";
}

TEST_F(IdentifierKeeperTest, EditingARecordThatIsNotYetInTheTemplateLeavesTheTemplateAlone) {
  Write({"F1 A1.F1"});
  CTNTemplateRecord fresh(&document);
  AddField(fresh, Alpha());
  AddOutput(fresh, {OutputTag::Size, "F1"});
  InsertBefore(&fresh, 1);
  EXPECT_EQ(Element(&fresh, 1)->GetExpression(), "F2");
  EXPECT_EQ(Expressions(), Texts{"F1 A1.F1"});
}

TEST_F(IdentifierKeeperTest, AFieldThatIsNotThereChangesNothing) {
  Write({"F1 F2"});
  EXPECT_EQ(own->RemoveField(Field(first, 1)), nullptr);
  EXPECT_FALSE(own->MoveField(Field(first, 1), Field(own, 1)));
  EXPECT_TRUE(own->MoveField(Field(own, 1), Field(own, 1)));
  EXPECT_EQ(Expressions(), Texts{"F1 F2"});
}

}  // namespace
}  // namespace bomparser
