#include "template/OutputProgram.h"

#include "input/CTNParsedFileBlock.h"
#include "template/CTNTemplateRecord.h"
#include "template/NestingLimits.h"
#include "tnbase/CharRuns.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <tuple>
#include <utility>

namespace bomparser {

namespace {

constexpr std::uint32_t kNone = 0xFFFFFFFF;
/// Of all constant texts together.
constexpr std::size_t kMostTexts = std::size_t{1} << 31;
constexpr std::uint32_t kNothing = 0xFFFFFFFF;  // The length of an absent field.
/// Text is handed on in pieces of this size: large enough for the system, small enough for the
/// processor's cache.
constexpr std::size_t kPiece = std::size_t{256} << 10;
/// Short texts are copied in one go of this many bytes; what is too much is overwritten next.
constexpr std::size_t kShort = 32;
static_assert(kShort <= CTNInputText::kSlack);

}  // namespace

// ------------------------------------------------------------------------------- compiling

class OutputProgram::Compiler {
 public:
  Compiler(OutputProgram& program, const CTNParsedLayout& layout)
      : m_program(program), m_layout(layout), m_noBlock(nullptr) {}

  /// A program that is wanted: of a record's blocks, or of its instances inside another record's.
  /// References in front of an instance count for what it may follow.
  struct Wanted {
    std::uint32_t record;
    Tags tags;
    bool instance;
    int depth;
    bool operator<(const Wanted& other) const {
      return std::tie(record, tags, instance, depth) <
             std::tie(other.record, other.tags, other.instance, other.depth);
    }
  };

  /// The place of the program, which is compiled by CompileWanted.
  std::uint32_t Want(const Wanted& wanted) {
    const auto next = static_cast<std::uint32_t>(m_program.m_programs.size());
    const auto [known, added] = m_known.emplace(wanted, next);
    if (added) {
      m_program.m_programs.push_back({wanted.record, {}});
      m_wanted.push_back(wanted);
    }
    return known->second;
  }

  /// One after the other and not one inside the other: sub-records can form long chains.
  void CompileWanted() {
    for (std::size_t i = 0; i < m_wanted.size(); ++i) {
      const Wanted wanted = m_wanted[i];
      std::optional<ReferenceBudget::Value> value;  // All of an instance is part of one value.
      if (wanted.instance) value.emplace(m_references);
      const ReferenceBudget::Instance instance(m_references, wanted.depth);
      m_program.m_programs[i].ops = CompileOps(wanted.record, wanted.tags);
    }
  }

 private:
  const CTNTemplateRecord& RecordAt(std::uint32_t record) const {
    return static_cast<const CTNTemplateRecord&>(*m_layout.Records()[record].record);
  }

  std::vector<Op> CompileOps(std::uint32_t index, Tags tags) {
    m_record = index;
    const CTNTemplateRecord& record = RecordAt(index);
    const bool wrapped = !record.IsAuxiliary() && tags == Tags::On;
    if (wrapped) AddText("<ENTITY>" + std::string(record.GetTypeName()));
    for (const auto& element : record.GetOutputFields())
      AddElement(*element, tags);
    if (wrapped) AddText("</ENTITY>");
    AddOp(OpKind::End);
    return std::exchange(m_ops, {});
  }

  void AddText(std::string_view text) {
    if (text.empty()) return;
    std::string& texts = m_program.m_texts;
    if (text.size() > kMostTexts - texts.size()) throw std::bad_alloc();
    const auto offset = static_cast<std::uint32_t>(texts.size());
    texts += text;
    const auto size = static_cast<std::uint32_t>(text.size());
    if (m_next.size == 0) m_next.text = offset;
    m_next.size += size;
  }

  /// Adds what comes behind the texts that were added last.
  void AddOp(OpKind kind, std::uint32_t field = 0, std::uint32_t program = 0) {
    Op op = std::exchange(m_next, {});
    op.kind = kind;
    op.field = field;
    op.program = program;
    m_ops.push_back(op);
  }

  void AddElement(const CTNTemplRecOutField& element, Tags tags) {
    if (tags == Tags::Off) {
      AddOp(OpKind::Mark);
      AddItems(element, Tags::Off);
      AddOp(OpKind::Space);
      return;
    }
    const bool bare = element.GetTag() == OutputTag::None;
    const std::string name(element.GetTagText());
    if (!bare) AddText("<" + name + ">");
    AddItems(element, bare ? Tags::On : Tags::Off);
    if (!bare) AddText("</" + name + ">");
  }

  void AddItems(const CTNTemplRecOutField& element, Tags tags) {
    // Elements that name each other: the one that is being put together adds nothing to itself.
    if (std::find(m_open.begin(), m_open.end(), &element) != m_open.end()) return;
    m_open.push_back(&element);
    {
      const ReferenceBudget::Value value(m_references);
      for (const CTNOutFieldValueElement& item : element.GetItems())
        AddItem(item.GetTarget(), tags);
    }
    m_open.pop_back();
  }

