#include "template/CTNTemplRecInField.h"
#include "template/FieldTypes.h"

#include <array>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace bomparser {
namespace {

FieldKind KindOf(int code) { return static_cast<FieldKind>(code); }

/// What a type allows, as letters: v match values, c case, l match length, s sub-record.
std::string Allowed(int code) {
  std::string letters;
  if (CTNTemplRecInField::AllowsMatchValues(KindOf(code))) letters += 'v';
  if (CTNTemplRecInField::AllowsCaseSensitivity(KindOf(code))) letters += 'c';
  if (CTNTemplRecInField::AllowsMatchLength(KindOf(code))) letters += 'l';
  if (CTNTemplRecInField::IsSubRecordType(KindOf(code))) letters += 's';
  return letters;
}

TEST(FieldTypes, EveryCodeHasItsNameAndItsAllowedAttributes) {
  struct Row {
    std::string_view name;
    std::string_view allowed;
  };
  constexpr std::array<Row, 13> kRows = {{{"STRING", "vc"},
                                          {"COLUMN", "l"},
                                          {"ALPHANUMERIC", "vcl"},
                                          {"ALPHA", "vcl"},
                                          {"WHOLE_NUM", "vl"},
                                          {"DECIMAL_NUM", "vl"},
                                          {"SPACE", ""},
                                          {"TAB", ""},
                                          {"WHTSPACE", "l"},
                                          {"NOT_WHTSPACE", "l"},
                                          {"NEWLINE", ""},
                                          {"SCAN_TO_NEXT", "l"},
                                          {"SUBRECORD", "vs"}}};
  for (std::size_t code = 0; code < kRows.size(); ++code) {
    const int number = static_cast<int>(code);
    EXPECT_EQ(CTNTemplRecInField::GetTypeName(KindOf(number)), kRows[code].name);
    EXPECT_EQ(Allowed(number), kRows[code].allowed) << kRows[code].name;
    EXPECT_EQ(GetFieldType(KindOf(number)).kind, KindOf(number));
  }
}

TEST(FieldTypes, AnyOtherCodeIsNamedUndefinedAndAllowsMatchValuesOnly) {
  for (const int code : {-2, -1, 13, 14, 99, 1 << 30}) {
    EXPECT_EQ(CTNTemplRecInField::GetTypeName(KindOf(code)), "UNDEFINED") << code;
    EXPECT_EQ(Allowed(code), "v") << code;
  }
}

TEST(FieldTypes, NamesAreFoundInAnyCase) {
  for (int code = 0; code <= 12; ++code) {
    std::string name(GetFieldType(KindOf(code)).name);
    ASSERT_NE(FindFieldType(name), nullptr) << name;
    EXPECT_EQ(FindFieldType(name)->kind, KindOf(code));
    for (char& c : name) {
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    ASSERT_NE(FindFieldType(name), nullptr) << name;
    EXPECT_EQ(FindFieldType(name)->kind, KindOf(code));
  }
}

TEST(FieldTypes, NoOtherNameIsFoundNotEvenUndefined) {
  for (const std::string_view name : {"", "UNDEFINED", "STRIN", "STRINGS", " STRING", "WHITESPACE"})
    EXPECT_EQ(FindFieldType(name), nullptr) << name;
}

}  // namespace
}  // namespace bomparser
