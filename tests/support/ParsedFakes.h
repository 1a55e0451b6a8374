#pragma once

#include "input/CTNInputText.h"
#include "input/CTNParsedBlockPtrArray.h"
#include "input/CTNStringCharBuffIter.h"
#include "input/roles/CTNMatchedField.h"
#include "input/roles/CTNMatchedRecord.h"
#include "input/roles/CTNTemplateToApply.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser::test {

class FakeRecord;

/// An input field of a FakeRecord.
class FakeField final : public CTNMatchedField {
 public:
  FakeField(const FakeRecord* parent, FieldKind kind, std::string_view name,
            const FakeRecord* subRecord)
      : m_parent(parent), m_kind(kind), m_name(name), m_subRecord(subRecord) {}

  FieldKind GetFieldKind() const override { return m_kind; }
  std::string_view GetFieldTypeName() const override { return m_name; }
  const CTNMatchedRecord* GetMatchedRecord() const override;
  const CTNMatchedRecord* GetMatchedSubRecord() const override;

 private:
  const FakeRecord* m_parent;
  FieldKind m_kind;
  std::string_view m_name;
  const FakeRecord* m_subRecord;
};

/// A record with any fields. Its entity text is "[text of its first row]", with tags "<...>".
class FakeRecord final : public CTNMatchedRecord {
 public:
  FakeRecord(RecordKind kind, std::string id, std::string name = "name")
      : m_kind(kind), m_id(std::move(id)), m_name(std::move(name)) {}
  FakeRecord(const FakeRecord&) = delete;
  FakeRecord& operator=(const FakeRecord&) = delete;

  const FakeField& Add(FieldKind kind, std::string_view typeName) {
    return *m_fields.emplace_back(std::make_unique<FakeField>(this, kind, typeName, nullptr));
  }
  const FakeField& AddSubRecord(const FakeRecord* record) {
    return *m_fields.emplace_back(
        std::make_unique<FakeField>(this, FieldKind::SubRecord, "SUBRECORD", record));
  }
  const FakeField& At(std::size_t index) const { return *m_fields[index]; }

  RecordKind GetRecordKind() const override { return m_kind; }
  std::string GetRecordId() const override { return m_id; }
  std::string GetRecordName() const override { return m_name; }
  std::size_t GetFieldCount() const override { return m_fields.size(); }
  const CTNMatchedField* GetMatchedFieldAt(std::size_t index) const override {
    return m_fields[index].get();
  }
  bool BuildEntityText(std::string& text, const CTNParsedFileBlock& block,
                       Tags tags) const override {
    std::string row;
    block.GetRowText(row, 0, Markup::Off, Newlines::Hidden);
    text += tags == Tags::On ? "<" + row + ">" : "[" + row + "]";
    return true;
  }

 private:
  RecordKind m_kind;
  std::string m_id;
  std::string m_name;
  std::vector<std::unique_ptr<FakeField>> m_fields;
};

inline const CTNMatchedRecord* FakeField::GetMatchedRecord() const { return m_parent; }
inline const CTNMatchedRecord* FakeField::GetMatchedSubRecord() const { return m_subRecord; }

/// What one record took: for each of its fields nothing, a text, or the instances of its record.
struct Taken {
  struct Value {
    bool present = false;
    std::string text = {};
    std::vector<Taken> instances = {};
  };
  const FakeRecord* record = nullptr;
  std::vector<Value> values = {};

  /// The characters in the order in which they were consumed.
  std::string Text() const {
    std::string text;
    for (const Value& value : values) {
      text += value.text;
      for (const Taken& instance : value.instances)
        text += instance.Text();
    }
    return text;
  }
  /// Writes the elements behind those of the result that is being made.
  void Write(CTNParsedResult& result) const {
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (record->At(i).GetFieldKind() == FieldKind::SubRecord) {
        for (const Taken& instance : values[i].instances) {
          Put(result, element_code::kInstance);
          instance.Write(result);
        }
        Put(result, element_code::kNoMore);
      } else if (values[i].present) {
        std::uint8_t* const to = result.MakeElementRoom(element_code::kMaxBytes);
        const auto length = static_cast<std::uint32_t>(values[i].text.size());
        result.AdvanceElements(static_cast<std::size_t>(element_code::PutLength(to, length) - to));
      } else {
        Put(result, element_code::kAbsent);
      }
    }
  }

 private:
  static void Put(CTNParsedResult& result, std::uint8_t code) {
    *result.MakeElementRoom(1) = code;
    result.AdvanceElements(1);
  }
};

inline Taken::Value Text(std::string text) { return {true, std::move(text), {}}; }
inline Taken::Value Absent() { return {}; }
inline Taken::Value Instances(std::vector<Taken> instances) {
  return {true, {}, std::move(instances)};
}

/// Adds a block with the rows that it shows.
inline std::ptrdiff_t AddBlock(CTNParsedBlockPtrArray& blocks, std::uint32_t text,
                               std::uint32_t textEnd, std::uint32_t elements,
                               std::uint32_t record) {
  const std::uint32_t rows = blocks.GetBuilding().CountRows(text, textEnd, elements, record);
  return blocks.Add(text, textEnd, elements, record, rows);
}

