#include "template/OutputProgram.h"

#include "input/CTNParsedFileBlock.h"
#include "template/CTNTemplateRecord.h"
#include "template/NestingLimits.h"
#include "tnbase/GrowArray.h"
#include "tnbase/RunFinder.h"
#include "tnbase/WorkAhead.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <new>
#include <optional>
#include <tuple>
#include <utility>

namespace bomparser {

namespace {

constexpr std::uint32_t kNone = 0xFFFFFFFF;
/// Of all constant texts together.
constexpr std::size_t kMostTexts = std::size_t{1} << 31;
/// Text is handed on in pieces of exactly this size: large enough for the system, small enough for
/// the processor's cache. A file is written faster when its pieces start at multiples of their
/// size.
constexpr std::size_t kPiece = std::size_t{256} << 10;
/// Threads share the list in parts of so much text of the input, whose list is a few times as long.
constexpr std::uint32_t kPartOfText = 64U << 10;
constexpr std::uint32_t kWorthSharing = 32 * kPartOfText;
constexpr std::size_t kPartsPerThread = 4;
/// A part that grows longer is not made ahead: it goes out as it is made.
constexpr std::size_t kLongestPart = 16 * kPiece;
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
    SubRecords& subRecords = m_subRecords.emplace_back();
    // A field that names no record matches nothing: its mark reads as a text of no length.
    for (const ParsedFieldLayout& field : record.fields)
      subRecords.push_back(field.kind == FieldKind::SubRecord ? field.subRecord : kNone);
  }
}

// ------------------------------------------------------------------------------- running

/// Gathers text and hands it on in pieces, or keeps it where there is no sink. Who writes much of
/// it takes the place where text goes on (Place), writes there and gives the place behind back
/// (SetPlace).
class OutputProgram::Output {
 public:
  Output() = default;
  /// The sink outlives it.
  explicit Output(const Sink& sink) : m_sink(&sink) { Reserve(kPiece); }

  /// For an output that keeps its text: makes it ready, with the memory that it has from before.
  void BeginAnew() {
    if (m_full == nullptr) Reserve(kPiece);
    m_size = 0;
    m_handedOn = 0;
    m_going = true;
    m_marks.clear();
    m_slotsUsed = 0;
  }
  std::string_view GetKept() const { return {m_piece.Data(), m_size}; }

  /// Where text goes on.
  char* Place() { return m_piece.Data() + m_size; }
  void SetPlace(const char* place) { m_size = static_cast<std::size_t>(place - m_piece.Data()); }
  /// Adds a text behind which at least kShort bytes can be read, at the place, which moves on.
  char* AddAt(char* place, const char* text, std::size_t size) {
    if (size <= kShort && place <= m_full) {
      std::memcpy(place, text, kShort);
      return place + size;
    }
    return AddMuch(place, {text, size});
  }

  /// Long texts go by way of the piece as well: where a mapped file has been cut short, the
  /// system's call could not read them.
  void Add(std::string_view text) {
    for (;;) {
      const std::size_t size = std::min(text.size(), Capacity() - std::min(m_size, Capacity()));
      if (size > 0) std::memcpy(Place(), text.data(), size);
      m_size += size;
      text.remove_prefix(size);
      if (text.empty()) return;
      MakeRoom();
    }
  }

  /// The same for a long text that is in memory, when nothing is gathered.
  void AddAsItIs(std::string_view text) {
    if (!text.empty()) HandOn(text);
  }

  /// Slots for the fields of one block, or of a block inside it. They are a stack: the place of the
  /// first is given back by FreeSlots. SlotsAt holds until more are taken.
  std::size_t TakeSlots(std::size_t count) {
    const std::size_t first = m_slotsUsed;
    m_slotsUsed += count;
    if (m_slots.size() < m_slotsUsed) m_slots.resize(2 * m_slotsUsed);
    return first;
  }
  void FreeSlots(std::size_t first) { m_slotsUsed = first; }
  Slot* SlotsAt(std::size_t first) { return m_slots.data() + first; }

  void Mark() { m_marks.push_back(Total()); }
  void EndValue() {
    const bool empty = Total() == m_marks.back();
    m_marks.pop_back();
    if (!empty && Last() != ' ') Add(" ");
  }

