#include "bench/Inputs.h"

#include "bench/TemplateText.h"

#include <array>
#include <cstdint>
#include <fmt/format.h>
#include <iterator>
#include <random>
#include <string_view>

namespace bomparser::bench {

namespace {

constexpr unsigned kOddLineEvery = 50;
constexpr unsigned kCommentEvery = 80;
constexpr unsigned kLinesOfPage = 60;

/// Numbers that look random. The distributions of the library differ from system to system; the
/// generator and a remainder do not.
class Dice {
 public:
  unsigned Below(unsigned limit) { return static_cast<unsigned>(m_generator() % limit); }
  bool OneIn(unsigned count) { return Below(count) == 0; }
  template <std::size_t Count>
  std::string_view OneOf(const std::array<std::string_view, Count>& names) {
    return names[Below(Count)];
  }

 private:
  std::mt19937 m_generator{20'051};
};

struct PartFamily {
  std::string_view letter;
  std::string_view name;
  std::string_view unit;
  std::array<std::string_view, 4> packages;
};

constexpr std::array<PartFamily, 6> kFamilies = {{
    {"R", "Chip resistor, thick film", "k", {"0402", "0603", "0805", "1206"}},
    {"C", "Ceramic capacitor, X7R", "nF", {"0402", "0603", "0805", "1210"}},
    {"L", "Wire-wound inductor", "uH", {"0603", "1008", "1812", "SMD-5x5"}},
    {"U", "Integrated circuit", "V", {"SOIC-8", "TSSOP-20", "QFN-32", "LQFP-100"}},
    {"Q", "Transistor, small signal", "V", {"SOT23", "SOT323", "SOT89", "DPAK"}},
    {"X", "Connector, straight", "pos", {"HDR-1x4", "HDR-2x5", "USB-C", "RJ45"}},
}};

constexpr std::array<std::string_view, 5> kMakers = {"Nordvolt", "Kestrel Parts", "OHMICA",
                                                     "Taiyama & Sons", "Brightwell"};
constexpr std::array<std::string_view, 4> kRotations = {"0", "90", "180", "-90"};

const PartFamily& PickFamily(Dice& dice) {
  // Most of a board is resistors and capacitors.
  const unsigned throwOf = dice.Below(20);
  return kFamilies[throwOf < 16 ? throwOf / 8 : 2 + (throwOf - 16)];
}

std::string PartNumberOf(Dice& dice, const PartFamily& family) {
  return fmt::format("{}{}-{:05}{}", family.letter, dice.Below(10), dice.Below(100'000),
                     dice.OneIn(3) ? "-TR" : "");
}

std::string Millimetres(Dice& dice) {
  const unsigned thousandths = dice.Below(300'000);
  return fmt::format("{}{}.{:03}", dice.OneIn(4) ? "-" : "", thousandths / 1000,
                     thousandths % 1000);
}

// ----------------------------------------------------------------------------- placement list

void AddPageHeading(std::string& text, unsigned page) {
  fmt::format_to(std::back_inserter(text), "\nPage {}\n", page);
  text += "Refdes  Side           X          Y  Angle  Package     Article           Value\n";
  text += "------  ------  --------  ---------  -----  ----------  ----------------  -------\n";
}

void AddPlacement(std::string& text, Dice& dice) {
  const PartFamily& family = PickFamily(dice);
  fmt::format_to(std::back_inserter(text), "{:<7} {:<6} {:>9}  {:>9}  {:>5}  {:<10}  {:<16}  {}{}",
                 fmt::format("{}{}", family.letter, 1 + dice.Below(4000)),
                 dice.OneIn(3) ? "BOTTOM" : "TOP", Millimetres(dice), Millimetres(dice),
                 dice.OneOf(kRotations), dice.OneOf(family.packages), PartNumberOf(dice, family),
                 1 + dice.Below(999), family.unit);
  text += dice.OneIn(5) ? "  \n" : "\n";
}

/// Lines that look like a placement for a while.
void AddOddPlacement(std::string& text, Dice& dice) {
  const unsigned number = dice.Below(4000);
  switch (dice.Below(3)) {
    case 0:
      fmt::format_to(std::back_inserter(text), "R{:<6} TOP     {:>9}  {:>9}\n", number,
                     Millimetres(dice), Millimetres(dice));
      return;
    case 1:
      fmt::format_to(std::back_inserter(text), "FID{:<4} TOP     {:>9}  {:>9}  0\n", number,
                     number / 20, number / 30);
      return;
    default:
      fmt::format_to(std::back_inserter(text), "C{} is not fitted in this variant\n", number);
  }
}

// -------------------------------------------------------------------------- bill of materials

void AddDesignators(std::string& text, Dice& dice, std::string_view letter, unsigned count) {
  unsigned number = 1 + dice.Below(900);
  for (unsigned i = 0; i < count; ++i) {
    fmt::format_to(std::back_inserter(text), "{}{}{}", i == 0 ? "" : ", ", letter, number);
    number += 1 + dice.Below(3);
  }
}

void AddItem(std::string& text, Dice& dice, unsigned item) {
  const PartFamily& family = PickFamily(dice);
  const unsigned count = 1 + dice.Below(dice.OneIn(4) ? 24 : 6);
  fmt::format_to(std::back_inserter(text), "{};{};", item, count);
  AddDesignators(text, dice, family.letter, count);
  fmt::format_to(std::back_inserter(text), ";{};{};{};{} {};{}, {} %\n", PartNumberOf(dice, family),
                 dice.OneOf(kMakers), dice.OneOf(family.packages), 1 + dice.Below(999), family.unit,
                 family.name, 1 + dice.Below(20));
}

void AddOddItem(std::string& text, Dice& dice, unsigned item) {
  switch (dice.Below(3)) {
    case 0:
      fmt::format_to(std::back_inserter(text), "{};as needed;Z1;;;;;Conformal coating\n", item);
      return;
    case 1:
      text += ";;;;see the assembly drawing;;;\n";
      return;
    default:
      fmt::format_to(std::back_inserter(text), "{};{};;;;;;without designator\n", item,
                     dice.Below(9));
  }
}

// ------------------------------------------------------------------------------ other templates

/// Fields of one line in columns, by the type of each column.
using Columns = std::array<std::string_view, 6>;

// None of them fits a placement; the last two find out late.
constexpr std::array<Columns, 4> kOtherColumns = {{
    {"WHOLE_NUM", "ALPHANUMERIC", "DECIMAL_NUM", "DECIMAL_NUM", "WHOLE_NUM", "NOT_WHTSPACE"},
    {"ALPHANUMERIC", "DECIMAL_NUM", "DECIMAL_NUM", "WHOLE_NUM", "ALPHA", "NOT_WHTSPACE"},
    {"ALPHANUMERIC", "NOT_WHTSPACE", "DECIMAL_NUM", "DECIMAL_NUM", "ALPHA", "NOT_WHTSPACE"},
    {"ALPHANUMERIC", "ALPHA", "DECIMAL_NUM", "DECIMAL_NUM", "DECIMAL_NUM", "ALPHA"},
}};

struct Separator {
  std::string_view type;
  std::string_view value;
};

constexpr std::array<Separator, 3> kSeparators = {{{"WHTSPACE", {}}, {"STRING", ";"}, {"TAB", {}}}};
constexpr std::array<std::string_view, 4> kCommentMarks = {"#", "//|#", "*", "!"};

std::string OtherTemplate(Dice& dice, std::size_t number) {
  TemplateText text(fmt::format("Variant {}", number));
  text.LinesFrom(dice.OneOf(kCommentMarks), "Comment");
  if (dice.OneIn(2)) text.BlankLines();
  if (dice.OneIn(3)) text.LinesFrom("Page|Sheet", "Page");
  for (unsigned left = 1 + dice.Below(2); left > 0; --left) {
    const Columns& columns = kOtherColumns[dice.Below(kOtherColumns.size())];
    const Separator& separator = kSeparators[dice.Below(kSeparators.size())];
    text.Record("Part", "Line");
    for (const std::string_view column : columns)
      text.Field(column).Field(separator.type, separator.value);
    // What is left of the line; or an end mark, which scans on for as long as there is none.
    text.Field("SCAN_TO_NEXT");
    if (dice.OneIn(3)) text.Field("STRING", "pcs|ea");
    text.Field("NEWLINE").Output("REF_DESIGNATOR", "F1").Output("PART_NUMBER", "F11");
  }
  return text.Finish();
}

// -------------------------------------------------------------------------------- repetitions

std::string TemplateOfWords(std::string_view follower) {
  TemplateText text("Words");
  text.Record("Sub-Record", "Word").Field("ALPHANUMERIC").Field("NEWLINE");
  text.Output("REF_DESIGNATOR", "F1");
  text.Record("Part", "Words")
      .Field("SUBRECORD", "A1")
      .Field("STRING", follower)
      .Field("NEWLINE")
      .Output("NONE", "F1")
      .Output("PART_NUMBER", "F2");
  return text.Finish();
}

}  // namespace

std::string MakePlacementList(std::size_t size) {
  Dice dice;
  std::string text = "* mount list, panel of 6\nUnits = mm\n";
  text.reserve(size + 200);
  for (unsigned line = 0; text.size() < size; ++line) {
    if (line % kLinesOfPage == 0) AddPageHeading(text, line / kLinesOfPage + 1);
    if (dice.OneIn(kOddLineEvery)) {
      AddOddPlacement(text, dice);
    } else if (dice.OneIn(kCommentEvery)) {
      fmt::format_to(std::back_inserter(text), "* nozzle {}\n", dice.Below(12));
    } else {
      AddPlacement(text, dice);
    }
  }
  return text;
}

std::string PlacementTemplate() {
  TemplateText text("Placement list");
  text.Record("Single Match", "Units")
      .Field("STRING", "Units")
      .Optional("WHTSPACE")
      .Field("STRING", "=")
      .Optional("WHTSPACE")
      .Field("ALPHA", "mm|inch|mil")
      .Field("NEWLINE");
  text.LinesFrom("*", "Comment").BlankLines();
  text.LinesFrom("Page ", "Page").LinesFrom("Refdes", "Titles").LinesFrom("---", "Rule");
  text.Record("Part", "Placement")
      .Optional("WHTSPACE")
      .Field("ALPHANUMERIC")  // F2 designator
      .Field("WHTSPACE")
      .Field("ALPHA", "TOP|BOTTOM")  // F4 side
      .Field("WHTSPACE")
      .Field("DECIMAL_NUM")  // F6 x
      .Field("WHTSPACE")
      .Field("DECIMAL_NUM")  // F8 y
      .Field("WHTSPACE")
      .Field("WHOLE_NUM")  // F10 angle
      .Field("WHTSPACE")
      .Field("NOT_WHTSPACE")  // F12 package
      .Field("WHTSPACE")
      .Field("NOT_WHTSPACE")  // F14 article
      .Field("WHTSPACE")
      .Field("NOT_WHTSPACE")  // F16 value
      .Optional("WHTSPACE")
      .Field("NEWLINE");
  text.Output("REF_DESIGNATOR", "F2")
      .Output("SIDEDNESS", "F4")
      .Output("X_LOCATION", "F6")
      .Output("Y_LOCATION", "F8")
      .Output("ROTATION", "F10")
      .Output("PACKAGE", "F12")
      .Output("PART_NUMBER", "F14")
      .Output("VALUE", "F16")
      .Output("UNITS", "A1.F5");
  return text.Finish();
}

std::string MakeBillOfMaterials(std::size_t size) {
  Dice dice;
  std::string text = "* bill of materials, variant B\n\n";
  text.reserve(size + 600);
  text += "Item;Quantity;Designators;Article;Maker;Package;Value;Description\n";
  for (unsigned item = 1; text.size() < size; ++item) {
    if (dice.OneIn(kOddLineEvery)) AddOddItem(text, dice, item);
    if (dice.OneIn(kCommentEvery))
      fmt::format_to(std::back_inserter(text), "[group {}]\n", dice.Below(40));
    AddItem(text, dice, item);
  }
  return text;
}

std::string BillOfMaterialsTemplate() {
  TemplateText text("Bill of materials");
  text.Record("Sub-Record", "Designator")
      .Field("ALPHANUMERIC")
      .Optional("STRING", ",")
      .Optional("WHTSPACE")
      .Output("REF_DESIGNATOR", "F1");
  text.LinesFrom("*|[", "Comment").BlankLines().LinesFrom("Item;", "Titles");
  text.Record("Part", "Item")
      .Field("WHOLE_NUM")  // F1 item
      .Field("STRING", ";")
      .Field("WHOLE_NUM")  // F3 quantity
      .Field("STRING", ";")
      .Field("SUBRECORD", "A1")  // F5 designators
      .Field("STRING", ";")
      .Field("SCAN_TO_NEXT")  // F7 article
      .Field("STRING", ";")
      .Field("SCAN_TO_NEXT")  // F9 maker
      .Field("STRING", ";")
      .Field("SCAN_TO_NEXT")  // F11 package
      .Field("STRING", ";")
      .Field("SCAN_TO_NEXT")  // F13 value
      .Field("STRING", ";")
      .Field("SCAN_TO_NEXT")  // F15 description
      .Field("NEWLINE");
  text.Output("NONE", "F5")
      .Output("PART_NUMBER", "F7")
      .Output("PART_ID", "\"item \" F1")
      .Output("PART_TYPE", "F9")
      .Output("PACKAGE", "F11")
      .Output("VALUE", "F13")
      .Output("DESCRIPTION", "F15");
  return text.Finish();
}

std::string HostileTemplate() {
  TemplateText text("Scan without end");
  text.LinesFrom("*", "Comment").BlankLines();
  text.Record("Part", "Never ends")
      .Field("ALPHANUMERIC")
      .Field("WHTSPACE")
      .Field("SCAN_TO_NEXT")
      .Field("STRING", "@end@")
      .Field("NEWLINE");
  text.Output("REF_DESIGNATOR", "F1").Output("PART_NUMBER", "F3");
  return text.Finish();
}

std::string MakeLongLine(std::size_t size) {
  std::string text;
  text.reserve(size + 20);
  for (unsigned word = 0; text.size() + 1 < size; ++word)
    fmt::format_to(std::back_inserter(text), "word{} ", word % 1000);
  text.back() = '\n';
  return text;
}

std::string MakeEmptyLines(std::size_t count) { return std::string(count, '\n'); }

std::string MakeMarkedList(std::size_t size) { return MakePlacementList(size) + "@end@\n"; }

std::string SwallowTemplate() {
  TemplateText text("Scan to the end");
  text.Record("Part", "Everything")
      .Field("SCAN_TO_NEXT")
      .Field("STRING", "@end@")
      .Field("NEWLINE")
      .Output("REF_DESIGNATOR", "F1")
      .Output("PART_NUMBER", "F2");
  return text.Finish();
}

std::string MakeWordLines(std::size_t count) {
  std::string text;
  for (std::size_t line = 0; line < count; ++line)
    fmt::format_to(std::back_inserter(text), "R{}\n", line % 1000);
  return text + "=end\n";
}

std::string RepetitionTemplate() { return TemplateOfWords("=end"); }

std::string EndlessRepetitionTemplate() { return TemplateOfWords("=never"); }

std::string TemplateOfRecords(std::size_t count) {
  TemplateText text("Many records");
  for (std::size_t i = 0; i < count; ++i) {
    if (i % 2 != 0) {
      text.LinesFrom(fmt::format("note{}|remark{}", i, i), "Note");
      continue;
    }
    text.Record("Part", fmt::format("Part of kind {}", i))
        .Field("STRING", fmt::format("kind{}", i))
        .Field("WHTSPACE")
        .Field("ALPHANUMERIC")
        .Field("WHTSPACE")
        .Field("DECIMAL_NUM")
        .Field("WHTSPACE")
        .Field("NOT_WHTSPACE")
        .Optional("WHTSPACE")
        .Field("NEWLINE");
    text.Output("REF_DESIGNATOR", "F3").Output("PART_NUMBER", "F7").Output("X_LOCATION", "F5");
  }
  return text.Finish();
}

std::vector<std::string> TemplatesToChooseFrom(std::size_t count) {
  Dice dice;
  std::vector<std::string> templates;
  for (std::size_t i = 0; i < count; ++i)
    templates.push_back(i == ChoiceOf(count) ? PlacementTemplate() : OtherTemplate(dice, i));
  return templates;
}

}  // namespace bomparser::bench
