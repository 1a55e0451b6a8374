#include "cli/Messages.h"

#include "entry/CTNFileParserEngine.h"
#include "tnbase/StandardStreams.h"

#include <algorithm>
#include <vector>

namespace bomparser {

namespace {

/// Texts about a file begin with its name, or name it behind the deed: "cannot read NAME: ...".
bool Names(std::string_view text, std::string_view input) {
  const std::string name(input);
  return text.starts_with(name + ' ') || text.find(' ' + name + ": ") != std::string_view::npos;
}

std::string_view FirstLine(std::string_view text) { return text.substr(0, text.find('\n')); }

}  // namespace

void PrintLine(std::string_view text) {
  std::string nobodyToTell;
  WriteTo(StandardStream::Error, std::string(text) + '\n', nobodyToTell);
}

void PrintMessage(std::string_view text) { PrintLine("bomparser: " + std::string(text)); }

std::string InputFailureText(std::string_view input, std::string_view text) {
  if (input.empty() || Names(text, input)) return std::string(text);
  return std::string(input).append(": ").append(text);
}

std::string OnOneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

void PrintErrorLog(const CTNFileParserEngine& engine, std::size_t from,
                   std::string_view toldBesides) {
  const std::vector<std::string> lines = engine.GetTemplate()->GetErrorLog().GetAllLines();
  for (std::size_t i = from; i < lines.size(); ++i) {
    if (lines[i] != toldBesides) PrintLine(OnOneLine(lines[i]));
  }
}

void WarnOfInvalidRecords(const CTNFileParserEngine& engine) {
  const CTNParserTemplate& document = *engine.GetTemplate();
  for (const auto* list : {&document.GetAuxiliaryRecords(), &document.GetEntityRecords()}) {
    for (const auto& record : *list) {
      if (record->IsValid() != 0) continue;
      std::string text = "warning: record ";
      text.append(record->GetRecordId()).append(" never matches: ");
      PrintMessage(text.append(FirstLine(record->GetStatusText())));
    }
  }
}

}  // namespace bomparser