  void AddItem(const CTNOutFieldValueElement& item, Tags tags) {
    const CTNTemplateRecord& own = RecordAt(m_record);
    if (item.kind == ValueItemKind::InputField && item.inputField->GetParentRecord() == &own &&
        !own.IsSingleMatch()) {
      AddField(*item.inputField, tags);
    } else if (item.kind == ValueItemKind::OutputSymbol &&
               item.outputElement->GetParentRecord() == &own && !own.IsSingleMatch()) {
      const ReferenceBudget::Reference reference(m_references);
      if (reference.MayBeFollowed()) AddElement(*item.outputElement, Tags::Off);
    } else {
      // All others have the same value for every block.
      std::string constant;
      item.AppendValue(constant, m_noBlock, tags);
      AddText(constant);
    }
  }

  void AddField(const CTNTemplRecInField& field, Tags tags) {
    const std::uint32_t index = m_layout.FieldIndexOf(m_record, &field);
    const auto& fields = m_layout.Records()[m_record].fields;
    if (field.GetType() == FieldKind::SubRecord) {
      const std::uint32_t sub = fields[index].subRecord;
      if (sub == CTNParsedLayout::kNoRecord) return;
      AddOp(OpKind::SubRecords, index, Want({sub, tags, true, m_references.GetDepth()}));
    } else if (field.GetType() == FieldKind::ScanToNext) {
      // One that goes to the line end holds none.
      const bool toLineEnd =
          index + 1 < fields.size() && fields[index + 1].kind == FieldKind::Newline;
      AddOp(toLineEnd ? OpKind::Field : OpKind::Lines, index);
    } else if (field.GetType() != FieldKind::Newline) {
      AddOp(OpKind::Field, index);
    }
  }

  OutputProgram& m_program;
  const CTNParsedLayout& m_layout;
  CTNParsedFileBlock m_noBlock;
  std::map<Wanted, std::uint32_t> m_known;
  std::vector<Wanted> m_wanted;  // By program.
  std::uint32_t m_record = 0;    // The record being compiled, and
  std::vector<Op> m_ops;         // its program so far,
  Op m_next;                     // and the text that the next operation begins with.
  std::vector<const CTNTemplRecOutField*> m_open;
  // The one that values of single-match records count with as well: they are part of the value.
  ReferenceBudget& m_references = ReferenceBudget::OfThisThread();
};

OutputProgram::OutputProgram(const CTNParsedResult& result)
    : m_result(result), m_entities(result.GetLayout().Records().size(), kNone) {
  const CTNParsedLayout& layout = result.GetLayout();
  Compiler compiler(*this, layout);
  for (std::uint32_t i = 0; i < m_entities.size(); ++i) {
    if (IsEntityKind(layout.Records()[i].kind))
      m_entities[i] = compiler.Want({i, Tags::On, false, 0});
  }
  compiler.CompileWanted();
  m_texts.append(kShort, ' ');
  for (const ParsedRecordLayout& record : layout.Records()) {
    Shape shape;
    for (const ParsedFieldLayout& field : record.fields) {
      const bool nests = field.kind == FieldKind::SubRecord;
      shape.nests = shape.nests || nests;
      shape.subRecords.push_back(nests ? field.subRecord : kNone);
    }
    m_shapes.push_back(std::move(shape));
  }
}

// ------------------------------------------------------------------------------- running

/// Gathers text and hands it on in pieces. Who writes much of it takes the place where text goes
/// on (Place), writes there and gives the place behind back (SetPlace).
class OutputProgram::Output {
 public:
  explicit Output(const Sink& sink) : m_sink(sink), m_piece(new char[kPiece + kShort]) {}

  /// Where text goes on, with room for a short one.
  char* Place() {
    if (m_size > kPiece - kShort) Flush();
    return m_piece.get() + m_size;
  }
  void SetPlace(const char* place) { m_size = static_cast<std::size_t>(place - m_piece.get()); }
  /// Adds a text behind which at least kShort bytes can be read, at the place, which moves on.
  char* AddAt(char* place, const char* text, std::size_t size) {
    if (size <= kShort && place <= m_piece.get() + (kPiece - kShort)) {
      std::memcpy(place, text, kShort);
      return place + size;
    }
    return AddMuch(place, {text, size});
  }

  void Add(std::string_view text) {
    if (kPiece - m_size < text.size()) Flush();
    if (text.size() > kPiece) {
      HandOn(text);
      return;
    }
    if (!text.empty()) std::memcpy(m_piece.get() + m_size, text.data(), text.size());
    m_size += text.size();
  }

  void Mark() { m_marks.push_back(Total()); }
  void EndValue() {
    const bool empty = Total() == m_marks.back();
    m_marks.pop_back();
    if (!empty && Last() != ' ') Add(" ");
  }

  bool Flush() {
    if (m_size > 0) HandOn({m_piece.get(), m_size});
    m_size = 0;
    return m_going;
  }
  bool IsGoing() const { return m_going; }

