#include "cli/ShowCommand.h"

#include "cli/Messages.h"
#include "cli/OutputFile.h"
#include "cli/Session.h"
#include "cli/Terminal.h"
#include "input/CTNElementCursor.h"
#include "input/CTNParsedFileRow.h"
#include "input/MessageTexts.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>
#include <iterator>
#include <string>
#include <string_view>

namespace bomparser {

namespace {

constexpr std::size_t kPiece = std::size_t{1} << 18;

/// A record's description may hold what separates rows and columns here; blanks stand for it.
std::string InOneColumn(std::string text) {
  for (char& c : text) {
    if (c == '\n' || c == '\t' || c == '\r') c = ' ';
  }
  return text;
}

/// Prints the blocks of a result, one line a row.
class RowPrinter {
 public:
  RowPrinter(const Options& options, std::string& error)
      : m_options(options), m_colour(UsesColour(options.colour)), m_error(error) {
    m_open = m_out.Open(std::string(kStandardStreamPath), m_error);
  }

  bool Print(const CTNParsedFileBlock& block);
  bool Finish() { return Flush() && m_out.Commit(m_error); }

 private:
  bool Skip(const CTNParsedFileBlock& block);
  bool EndRow();
  bool AppendRow();
  bool Flush();

  const Options& m_options;
  bool m_colour;
  std::string& m_error;
  OutputFile m_out;
  bool m_open;
  std::string m_buffer;
  std::uint64_t m_line = 0;  // Of all rows, the hidden ones included.
  std::string m_mark;        // The second column of the next row.
  std::string m_row;
  std::string m_colours;
};

bool RowPrinter::Print(const CTNParsedFileBlock& block) {
  if (!m_options.kinds[static_cast<std::size_t>(block.GetKind())]) return Skip(block);
  m_mark = InOneColumn(block.GetMatchText());
  if (m_colour) m_colours = ColourSequence(block.GetBackColour(), block.GetTextColour());
  CTNElementCursor cursor(*block.GetResult(), block.GetPlace());
  bool rowOpen = false;
  for (ShownElement element; cursor.Next(element);) {
    CTNParsedFileBlockElement::AppendText(m_row, element, m_options.markup, m_options.newlines);
    rowOpen = !element.EndsRow();
    if (!rowOpen && !EndRow()) return false;
  }
  return !rowOpen || EndRow();
}

/// Counts the rows of a block that is not shown.
bool RowPrinter::Skip(const CTNParsedFileBlock& block) {
  CTNElementCursor cursor(*block.GetResult(), block.GetPlace());
  bool rowOpen = false;
  for (ShownElement element; cursor.Next(element);) {
    rowOpen = !element.EndsRow();
    if (!rowOpen) ++m_line;
  }
  if (rowOpen) ++m_line;
  return true;
}

bool RowPrinter::EndRow() {
  // A literal may hold a line feed; what it matched stays on its row.
  std::replace(m_row.begin(), m_row.end(), '\n', ' ');
  fmt::format_to(std::back_inserter(m_buffer), "{}\t", ++m_line);
  m_buffer.append(m_mark).append(1, '\t').append(m_colours);
  if (!AppendRow()) return false;
  if (!m_colours.empty()) m_buffer += kColourReset;
  m_buffer += '\n';
  m_mark = GetMessageText(Msg::SameBlockMark);
  m_row.clear();
  return m_buffer.size() < kPiece || Flush();
}

/// In pieces that stay small when each of their characters is a tab.
bool RowPrinter::AppendRow() {
  constexpr std::size_t kRowPiece = 4096;
  TabExpander tabs(m_options.tabStop);
  for (std::string_view rest = m_row; !rest.empty();) {
    const std::string_view piece = rest.substr(0, kRowPiece);
    tabs.Append(m_buffer, piece);
    rest.remove_prefix(piece.size());
    if (m_buffer.size() >= kPiece && !Flush()) return false;
  }
  return true;
}

bool RowPrinter::Flush() {
  const bool written = m_open && m_out.Write(m_buffer, m_error);
  m_buffer.clear();
  return written;
}

bool PrintAll(const CTNParsedBlockPtrArray& blocks, RowPrinter& printer) {
  for (std::size_t i = 0; i < blocks.GetSize(); ++i) {
    if (!printer.Print(blocks.GetAt(i))) return false;
  }
  return printer.Finish();
}

}  // namespace

ExitStatus RunShow(const Options& options) {
  Session session;
  if (!session.LoadTemplate(*options.templateFile)) return ExitStatus::Failed;
  WarnOfInvalidRecords(session.GetEngine());
  const ExitStatus status = session.Apply(options.inputs.front());
  if (status != ExitStatus::Done) return status;
  std::string error;
  RowPrinter printer(options, error);
  const bool printed = PrintAll(session.GetEngine().GetInputFile()->GetBlocks(), printer);
  return printed ? ExitStatus::Done : TellFailure({}, error);
}

}  // namespace bomparser
