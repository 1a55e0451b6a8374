#include "cli/LearnCommand.h"

#include "cli/FileUses.h"
#include "cli/Messages.h"
#include "cli/OutputFile.h"
#include "cli/Session.h"
#include "input/CTNParsedFileRow.h"
#include "input/CTNStringCharBuffIter.h"
#include "input/MessageTexts.h"

#include <fmt/format.h>

namespace bomparser {

namespace {

/// Reads the lines to learn from. On failure `error` says why.
bool ReadSample(CTNFileParserEngine& engine, const Options& options, std::string& sample,
                std::string& error) {
  constexpr std::int32_t kNoLimit = 0;
  CTNParserInFile& input = *engine.GetInputFile();
  if (!engine.OpenInputFile(options.inputs.front(), error) || !input.ReadText(kNoLimit, error)) {
    return false;
  }
  SampleLines lines = TakeSampleLines(input.GetText().GetText()->View(), options.lines);
  const bool all = options.lines == LineRange();
  if (!all && lines.available < options.lines.last) {
    error = fmt::format("there is no line {}: the input has {} lines", options.lines.last,
                        lines.available);
    return false;
  }
  sample = std::move(lines.text);
  return true;
}

/// False when there is no memory for the record.
bool AddRecordFrom(CTNParserTemplate& document, const std::string& sample, bool auxiliary) {
  const RecordKind kind = auxiliary ? RecordKind::FreshAuxiliary : RecordKind::FreshEntity;
  CTNTemplateRecord* const record =
      document.AddRecord(kind, GetMessageText(Msg::AutoCreatedDescription));
  if (record == nullptr) return false;
  CTNStringCharBuffIter text{std::string_view(sample)};
  if (!record->CreateFieldsFromText(text)) return false;
  record->Validate();
  document.SetModified(ChangeKind::Modified);
  return true;
}

ExitStatus Print(CTNParserTemplate& document) {
  std::string text;
  std::string error;
  OutputFile out;
  if (document.GetXml(text) != kXmlOk) return TellFailure({}, document.LastError());
  const bool printed = out.Open(std::string(kStandardStreamPath), error) &&
                       out.Write(text, error) && out.Commit(error);
  return printed ? ExitStatus::Done : TellFailure({}, error);
}

ExitStatus Save(CTNFileParserEngine& engine, const std::string& path) {
  if (path == kStandardStreamPath) return Print(*engine.GetTemplate());
  const InterruptHold hold;
  if (engine.SaveTemplate(path)) return ExitStatus::Done;
  if (IsInterrupted()) return ExitStatus::Interrupted;
  PrintErrorLog(engine);
  return ExitStatus::Failed;
}

}  // namespace

SampleLines TakeSampleLines(std::string_view text, const LineRange& wanted) {
  constexpr int kTabStop = 8;  // Whatever the view is set to: a template must not depend on that.
  SampleLines lines;
  std::string line;
  while (!text.empty() && lines.available < wanted.last) {
    const std::size_t end = text.find('\n');
    ++lines.available;
    if (lines.available >= wanted.first) {
      line = text.substr(0, end);
      ExpandTabs(line, kTabStop);
      lines.text.append(line).append(1, '\n');
    }
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return lines;
}

ExitStatus RunLearn(const Options& options) {
  // The template may be saved over the one that was added to: that is how it grows.
  FileUses uses;
  uses.AddRead("the input", options.inputs.front());
  std::string error;
  if (!uses.AddWritten("the template", *options.output, error)) return TellFailure({}, error);
  Session session;
  if (options.templateFile && !session.LoadTemplate(*options.templateFile)) {
    return ExitStatus::Failed;
  }
  std::string sample;
  if (!ReadSample(session.GetEngine(), options, sample, error)) {
    return TellFailure(options.inputs.front(), error);
  }
  if (!AddRecordFrom(*session.GetEngine().GetTemplate(), sample, options.auxiliary)) {
    return TellFailure(options.inputs.front(), XmlStatusText(kXmlOutOfMemory));
  }
  return Save(session.GetEngine(), *options.output);
}

}  // namespace bomparser
