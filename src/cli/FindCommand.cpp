#include "cli/FindCommand.h"

#include "cli/FileUses.h"
#include "cli/Messages.h"
#include "cli/OutputFile.h"
#include "cli/Session.h"
#include "cli/StatsLine.h"
#include "input/MessageTexts.h"
#include "tnbase/NumberText.h"
#include "tnbase/TNPath.h"

namespace bomparser {

namespace {

constexpr int kPercentDecimals = 2;

/// False, and told, when something that is written would take the place of another file of the
/// command. The template is known only once it is found; empty before.
bool EachFileHasItsPlace(const Options& options, const std::string& templatePath) {
  FileUses uses;
  uses.AddRead("the template", templatePath);
  uses.AddRead("the input", options.inputs.front());
  std::string error;
  const bool good =
      (!options.output || uses.AddWritten("the list", *options.output, error)) &&
      (!options.statsFile || uses.AddWritten("the counts", *options.statsFile, error));
  if (!good) PrintMessage(error);
  return good;
}

/// The report of the dialog's Find Template.
std::string FoundText(const CTNFileParserEngine& engine) {
  const CTNParserTemplate& document = *engine.GetTemplate();
  const ApplicationStats stats = engine.GetStats();
  return FormatNumberedMessage(
      Msg::TemplateFound,
      {TNGetFNameFromPath(document.GetFilePath()), document.GetTitle(), stats.MatchedBlocks(),
       stats.ParseableBlocks(), FormatFixed(stats.MatchPercent(), kPercentDecimals)});
}

ExitStatus Search(Session& session, const std::string& input) {
  CTNFileParserEngine& engine = session.GetEngine();
  std::string error;
  bool cancelled = false;
  if (!engine.OpenInputFile(input, error)) return TellFailure(input, error);
  // What one template leaves in the log is gone with the next.
  session.TellAtOnce(true);
  const bool found = engine.FindTemplate(error, cancelled, ShowProgress::Yes);
  session.TellAtOnce(false);
  session.WriteSideCopy();
  if (IsInterrupted()) return ExitStatus::Interrupted;
  if (!found) {
    PrintLine(error.empty() ? GetMessageText(Msg::UnspecifiedFindError) : error);
    return ExitStatus::Failed;
  }
  // A template that failed ended the search; the best one before it still stands.
  if (!error.empty()) PrintMessage(InputFailureText(input, error));
  if (engine.GetInputFile()->IsApplied()) return ExitStatus::Done;
  return TellFailure(input, "the best template, " + engine.GetTemplate()->GetFilePath() +
                                ", could not be applied again");
}

ExitStatus PrintPath(const std::string& path) {
  std::string error;
  OutputFile out;
  const bool printed = out.Open(std::string(kStandardStreamPath), error) &&
                       out.Write(path + '\n', error) && out.Commit(error);
  return printed ? ExitStatus::Done : TellFailure({}, error);
}

ExitStatus WriteResults(Session& session, const Options& options) {
  const std::string& input = options.inputs.front();
  const std::string& templatePath = session.GetEngine().GetTemplate()->GetFilePath();
  if (!EachFileHasItsPlace(options, templatePath)) return ExitStatus::Failed;
  StatsReport stats(options.statsFile);
  std::string error;
  if (!stats.OpenPipe(error)) return TellFailure({}, error);
  if (options.output) {
    const ExitStatus status = session.WriteEntityList(input, *options.output);
    if (status != ExitStatus::Done) return status;
  }
  stats.Add(input, session.GetEngine().GetStats());
  return stats.Finish(error) ? PrintPath(templatePath) : TellFailure({}, error);
}

}  // namespace

ExitStatus RunFind(const Options& options) {
  if (!EachFileHasItsPlace(options, {})) return ExitStatus::Failed;
  Session session(options.sideCopy ? SideCopy::Yes : SideCopy::No);
  session.WorkAtFullSpeed(options.threads);
  session.GetEngine().SetTemplateSearchPath(options.searchFolder);
  const ExitStatus status = Search(session, options.inputs.front());
  if (status != ExitStatus::Done) return status;
  PrintLine(FoundText(session.GetEngine()));
  WarnOfInvalidRecords(session.GetEngine());
  return WriteResults(session, options);
}

}  // namespace bomparser
