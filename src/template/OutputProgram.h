#pragma once

#include "input/CTNParsedResult.h"
#include "input/roles/CTNMatchedRecord.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {

/// The entity texts of a result as a program: everything that is the same for all blocks, tag
/// names, literals, attributes and values of single-match records, is put together once; per block
/// only the texts that fields matched are filled in. What it writes is what BuildEntityText writes.
///
/// Made after an application, for its result; both the template and the result outlive it.
class OutputProgram {
 public:
  explicit OutputProgram(const CTNParsedResult& result);

  /// Takes the text in pieces; answers false to stop.
  using Sink = std::function<bool(std::string_view)>;
  /// Hands the entity texts of all blocks, in order and in large pieces, to the sink, with `before`
  /// in front and `after` behind. False when the sink stopped it.
  bool Write(std::string_view before, std::string_view after, const Sink& sink);

 private:
  enum class OpKind : std::uint8_t {
    Text,        // A constant text.
    Field,       // What a field matched.
    SubRecords,  // The entity texts of a sub-record field's instances.
    Mark,        // Remembers where a value starts.
    Space,       // Ends it with a blank if it is not empty and does not end in one.
  };
  struct Op {
    OpKind kind;
    FieldKind field;      // Of Field.
    std::uint32_t index;  // Of a field its place in the record; of a text its offset in m_texts.
    std::uint32_t size;   // Of a text; of SubRecords the place of the instances' program.
  };
  /// The output of one record, with tags or without.
  struct Program {
    std::uint32_t record;
    std::vector<Op> ops;
  };
  /// Where a field's text, or the elements of its instances, are in the block at hand.
  struct Slot {
    std::uint32_t text;
    std::uint32_t length;
    std::uint32_t elements;
  };
  class Compiler;
  class Output;

  void Run(std::uint32_t index, const std::uint8_t*& from, std::uint32_t& text, Output& out);
  void RunInstances(std::uint32_t program, const Slot& slot, Output& out);
  void WriteField(const Slot& slot, FieldKind kind, Output& out) const;

  const CTNParsedResult& m_result;
  std::vector<std::uint32_t> m_entities;  // By record of the layout: its program, or kNone.
  std::vector<Program> m_programs;
  std::string m_texts;
  std::vector<Slot> m_slots;  // A stack: each nested block has its own part.
};

}  // namespace bomparser