  bool Flush() {
    if (m_size > 0) HandOn(GetKept());
    m_size = 0;
    return m_going;
  }
  /// False when the sink has answered so, or when the text is too long for keeping.
  bool IsGoing() const { return m_going; }

 private:
  std::size_t Capacity() const { return static_cast<std::size_t>(m_full - m_piece.Data()); }
  void Reserve(std::size_t capacity) {
    m_piece.Reserve(capacity + kShort);
    m_full = m_piece.Data() + capacity;
  }
  /// Where the piece is full: hands it on, or makes it longer.
  void MakeRoom() {
    if (m_sink == nullptr && Capacity() < kLongestPart) {
      Reserve(2 * Capacity());
      return;
    }
    HandOn({m_piece.Data(), Capacity()});
    m_size -= Capacity();  // The last short text may have gone beyond the end.
    std::memcpy(m_piece.Data(), m_full, m_size);
  }
  [[gnu::noinline]] char* AddMuch(const char* place, std::string_view text) {
    SetPlace(place);
    Add(text);
    return m_piece.Data() + m_size;
  }
  std::uint64_t Total() const { return m_handedOn + m_size; }
  char Last() const { return m_size > 0 ? m_piece.Data()[m_size - 1] : m_last; }
  void HandOn(std::string_view text) {
    m_going = m_going && m_sink != nullptr && (*m_sink)(text);
    m_handedOn += text.size();
    m_last = text.back();
  }

  const Sink* m_sink = nullptr;  // Not owned; may be null.
  GrowArray<char> m_piece;       // As memory only: its size is not told.
  const char* m_full = nullptr;  // Its end; the last short text may go beyond, by kShort bytes.
  std::size_t m_size = 0;
  std::uint64_t m_handedOn = 0;
  char m_last = ' ';
  bool m_going = true;
  std::vector<std::uint64_t> m_marks;
  std::vector<Slot> m_slots;
  std::size_t m_slotsUsed = 0;
};

bool OutputProgram::Write(std::string_view before, std::string_view after, const Sink& sink,
                          unsigned threads) const {
  const std::vector<std::size_t> starts = StartsOfParts(threads > 1);
  const std::size_t parts = starts.size() - 1;
  const auto makePart = [this, &starts](std::size_t, std::size_t part, Output& made) {
    made.BeginAnew();
    WriteBlocks(starts[part], starts[part + 1], made);
    return made.IsGoing();
  };
  const std::size_t workers = std::min<std::size_t>(threads, parts) - 1;
  WorkAhead<Output> ahead(workers, parts, kPartsPerThread * (workers + 1), makePart);
  Output out(sink);
  out.Add(before);
  for (std::size_t part = 0; part < parts && out.IsGoing(); ++part) {
    const Output* const made = ahead.Take(part);
    if (made == nullptr) {
      WriteBlocks(starts[part], starts[part + 1], out);
    } else {
      out.Flush();
      out.AddAsItIs(made->GetKept());
    }
  }
  out.Add(after);
  return out.Flush();
}

std::uint32_t OutputProgram::TextBetween(std::size_t first, std::size_t last) const {
  return m_result.GetTextEnd(last - 1) - m_result.GetEntry(first).text;
}

/// The first blocks of the parts that threads share, and the number of blocks. One part at least,
/// and one only where they do not share or where it is not worth it.
std::vector<std::size_t> OutputProgram::StartsOfParts(bool shared) const {
  const std::size_t blocks = m_result.GetBlockCount();
  std::vector<std::size_t> starts{0};
  if (shared && blocks > 0 && TextBetween(0, blocks) >= kWorthSharing) {
    for (std::size_t i = 1; i < blocks; ++i) {
      if (TextBetween(starts.back(), i) >= kPartOfText) starts.push_back(i);
    }
  }
  starts.push_back(blocks);
  return starts;
}

