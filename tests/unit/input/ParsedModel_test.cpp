// The flat arrays of a result, read through cursor, rows and counts, against a model that follows
// the rules one by one; and that large blocks are walked without large memory.

#include "input/CTNParsedBlockPtrArray.h"
#include "tests/support/ParsedFakes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <new>
#include <random>
#include <string>
#include <vector>

namespace bomparser {
namespace {

using test::FakeRecord;
using test::Taken;

struct ModelElement {
  const FakeRecord* record;
  std::string id;
  std::string type;
  std::string text;
  bool lineEnd;

  std::string Shown(Markup markup, Newlines newlines) const {
    const RecordKind kind = record->GetRecordKind();
    const bool builtIn = kind == RecordKind::IgnoredLines || kind == RecordKind::UnmatchedLines;
    if (markup == Markup::Off || builtIn) {
      return (lineEnd && newlines == Newlines::Shown ? "<NEWLINE>" : "") + text;
    }
    const std::string place = record->GetRecordId() + "." + id;
    return "<" + place + "," + type + ">" + text + (text.empty() ? "" : "</" + place + ">");
  }
};

using ModelRow = std::vector<ModelElement>;

void AddScan(const FakeRecord* record, const std::string& id, const std::string& text,
             ModelRow& all) {
  std::size_t from = 0;
  for (std::size_t at = 0; (at = text.find('\n', from)) != std::string::npos; from = at + 1) {
    all.push_back({record, id, "SCAN_TO_NEXT", text.substr(from, at - from), false});
    all.push_back({record, "\?\?", "NEWLINE", "", true});
  }
  if (from == 0 || text.size() - from >= 2) {
    all.push_back({record, id, "SCAN_TO_NEXT", text.substr(from), false});
  }
}

void AddElements(const Taken& taken, ModelRow& all) {
  for (std::size_t i = 0; i < taken.values.size(); ++i) {
    const Taken::Value& value = taken.values[i];
    const auto& field = taken.record->At(i);
    const std::string id = "F" + std::to_string(i + 1);
    for (const Taken& instance : value.instances)
      AddElements(instance, all);
    if (!value.present || field.GetFieldKind() == FieldKind::SubRecord) continue;
    if (field.GetFieldKind() == FieldKind::ScanToNext) {
      AddScan(taken.record, id, value.text, all);
    } else {
      const bool lineEnd = field.GetFieldKind() == FieldKind::Newline;
      all.push_back({taken.record, id, std::string(field.GetFieldTypeName()),
                     lineEnd ? "" : value.text, lineEnd});
    }
  }
}

std::vector<ModelRow> RowsOf(const Taken& taken) {
  ModelRow all;
  AddElements(taken, all);
  std::vector<ModelRow> rows;
  for (const ModelElement& element : all) {
    if (rows.empty() || rows.back().back().lineEnd) rows.emplace_back();
    rows.back().push_back(element);
  }
  return rows;
}

void CountBlocks(const Taken& taken, std::map<const FakeRecord*, std::uint32_t>& counts) {
  ++counts[taken.record];
  for (const Taken::Value& value : taken.values) {
    for (const Taken& instance : value.instances)
      CountBlocks(instance, counts);
  }
}

/// Random records, some of which contain others or themselves, and blocks that they took.
class RandomModel {
 public:
  explicit RandomModel(std::uint32_t seed) : m_engine(seed) {
    constexpr RecordKind kKinds[] = {RecordKind::Part, RecordKind::MultipleMatch,
                                     RecordKind::SubRecord, RecordKind::UnmatchedLines,
                                     RecordKind::IgnoredLines};
    for (int i = 0; i < 5; ++i) {
      records.push_back(
          std::make_unique<FakeRecord>(kKinds[Below(5)], "R" + std::to_string(i + 1)));
    }
    for (const auto& record : records)
      AddFields(*record);
    for (std::uint32_t i = Below(12); i > 0; --i)
      blocks.push_back(Take(*records[Below(5)], 0));
  }

  std::vector<std::unique_ptr<FakeRecord>> records;
  std::vector<Taken> blocks;

 private:
  std::uint32_t Below(std::uint32_t count) {
    return static_cast<std::uint32_t>(m_engine() % count);
  }