 private:
  [[gnu::noinline]] char* AddMuch(const char* place, std::string_view text) {
    SetPlace(place);
    Add(text);
    return m_piece.get() + m_size;
  }
  std::uint64_t Total() const { return m_handedOn + m_size; }
  char Last() const { return m_size > 0 ? m_piece[m_size - 1] : m_last; }
  void HandOn(std::string_view text) {
    m_going = m_going && m_sink(text);
    m_handedOn += text.size();
    m_last = text.back();
  }

  const Sink& m_sink;
  std::unique_ptr<char[]> m_piece;
  std::size_t m_size = 0;
  std::uint64_t m_handedOn = 0;
  char m_last = ' ';
  bool m_going = true;
  std::vector<std::uint64_t> m_marks;
};

bool OutputProgram::Write(std::string_view before, std::string_view after, const Sink& sink) {
  Output out(sink);
  out.Add(before);
  for (std::size_t i = 0; i < m_result.GetBlockCount() && out.IsGoing(); ++i) {
    const ParsedBlockEntry& block = m_result.GetEntry(i);
    if (block.record == CTNParsedLayout::kNoRecord || m_entities[block.record] == kNone) continue;
    const std::uint8_t* from = m_result.ElementBytes() + block.elements;
    std::uint32_t text = block.text;
    Run(m_entities[block.record], from, text, out);
  }
  out.Add(after);
  return out.Flush();
}

/// Moves `from` and `text` behind the elements of one block.
inline void OutputProgram::Skip(const Shape& shape, const std::uint8_t*& from,
                                std::uint32_t& text) const {
  for (const std::uint32_t sub : shape.subRecords) {
    if (sub == kNone) {
      text += element_code::TakeLength(from).value_or(0);
      continue;
    }
    while (*from++ == element_code::kInstance)
      Skip(m_shapes[sub], from, text);
  }
}

/// Notes in the slots where the fields of the block at hand are, as Skip moves on.
inline void OutputProgram::FindFields(const Shape& shape, std::size_t slots,
                                      const std::uint8_t*& from, std::uint32_t& text) {
  Slot* slot = m_slots.data() + slots;
  for (const std::uint32_t sub : shape.subRecords) {
    slot->text = text;
    if (sub == kNone) {
      const auto length = element_code::TakeLength(from);
      slot->length = length.value_or(kNothing);
      text += length.value_or(0);
    } else {
      slot->elements = static_cast<std::uint32_t>(from - m_result.ElementBytes());
      while (*from++ == element_code::kInstance)
        Skip(m_shapes[sub], from, text);
    }
    ++slot;
  }
}

void OutputProgram::Run(std::uint32_t index, const std::uint8_t*& from, std::uint32_t& text,
                        Output& out) {
  const Program& program = m_programs[index];
  const Shape& shape = ShapeOf(program);
  const std::size_t slots = m_slotsUsed;
  m_slotsUsed += shape.subRecords.size();
  if (m_slots.size() < m_slotsUsed) m_slots.resize(2 * m_slotsUsed);
  FindFields(shape, slots, from, text);
  const auto slotOf = [this, slots](const Op& op) { return m_slots[slots + op.field]; };
  const char* const input = m_result.GetText()->Data();
  const char* const texts = m_texts.data();
  char* place = out.Place();
  for (const Op& op : program.ops) {
    place = out.AddAt(place, texts + op.text, op.size);
    if (op.kind == OpKind::Field) {
      const Slot slot = slotOf(op);
      if (slot.length != kNothing) place = out.AddAt(place, input + slot.text, slot.length);
      continue;
    }
    out.SetPlace(place);
    switch (op.kind) {
      case OpKind::Lines:
        WriteLines(slotOf(op), out);
        break;
      case OpKind::SubRecords:
        RunInstances(op.program, slotOf(op), out);
        break;
      case OpKind::Mark:
        out.Mark();
        break;
      case OpKind::Space:
        out.EndValue();
        break;
      case OpKind::Field:
      case OpKind::End:
        break;
    }
    place = out.Place();
  }
  m_slotsUsed = slots;
}

void OutputProgram::RunInstances(std::uint32_t program, Slot slot, Output& out) {
  const std::uint8_t* from = m_result.ElementBytes() + slot.elements;
  std::uint32_t text = slot.text;
  while (*from++ == element_code::kInstance)
    Run(program, from, text, out);
}

/// Writes what a scan matched. One over line ends gives its lines joined, as its elements are.
void OutputProgram::WriteLines(Slot slot, Output& out) const {
  if (slot.length == kNothing) return;
  const char* from = m_result.GetText()->Data() + slot.text;
  const char* const last = from + slot.length;
  const char* end = FindChar(from, last, '\n');
  const bool joined = end < last;
  for (; end < last; end = FindChar(from, last, '\n')) {
    out.Add({from, end});
    from = end + 1;
  }
  if (!joined || last - from >= 2)
    out.SetPlace(out.AddAt(out.Place(), from, static_cast<std::size_t>(last - from)));
}

}  // namespace bomparser