void OutputProgram::WriteBlocks(std::size_t first, std::size_t last, Output& out) const {
  for (std::size_t i = first; i < last && out.IsGoing(); ++i) {
    const ParsedBlockEntry& block = m_result.GetEntry(i);
    if (block.record == CTNParsedLayout::kNoRecord || m_entities[block.record] == kNone) continue;
    WriteBlock(m_entities[block.record], {m_result.ElementBytes() + block.elements, block.text},
               out);
  }
}

/// Moves behind the element of one field that is no sub-record. Returns its length, 0 for an absent
/// one.
inline std::uint32_t OutputProgram::TakeField(Reading& at) {
  const std::uint8_t code = *at.elements;
  if (code == element_code::kLong) {
    const std::uint32_t length = element_code::TakeLength(at.elements).value_or(0);
    at.text += length;
    return length;
  }
  const std::uint32_t length = code == element_code::kAbsent ? 0 : code;
  ++at.elements;
  at.text += length;
  return length;
}

/// Where the elements of the instances of a sub-record end. By value, so that the compiler can hold
/// it in registers.
OutputProgram::Reading OutputProgram::SkipInstances(std::uint32_t record, Reading at) const {
  const SubRecords& subRecords = m_subRecords[record];
  while (*at.elements++ == element_code::kInstance) {
    for (const std::uint32_t sub : subRecords) {
      if (sub == kNone) {
        TakeField(at);
      } else {
        at = SkipInstances(sub, at);
      }
    }
  }
  return at;
}

/// Notes where the fields of one block are, and moves behind its elements.
inline void OutputProgram::FindFields(const SubRecords& subRecords, Slot* slot, Reading& at) const {
  for (const std::uint32_t sub : subRecords) {
    slot->text = at.text;
    if (sub == kNone) {
      slot->length = TakeField(at);
    } else {
      slot->elements = static_cast<std::uint32_t>(at.elements - m_result.ElementBytes());
      at = SkipInstances(sub, at);
    }
    ++slot;
  }
}

void OutputProgram::WriteBlock(std::uint32_t index, Reading at, Output& out) const {
  const Program& program = m_programs[index];
  const SubRecords& subRecords = m_subRecords[program.record];
  const std::size_t slots = out.TakeSlots(subRecords.size());
  FindFields(subRecords, out.SlotsAt(slots), at);
  out.SetPlace(Run(program, slots, out.Place(), out));
  out.FreeSlots(slots);
}

void OutputProgram::WriteInstances(std::uint32_t index, const Slot& first, Output& out) const {
  const Program& program = m_programs[index];
  const SubRecords& subRecords = m_subRecords[program.record];
  Reading at{m_result.ElementBytes() + first.elements, first.text};
  const std::size_t slots = out.TakeSlots(subRecords.size());
  char* place = out.Place();
  while (*at.elements++ == element_code::kInstance) {
    FindFields(subRecords, out.SlotsAt(slots), at);
    place = Run(program, slots, place, out);
  }
  out.SetPlace(place);
  out.FreeSlots(slots);
}

/// Writes the text of one block, whose fields are in the slots, at the place, which moves on.
inline char* OutputProgram::Run(const Program& program, std::size_t slots, char* place,
                                Output& out) const {
  const char* const input = m_result.GetText()->Data();
  const char* const texts = m_texts.data();
  const Slot* slot = out.SlotsAt(slots);
  for (const Op& op : program.ops) {
    place = out.AddAt(place, texts + op.text, op.size);
    if (op.kind == OpKind::Field) {
      const Slot& field = slot[op.field];
      place = out.AddAt(place, input + field.text, field.length);
    } else if (op.kind != OpKind::End) {
      out.SetPlace(place);
      RunSlowly(op, slot, out);
      place = out.Place();
      slot = out.SlotsAt(slots);
    }
  }
  return place;
}

void OutputProgram::RunSlowly(const Op& op, const Slot* slots, Output& out) const {
  switch (op.kind) {
    case OpKind::Lines:
      WriteLines(slots[op.field], out);
      break;
    case OpKind::SubRecords:
      WriteInstances(op.program, slots[op.field], out);
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
}

/// Writes what a scan matched. One over line ends gives its lines joined, as its elements are.
void OutputProgram::WriteLines(const Slot& slot, Output& out) const {
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
