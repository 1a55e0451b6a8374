#include "ui/controls/CTNTemplateComboBoxes.h"

#include "tests/support/TemplateBuilder.h"
#include "tests/ui/support/UiTest.h"
#include "ui/controls/CTNInPlaceComboBoxes.h"

#include <QStandardItemModel>

namespace bomparser::test {
namespace {

/// The entries as "code text", the selected one marked with ">".
std::vector<std::string> Entries(const QComboBox& box) {
  std::vector<std::string> entries;
  entries.reserve(static_cast<std::size_t>(box.count()));
  for (int entry = 0; entry < box.count(); ++entry) {
    entries.push_back((entry == box.currentIndex() ? ">" : "") +
                      box.itemData(entry).toString().toStdString() + " " +
                      box.itemText(entry).toStdString());
  }
  return entries;
}

std::vector<int> Codes(const QComboBox& box) {
  std::vector<int> codes;
  codes.reserve(static_cast<std::size_t>(box.count()));
  for (int entry = 0; entry < box.count(); ++entry)
    codes.push_back(box.itemData(entry).toInt());
  return codes;
}

std::vector<int> Ranges(std::initializer_list<std::pair<int, int>> ranges) {
  std::vector<int> codes;
  for (const auto& [first, last] : ranges) {
    for (int code = first; code <= last; ++code)
      codes.push_back(code);
  }
  return codes;
}

template <class Box, class... Values>
std::unique_ptr<Box> Filled(Values&&... values) {
  auto box = std::make_unique<Box>(nullptr, std::forward<Values>(values)...);
  box->Fill();
  return box;
}

using Lines = std::vector<std::string>;

TEST(CTNFieldTypeComboBoxTest, OffersTheThirteenTypesInCodeOrderAndSelectsTheCurrentOne) {
  const auto box = Filled<CTNFieldTypeComboBox>(FieldKind::Alpha);
  EXPECT_EQ(Entries(*box),
            (Lines{"0 STRING", "1 COLUMN", "2 ALPHANUMERIC", ">3 ALPHA", "4 WHOLE_NUM",
                   "5 DECIMAL_NUM", "6 SPACE", "7 TAB", "8 WHTSPACE", "9 NOT_WHTSPACE",
                   "10 NEWLINE", "11 SCAN_TO_NEXT", "12 SUBRECORD"}));
  EXPECT_TRUE(box->HasCurrentValue());
}

TEST(CTNFieldTypeComboBoxTest, AnUndefinedTypeShowsTheFirstEntryAndIsNoCurrentValue) {
  const auto box = Filled<CTNFieldTypeComboBox>(FieldKind::Undefined);
  EXPECT_EQ(box->currentText(), "STRING");
  EXPECT_FALSE(box->HasCurrentValue());
}

TEST(CTNFieldTypeComboBoxTest, FillingAgainDoesNotDoubleTheEntries) {
  const auto box = Filled<CTNFieldTypeComboBox>(FieldKind::SubRecord);
  box->Fill();
  EXPECT_EQ(box->count(), 13);
  EXPECT_EQ(box->currentText(), "SUBRECORD");
}

TEST(CTNRecTypeComboBoxTest, AnEntityRecordIsOfferedTheEntityTypes) {
  EXPECT_EQ(Entries(*Filled<CTNRecTypeComboBox>(RecordKind::Drill)),
            (Lines{"1 Aperture", ">2 Drill", "3 Part"}));
}

TEST(CTNRecTypeComboBoxTest, AnyOtherRecordIsOfferedTheAuxiliaryTypesWithTheMarkOfSingleMatch) {
  EXPECT_EQ(Entries(*Filled<CTNRecTypeComboBox>(RecordKind::SubRecord)),
            (Lines{"6 Single Match*", "7 Multiple Match", ">8 Sub-Record"}));
}

TEST(CTNRecTypeComboBoxTest, ARecordWithoutTypeShowsTheFirstEntryOfItsKind) {
  for (const RecordKind kind : {RecordKind::Undefined, RecordKind::FreshEntity}) {
    const auto box = Filled<CTNRecTypeComboBox>(kind);
    EXPECT_EQ(box->currentText(), "Aperture");
    EXPECT_FALSE(box->HasCurrentValue());
  }
  for (const RecordKind kind : {RecordKind::UndefinedAuxiliary, RecordKind::FreshAuxiliary}) {
    const auto box = Filled<CTNRecTypeComboBox>(kind);
    EXPECT_EQ(box->currentText(), "Single Match*");
    EXPECT_FALSE(box->HasCurrentValue());
  }
}

TEST(CTNOutFieldKeyComboBoxTest, OffersTheTagsThatSuitTheRecordsTypeInCodeOrder) {
  const auto codesFor = [](RecordKind kind) {
    return Codes(*Filled<CTNOutFieldKeyComboBox>(kind, OutputTag::None));
  };
  EXPECT_EQ(codesFor(RecordKind::Aperture), Ranges({{0, 27}, {36, 37}, {74, 79}}));
  EXPECT_EQ(codesFor(RecordKind::Drill), Ranges({{30, 33}, {36, 37}, {74, 79}}));
  EXPECT_EQ(codesFor(RecordKind::Part), Ranges({{40, 71}, {74, 79}}));
  for (const RecordKind kind :
       {RecordKind::FreshEntity, RecordKind::SingleMatch, RecordKind::SubRecord}) {
    EXPECT_EQ(codesFor(kind), Ranges({{0, 27}, {30, 33}, {36, 37}, {74, 79}}));
  }
}

TEST(CTNOutFieldKeyComboBoxTest, EveryEntryHasItsTagsNameAndTheCurrentOneIsSelected) {
  const auto box = Filled<CTNOutFieldKeyComboBox>(RecordKind::Drill, OutputTag::Diameter);
  EXPECT_EQ(Entries(*box), (Lines{"30 TCODE", "31 PLATED", "32 DRILL_SPEED", "33 FEED_RATE",
                                  ">36 DIAMETER", "37 RADIUS", "74 ROTATION", "75 SCALE",
                                  "76 UNITS", "77 DIM_X", "78 DIM_Y", "79 NONE"}));
}

TEST(CTNOutFieldKeyComboBoxTest, ATagThatIsNotOfferedShowsTheFirstEntry) {
  for (const OutputTag tag : {OutputTag::Undefined, OutputTag::DCode}) {
    const auto box = Filled<CTNOutFieldKeyComboBox>(RecordKind::Part, tag);
    EXPECT_EQ(box->currentText(), "REF_DESIGNATOR");
    EXPECT_FALSE(box->HasCurrentValue());
  }
}

class CTNSubRecMatchValueComboBoxTest : public testing::Test {
 protected:
  std::unique_ptr<CTNSubRecMatchValueComboBox> Box(const CTNTemplateRecord* current) const {
    return Filled<CTNSubRecMatchValueComboBox>(document, current);
  }
  static Lines Texts(const QComboBox& box) {
    Lines texts;
    for (int entry = 0; entry < box.count(); ++entry)
      texts.push_back(box.itemText(entry).toStdString());
    return texts;
  }