  void AddFields(FakeRecord& record) {
    for (std::uint32_t i = Below(6); i > 0; --i) {
      switch (Below(5)) {
        case 0:
          record.AddSubRecord(records[Below(5)].get());
          break;
        case 1:
          record.Add(FieldKind::ScanToNext, "SCAN_TO_NEXT");
          break;
        case 2:
          record.Add(FieldKind::NotWhtSpace, "NOT_WHTSPACE");
          break;
        default:
          record.Add(FieldKind::Newline, "NEWLINE");
      }
    }
  }
  std::string Characters(std::string_view from) {
    std::string text;
    const std::uint32_t most = Below(40) == 0 ? 600 : 6;
    for (std::uint32_t i = Below(most); i > 0; --i)
      text += from[Below(static_cast<std::uint32_t>(from.size()))];
    return text;
  }
  Taken Take(const FakeRecord& record, int depth) {
    Taken taken{&record, {}};
    for (std::size_t i = 0; i < record.GetFieldCount(); ++i) {
      Taken::Value value;
      value.present = Below(4) != 0;
      const FieldKind kind = record.At(i).GetFieldKind();
      if (value.present && kind == FieldKind::Newline) value.text = "\n";
      if (value.present && kind == FieldKind::ScanToNext) value.text = Characters("ab\n\n\t");
      if (value.present && kind == FieldKind::NotWhtSpace) value.text = Characters("ab\t");
      if (value.present && kind == FieldKind::SubRecord && depth < 4) {
        const auto& sub = static_cast<const FakeRecord&>(*record.At(i).GetMatchedSubRecord());
        for (std::uint32_t n = Below(3); n > 0; --n)
          value.instances.push_back(Take(sub, depth + 1));
      }
      taken.values.push_back(std::move(value));
    }
    return taken;
  }

  std::mt19937 m_engine;
};

void ExpectRowsAsInModel(const CTNParsedFileBlock& block, const std::vector<ModelRow>& model) {
  ASSERT_EQ(block.GetRowCount(), model.size());
  const std::vector<CTNParsedFileRow> rows = block.GetRows();
  ASSERT_EQ(rows.size(), model.size());
  for (std::size_t i = 0; i < model.size(); ++i) {
    EXPECT_EQ(rows[i].IsComplete(), model[i].back().lineEnd);
    EXPECT_EQ(rows[i].GetElements().size(), model[i].size());
    for (const Markup markup : {Markup::Off, Markup::On}) {
      for (const Newlines newlines : {Newlines::Hidden, Newlines::Shown}) {
        std::string expected;
        for (const ModelElement& element : model[i])
          expected += element.Shown(markup, newlines);
        std::string plain;
        rows[i].GetText(plain, markup, newlines);
        EXPECT_EQ(plain, expected);
        ExpandTabs(expected, 8);
        std::string text;
        block.GetRowText(text, i, markup, newlines);
        EXPECT_EQ(text, expected);
      }
    }
  }
}

void ExpectElementsAsInModel(const CTNParsedFileBlock& block, const Taken& taken) {
  ModelRow all;
  AddElements(taken, all);
  CTNElementCursor cursor(*block.GetResult(), block.GetPlace());
  std::size_t count = 0;
  for (ShownElement element; cursor.Next(element); ++count) {
    ASSERT_LT(count, all.size());
    EXPECT_EQ(element.record->record, all[count].record);
    EXPECT_EQ(element.text, all[count].text);
    EXPECT_EQ(element.EndsRow(), all[count].lineEnd);
  }
  EXPECT_EQ(count, all.size());
  EXPECT_EQ(cursor.TextPosition(), block.GetPlace().text + taken.Text().size());
}

/// The same for the instances of its sub-record fields, all the way down.
void ExpectInstancesAsInModel(const CTNParsedFileBlock& block, const Taken& taken) {
  for (std::size_t i = 0; i < taken.values.size(); ++i) {
    const auto instances = block.GetSubRecords(taken.record->At(i));
    ASSERT_EQ(instances.size(), taken.values[i].instances.size());
    for (std::size_t n = 0; n < instances.size(); ++n) {
      const Taken& instance = taken.values[i].instances[n];
      ExpectElementsAsInModel(instances[n].GetBlock(), instance);
      ExpectInstancesAsInModel(instances[n].GetBlock(), instance);
    }
  }
}

/// A block that is filled by hand with the same fields.
CTNParsedFileBlock FilledByHand(const Taken& taken) {
  CTNParsedFileBlock block(nullptr);
  for (std::size_t i = 0; i < taken.values.size(); ++i) {
    const auto& field = taken.record->At(i);
    for (const Taken& instance : taken.values[i].instances) {
      const CTNParsedFileBlock nested = FilledByHand(instance);
      EXPECT_TRUE(block.AddFieldText(instance.Text(), field, &nested));
    }
    if (taken.values[i].present && field.GetFieldKind() != FieldKind::SubRecord) {
      EXPECT_TRUE(block.AddFieldText(taken.values[i].text, field));
    }
  }
  block.SetRecord(taken.record);
  return block;
}

TEST(ParsedModel, ResultsReadAsTheModelDoesOnRandomRecordsAndBlocks) {
  for (std::uint32_t seed = 1; seed <= 600; ++seed) {
    SCOPED_TRACE(seed);
    const RandomModel model(seed);
    CTNParsedBlockPtrArray blocks(nullptr);
    test::Fill(blocks, model.blocks);
    ASSERT_EQ(blocks.GetSize(), model.blocks.size());
    std::uint64_t lines = 0;
    std::uint32_t text = 0;
    std::map<const FakeRecord*, std::uint32_t> counts;
    for (std::size_t i = 0; i < model.blocks.size(); ++i) {
      const Taken& taken = model.blocks[i];
      const CTNParsedFileBlock block = blocks.GetAt(i);
      const std::vector<ModelRow> rows = RowsOf(taken);
      ExpectRowsAsInModel(block, rows);
      ExpectElementsAsInModel(block, taken);
      ExpectInstancesAsInModel(block, taken);
      EXPECT_EQ(block.ToReadableText(), FilledByHand(taken).ToReadableText());
      EXPECT_EQ(block.GetPlace().text, text);
      text += static_cast<std::uint32_t>(taken.Text().size());
      EXPECT_EQ(blocks.GetResult()->GetTextEnd(i), text);
      lines += rows.size();
      CountBlocks(taken, counts);
    }
    EXPECT_EQ(blocks.GetStats().totalLines, lines);
    for (const auto& record : model.records)
      EXPECT_EQ(blocks.GetBlockCount(record.get()), counts[record.get()]);
    if (testing::Test::HasFailure()) break;
  }
}

TEST(ParsedModel, BlocksFilledByHandReadAsTheModelDoes) {
  for (std::uint32_t seed = 2001; seed <= 2300; ++seed) {
    SCOPED_TRACE(seed);
    const RandomModel model(seed);
    for (const Taken& taken : model.blocks) {
      const CTNParsedFileBlock block = FilledByHand(taken);
      ExpectRowsAsInModel(block, RowsOf(taken));
      ExpectInstancesAsInModel(block, taken);
    }
    if (testing::Test::HasFailure()) break;
  }
}

// ------------------------------------------------------------------------------- large blocks

/// The memory of large arrays that is asked for while it lives.
class LargeArrays {
 public:
  LargeArrays() {
    s_asked = 0;
    s_real = SetReallocateFunction(Reallocate);
  }
  LargeArrays(const LargeArrays&) = delete;
  LargeArrays& operator=(const LargeArrays&) = delete;
  ~LargeArrays() { SetReallocateFunction(s_real); }
  static std::size_t Asked() { return s_asked; }

