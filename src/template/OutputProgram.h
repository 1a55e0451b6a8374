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
/// Made after an application, for its result, which outlives it. The template is read by the
/// constructor only.
class OutputProgram {
 public:
  explicit OutputProgram(const CTNParsedResult& result);

  /// Takes the text in pieces; answers false to stop.
  using Sink = std::function<bool(std::string_view)>;
  /// Hands the entity texts of all blocks, in order and in large pieces, to the sink, with `before`
  /// in front and `after` behind. False when the sink stopped it. So many threads may work on it,
  /// the caller's included; it is the caller's that calls the sink.
  bool Write(std::string_view before, std::string_view after, const Sink& sink,
             unsigned threads = 1) const;

 private:
  enum class OpKind : std::uint8_t {
    End,         // Nothing: the text in front is the last.
    Field,       // What a field matched.
    Lines,       // What a scan matched that may go over line ends.
    SubRecords,  // The entity texts of a sub-record field's instances.
    Mark,        // Remembers where a value starts.
    Space,       // Ends it with a blank if it is not empty and does not end in one.
  };
  /// A constant text, and what comes behind it.
  struct Op {
    OpKind kind = OpKind::End;
    std::uint32_t field = 0;    // Of a field its place in the record.
    std::uint32_t program = 0;  // Of SubRecords that of the instances.
    std::uint32_t text = 0;     // The constant text's offset in m_texts,
    std::uint32_t size = 0;     // and its size.
  };
  /// The output of one record, with tags or without.
  struct Program {
    std::uint32_t record;
    std::vector<Op> ops;
  };
  /// By field of a record: the record that it names, or kNone.
  using SubRecords = std::vector<std::uint32_t>;
  /// How far the elements of a block are read, and where the text of the next one starts.
  struct Reading {
    const std::uint8_t* elements;
    std::uint32_t text;
  };
  /// Where a field's text, or the elements of its instances, are in the block at hand.
  struct Slot {
    std::uint32_t text;
    union {
      std::uint32_t length;    // 0 for an absent field.
      std::uint32_t elements;  // Of a SUBRECORD field.
    };
  };
  class Compiler;
  class Output;

  static std::uint32_t TakeField(Reading& at);
  Reading SkipInstances(std::uint32_t record, Reading at) const;
  void FindFields(const SubRecords& subRecords, Slot* slot, Reading& at) const;
  std::uint32_t TextBetween(std::size_t first, std::size_t last) const;
  std::vector<std::size_t> StartsOfParts(bool shared) const;
  void WriteBlocks(std::size_t first, std::size_t last, Output& out) const;
  void WriteBlock(std::uint32_t index, Reading at, Output& out) const;
  void WriteInstances(std::uint32_t index, const Slot& first, Output& out) const;
  char* Run(const Program& program, std::size_t slots, char* place, Output& out) const;
  void RunSlowly(const Op& op, const Slot* slots, Output& out) const;
  void WriteLines(const Slot& slot, Output& out) const;

  const CTNParsedResult& m_result;
  std::vector<std::uint32_t> m_entities;  // By record of the layout: its program, or kNone.
  std::vector<Program> m_programs;
  std::string m_texts;
  std::vector<SubRecords> m_subRecords;  // By record of the layout.
};

}  // namespace bomparser