  CTNParserTemplate document{nullptr};
};

TEST_F(CTNSubRecMatchValueComboBoxTest, OffersAuxiliaryRecordsInListOrderWithoutSingleMatchOnes) {
  document.AddRecord(RecordKind::Part, "parts");
  document.AddRecord(RecordKind::SubRecord, "pins of a part");
  document.AddRecord(RecordKind::SingleMatch, "header");
  CTNTemplateRecord* const last = document.AddRecord(RecordKind::FreshAuxiliary, "");
  const auto box = Box(last);
  EXPECT_EQ(Texts(*box), (Lines{"A1 - pins of a part", "A3 - "}));
  EXPECT_EQ(box->currentIndex(), 1);
  EXPECT_TRUE(box->HasCurrentValue());
}

TEST_F(CTNSubRecMatchValueComboBoxTest, RecordsOfOneNameAreToldApart) {
  document.AddRecord(RecordKind::SubRecord, "pins");
  const CTNTemplateRecord* const second = document.AddRecord(RecordKind::SubRecord, "pins");
  const auto box = Box(second);
  EXPECT_EQ(box->currentText(), "A2 - pins");
  EXPECT_NE(box->itemData(0), box->itemData(1));
}

TEST_F(CTNSubRecMatchValueComboBoxTest, WithoutALinkedRecordTheFirstEntryIsShown) {
  document.AddRecord(RecordKind::SubRecord, "pins");
  const auto box = Box(nullptr);
  EXPECT_EQ(box->currentText(), "A1 - pins");
  EXPECT_FALSE(box->HasCurrentValue());
}

TEST_F(CTNSubRecMatchValueComboBoxTest, ALinkedSingleMatchRecordIsNotOffered) {
  document.AddRecord(RecordKind::SubRecord, "pins");
  const auto box = Box(document.AddRecord(RecordKind::SingleMatch, "header"));
  EXPECT_EQ(box->currentText(), "A1 - pins");
  EXPECT_FALSE(box->HasCurrentValue());
}

TEST_F(CTNSubRecMatchValueComboBoxTest, ATemplateWithoutSuchRecordsGivesAnEmptyBox) {
  document.AddRecord(RecordKind::SingleMatch, "header");
  const auto box = Box(nullptr);
  EXPECT_EQ(box->count(), 0);
  EXPECT_FALSE(box->HasCurrentValue());
}

TEST_F(CTNSubRecMatchValueComboBoxTest, NamesOfEightBitBytesAreShownAsWindows1252) {
  document.AddRecord(RecordKind::SubRecord,
                     "Gr\xF6\xDF"
                     "e");
  EXPECT_EQ(Texts(*Box(nullptr)), Lines{"A1 - Größe"});
}

TEST(CTNTrueFalseComboBoxTest, OffersTrueThenFalseAndSelectsTheCurrentValue) {
  EXPECT_EQ(Entries(*Filled<CTNTrueFalseComboBox>(true)), (Lines{">1 TRUE", "0 FALSE"}));
  EXPECT_EQ(Entries(*Filled<CTNTrueFalseComboBox>(false)), (Lines{"1 TRUE", ">0 FALSE"}));
}

TEST(CTNTrueFalseComboBoxTest, WithoutAValueNothingIsSelected) {
  const auto box = Filled<CTNTrueFalseComboBox>(std::nullopt);
  EXPECT_EQ(box->currentIndex(), -1);
  EXPECT_FALSE(box->HasCurrentValue());
}

TEST(CTNTrueFalseComboBoxTest, ItsLongestEntryIsFalse) {
  const auto box = Filled<CTNTrueFalseComboBox>(true);
  EXPECT_EQ(box->GetLongestEntryWidth(), box->fontMetrics().horizontalAdvance("FALSE"));
  box->addItem("a longer entry that is there for sizing");
  EXPECT_EQ(box->GetLongestEntryWidth(), box->fontMetrics().horizontalAdvance("FALSE"));
}

TEST(CTNAperRecDescComboBoxTest, OffersStandardThenCustomShapesInCapitals) {
  EXPECT_EQ(Entries(*Filled<CTNAperRecDescComboBox>("rectangle")),
            (Lines{"0 ROUND", "1 OCTAGON", "2 SQUARE", "3 HEXAGON", ">4 RECTANGLE", "5 OBLONG",
                   "6 THERMAL", "7 DONUT", "8 CROSS", "10 MAGNIFIED", "12 DIAMOND", "13 POLYGON",
                   "15 OVAL", "16 ROUND THERMAL", "17 SQUARE THERMAL", "18 CHAMFERED RECTANGLE",
                   "19 ROUNDED RECTANGLE", "20 BULLET", "21 TEXT"}));
}

TEST(CTNAperRecDescComboBoxTest, ADescriptionThatNamesNoShapeAddsUndefinedAndShowsIt) {
  for (const char* description : {"", "pads", "None", "Complex", "ROUN"}) {
    const auto box = Filled<CTNAperRecDescComboBox>(description);
    EXPECT_EQ(box->count(), 20) << description;
    EXPECT_EQ(Entries(*box).back(), ">22 UNDEFINED") << description;
  }
}

TEST(CTNAperRecDescComboBoxTest, UndefinedIsNoCurrentValueSoLeavingTheBoxKeepsTheDescription) {
  EXPECT_FALSE(Filled<CTNAperRecDescComboBox>("pads")->HasCurrentValue());
  EXPECT_TRUE(Filled<CTNAperRecDescComboBox>("Oval")->HasCurrentValue());
  const QString name = Filled<CTNAperRecDescComboBox>("")->itemText(0);
  const auto first = Filled<CTNAperRecDescComboBox>(name);
  EXPECT_EQ(first->currentIndex(), 0);
  EXPECT_TRUE(first->HasCurrentValue());

  QStandardItemModel cells(1, 1);
  EditedValue value;
  CTNInPlaceAperRecDescComboBox left(nullptr, cells.index(0, 0), QStringLiteral("pads"));
  EXPECT_FALSE(left.GetValue(value));
  emit left.activated(left.currentIndex());
  ASSERT_TRUE(left.GetValue(value));
  EXPECT_EQ(value.text, "UNDEFINED");
  EXPECT_EQ(value.data.toInt(), 22);
}

TEST(CTNTemplateComboBoxesTest, ADropDownIsMeasuredByItsLongestEntry) {
  const auto box = Filled<CTNFieldTypeComboBox>(FieldKind::String);
  EXPECT_EQ(box->GetLongestEntryWidth(), box->fontMetrics().horizontalAdvance("NOT_WHTSPACE"));
}

TEST(CTNTemplateComboBoxesTest, EveryInPlaceBoxIsFilledKnowsItsCellAndHasTheirCommonNumber) {
  QStandardItemModel cells(3, 3);
  const QModelIndex cell = cells.index(2, 1);
  CTNParserTemplate document(nullptr);
  document.AddRecord(RecordKind::SubRecord, "pins");
  CTNInPlaceFieldTypeComboBox fieldType(nullptr, cell, FieldKind::Tab);
  CTNInPlaceRecTypeComboBox recordType(nullptr, cell, RecordKind::Part);
  CTNInPlaceOutFieldKeyComboBox tag(nullptr, cell, RecordKind::Part, OutputTag::Rotation);
  CTNInPlaceSubRecMatchValueComboBox subRecord(nullptr, cell, document,
                                               document.GetAuxiliaryRecords().front().get());
  CTNInPlaceTrueFalseComboBox trueFalse(nullptr, cell, false);
  CTNInPlaceAperRecDescComboBox shape(nullptr, cell, QStringLiteral("BULLET"));

  const auto expect = [](const auto& box, const char* text) {
    EXPECT_EQ(box.currentText(), text);
    EXPECT_EQ(GetControlId(box), Ctrl::InPlaceCombo);
    EXPECT_EQ(std::pair(box.GetItem(), box.GetSubItem()), std::pair(2, 1));
    EditedValue value;
    EXPECT_TRUE(box.GetValue(value));
    EXPECT_EQ(value.text, text);
    EXPECT_EQ(value.data, box.currentData());
  };
  expect(fieldType, "TAB");
  expect(recordType, "Part");
  expect(tag, "ROTATION");
  expect(subRecord, "A1 - pins");
  expect(trueFalse, "FALSE");
  expect(shape, "BULLET");
}

}  // namespace
}  // namespace bomparser::test