 private:
  static void* Reallocate(void* old, std::size_t bytes) {
    s_asked += bytes;
    return s_real(old, bytes);
  }

  static inline std::size_t s_asked = 0;
  static inline ReallocateFunction s_real = nullptr;
};

TEST(ParsedModel, MoreElementsThanTheNumbersCanTellAreNotAdded) {
  const auto text = CTNInputText::Copy("");
  // Of their memory, which nobody touches here, arrays get no more than the first bytes.
  static ReallocateFunction s_real = nullptr;
  s_real = SetReallocateFunction(
      [](void* old, std::size_t bytes) { return s_real(old, std::min<std::size_t>(bytes, 64)); });
  {
    CTNParsedResult result(text, std::make_shared<CTNParsedLayout>());
    constexpr std::uint32_t kMost = 0xFFFFFFFF;
    result.MakeElementRoom(std::size_t{kMost} + 1);
    result.AdvanceElements(kMost);
    EXPECT_EQ(result.ElementEnd(), kMost);
    EXPECT_THROW(result.AdvanceElements(1), std::bad_alloc);
    EXPECT_EQ(result.ElementEnd(), kMost);
  }
  SetReallocateFunction(s_real);
}

constexpr std::uint32_t kMany = 1'000'000;

TEST(ParsedModel, ABlockOfAMillionRowsIsOneStoredElementAndItsRowsAreTakenInWindows) {
  FakeRecord record(RecordKind::Part, "E1");
  record.Add(FieldKind::ScanToNext, "SCAN_TO_NEXT");
  record.Add(FieldKind::Newline, "NEWLINE");
  std::string text;
  for (std::uint32_t i = 0; i < kMany; ++i)
    text += i + 1 < kMany ? "row\n" : "last";
  CTNParsedBlockPtrArray blocks(nullptr);
  test::Fill(blocks, {{&record, {test::Text(text), test::Text("\n")}}});
  EXPECT_EQ(blocks.GetResult()->ElementEnd(), 6u);
  EXPECT_EQ(blocks.GetStats().totalLines, kMany);
  const LargeArrays memory;
  const CTNParsedFileBlock block = blocks.GetAt(0);
  EXPECT_EQ(block.GetRowCount(), kMany);
  const auto window = block.GetRows(kMany - 2, 100);
  ASSERT_EQ(window.size(), 2u);
  EXPECT_EQ(window[1].GetElements().size(), 2u);
  EXPECT_EQ(window[1].GetElements()[0].GetValue(), "last");
  std::string row;
  block.GetRowText(row, kMany / 2, Markup::Off, Newlines::Shown);
  EXPECT_EQ(row, "row<NEWLINE>");
  EXPECT_EQ(LargeArrays::Asked(), 0u);
}

TEST(ParsedModel, ACopyOfTheCursorIsAWayBackIntoALargeBlock) {
  FakeRecord record(RecordKind::Part, "E1");
  record.Add(FieldKind::ScanToNext, "SCAN_TO_NEXT");
  CTNParsedBlockPtrArray blocks(nullptr);
  test::Fill(blocks, {{&record, {test::Text("aa\nbb\ncc\ndd")}}});
  CTNElementCursor cursor(*blocks.GetResult(), blocks.GetAt(0).GetPlace());
  const auto rest = [](CTNElementCursor from) {
    std::string texts;
    for (ShownElement element; from.Next(element);)
      texts += element.EndsRow() ? "/" : std::string(element.text);
    return texts;
  };
  ShownElement element;
  for (int i = 0; i < 3; ++i)
    ASSERT_TRUE(cursor.Next(element));
  const CTNElementCursor kept = cursor;
  EXPECT_EQ(rest(cursor), "/cc/dd");
  while (cursor.Next(element)) {
  }
  EXPECT_EQ(rest(cursor), "");
  EXPECT_EQ(rest(kept), "/cc/dd");
}

TEST(ParsedModel, AMillionNestedInstancesTakeAFewBytesEachAndAreWalkedWithoutMore) {
  FakeRecord item(RecordKind::SubRecord, "A1");
  item.Add(FieldKind::Alpha, "ALPHA");
  item.Add(FieldKind::Newline, "NEWLINE");
  FakeRecord outer(RecordKind::Part, "E1");
  const auto& sub = outer.AddSubRecord(&item);
  std::string text;
  auto layout = std::make_shared<CTNParsedLayout>();
  layout->Describe(outer);
  for (std::uint32_t i = 0; i < kMany; ++i)
    text += "x\n";
  CTNParsedBlockPtrArray blocks(nullptr);
  CTNParsedResult& result = blocks.Begin(CTNInputText::Copy(text), layout);
  const auto put = [&result](std::uint8_t code) {
    *result.MakeElementRoom(1) = code;
    result.AdvanceElements(1);
  };
  for (std::uint32_t i = 0; i < kMany; ++i) {
    for (const std::uint8_t code : {element_code::kInstance, std::uint8_t{1}, std::uint8_t{1}})
      put(code);
  }
  put(element_code::kNoMore);
  test::AddBlock(blocks, 0, 2 * kMany, 0, 0);
  EXPECT_EQ(blocks.GetResult()->ElementEnd(), 3 * kMany + 1);
  EXPECT_EQ(blocks.GetStats().totalLines, kMany);
  const LargeArrays memory;
  EXPECT_EQ(blocks.GetBlockCount(&item), kMany);
  const CTNParsedFileBlock block = blocks.GetAt(0);
  EXPECT_EQ(block.GetRowCount(), kMany);
  CTNElementCursor cursor(*blocks.GetResult(), block.GetPlace());
  std::uint32_t inside = 0;
  for (ShownElement element; cursor.Next(element);)
    inside += cursor.IsInside() ? 1 : 0;
  EXPECT_EQ(inside, 2 * kMany);
  std::string value;
  block.AppendFieldValue(value, sub, Tags::Off);
  EXPECT_EQ(value.size(), 3 * kMany);
  EXPECT_EQ(LargeArrays::Asked(), 0u);
}

TEST(ParsedModel, TwoHundredNestedRecordsAreRead) {
  FakeRecord circle(RecordKind::SubRecord, "A1");
  circle.Add(FieldKind::Alpha, "ALPHA");
  circle.AddSubRecord(&circle);
  Taken taken{&circle, {test::Text("x"), test::Absent()}};
  for (int i = 0; i < 200; ++i) {
    std::vector<Taken> inner;
    inner.push_back(std::move(taken));
    taken = {&circle, {test::Text("x"), test::Instances(std::move(inner))}};
  }
  CTNParsedBlockPtrArray blocks(nullptr);
  test::Fill(blocks, {taken});
  EXPECT_EQ(blocks.GetBlockCount(&circle), 201u);
  EXPECT_EQ(blocks.GetAt(0).GetRows().at(0).GetElements().size(), 201u);
}

}  // namespace
}  // namespace bomparser