/// Makes a result of the blocks, as an application does. The text is theirs, one after the other.
inline void Fill(CTNParsedBlockPtrArray& blocks, const std::vector<Taken>& taken,
                 ResultUse use = ResultUse::Kept) {
  std::string text;
  auto layout = std::make_shared<CTNParsedLayout>();
  for (const Taken& block : taken) {
    text += block.Text();
    if (block.record != nullptr) layout->Describe(*block.record);
  }
  CTNParsedResult& result = blocks.Begin(CTNInputText::Copy(text), layout, use);
  std::uint32_t at = 0;
  for (const Taken& block : taken) {
    const std::uint32_t elements = result.ElementEnd();
    block.Write(result);
    const auto end = at + static_cast<std::uint32_t>(block.Text().size());
    AddBlock(blocks, at, end, elements, layout->IndexOf(block.record));
    at = end;
  }
}

/// A template without a pattern language: each line up to the end limit becomes a block of one
/// record of a scan and a line end. It notes the calls that it gets.
class FakeTemplate final : public CTNTemplateToApply {
 public:
  LineLimits limits;
  bool empty = false;
  bool parses = true;                       // Otherwise ParseFile fails ...
  std::string parseError;                   // with this as the error.
  std::function<void()> onParse = [] {};    // Called when a scan begins,
  std::function<void()> onIgnored = [] {};  // before an ignored line is taken,
  std::function<void()> onEnd = [] {};      // and when an application ends.
  std::vector<std::string> calls;

  FakeTemplate() {
    for (FakeRecord* record : {&lines, &ignored}) {
      record->Add(FieldKind::ScanToNext, "SCAN_TO_NEXT");
      record->Add(FieldKind::Newline, "NEWLINE");
    }
  }

  LineLimits GetLineLimits() const override { return limits; }
  bool IsEmptyTemplate() const override { return empty; }
  std::string GetTemplateFileName() const override { return "parts.xml"; }
  void BeginApplication(const std::shared_ptr<const CTNInputText>& text,
                        CTNParsedBlockPtrArray& blocks,
                        const ApplicationPurpose& purpose) override {
    calls.push_back("begin");
    m_text = text;
    m_layout = std::make_shared<CTNParsedLayout>();
    m_layout->Describe(lines);
    m_layout->Describe(ignored);
    blocks.Begin(text, m_layout, purpose);
  }
  std::ptrdiff_t TakeIgnoredLine(std::uint32_t line, std::uint32_t lineEnd,
                                 CTNParsedBlockPtrArray& blocks) override {
    calls.push_back("ignored " + std::string(m_text->View().substr(line, lineEnd - line)));
    onIgnored();
    return AddLine(ignored, line, lineEnd, blocks);
  }
  bool ParseFile(CTNStringCharBuffIter& text, CTNParsedBlockPtrArray& blocks, std::string& error,
                 bool& cancelled) override {
    calls.push_back("parse " + std::to_string(text.GetPosition()) + " to " +
                    std::to_string(text.GetEnd()));
    onParse();
    if (!parses) error = parseError;
    std::string line;
    while (parses && text.GetPosition() < text.GetEnd()) {
      const std::uint32_t start = text.GetPosition();
      text.ReadLine(line);
      cancelled = AddLine(lines, start, text.GetPosition(), blocks) < 0;
      if (cancelled) return false;
    }
    return parses;
  }
  void EndApplication(const CTNParsedBlockPtrArray& blocks) override {
    calls.push_back("end " + std::to_string(blocks.GetSize()));
    onEnd();
  }

  FakeRecord lines{RecordKind::Part, "E1"};
  FakeRecord ignored{RecordKind::IgnoredLines, "??"};

 private:
  std::ptrdiff_t AddLine(const FakeRecord& record, std::uint32_t line, std::uint32_t lineEnd,
                         CTNParsedBlockPtrArray& blocks) {
    CTNParsedResult& result = blocks.GetBuilding();
    const std::uint32_t elements = result.ElementEnd();
    const std::string text(m_text->View().substr(line, lineEnd - line));
    if (text.back() != '\n') {
      return AddBlock(blocks, line, lineEnd, elements, CTNParsedLayout::kNoRecord);
    }
    Taken{&record, {Text(text.substr(0, text.size() - 1)), Text("\n")}}.Write(result);
    return AddBlock(blocks, line, lineEnd, elements, m_layout->IndexOf(&record));
  }

  std::shared_ptr<const CTNInputText> m_text;
  std::shared_ptr<CTNParsedLayout> m_layout;
};

/// While it lives, large arrays that ask for at least `bytes` bytes get none: the first `allowed`
/// of such requests succeed, the next `failing` fail.
class MemoryRunsOut {
 public:
  explicit MemoryRunsOut(std::size_t bytes, int allowed = 0, int failing = 1 << 30) {
    s_bytes = bytes;
    s_allowed = allowed;
    s_failing = failing;
    s_real = SetReallocateFunction(Reallocate);
  }
  MemoryRunsOut(const MemoryRunsOut&) = delete;
  MemoryRunsOut& operator=(const MemoryRunsOut&) = delete;
  ~MemoryRunsOut() { SetReallocateFunction(s_real); }

 private:
  static void* Reallocate(void* old, std::size_t bytes) {
    if (bytes >= s_bytes && s_allowed-- <= 0 && s_failing-- > 0) return nullptr;
    return s_real(old, bytes);
  }

  static inline std::size_t s_bytes = 0;
  static inline int s_allowed = 0;
  static inline int s_failing = 0;
  static inline ReallocateFunction s_real = nullptr;
};

}  // namespace bomparser::test
