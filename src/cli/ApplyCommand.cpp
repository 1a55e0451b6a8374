#include "cli/ApplyCommand.h"

#include "cli/FileUses.h"
#include "cli/Messages.h"
#include "cli/Session.h"
#include "cli/StatsLine.h"
#include "cli/TargetNames.h"
#include "tnbase/SystemReason.h"

#include <filesystem>
#include <system_error>

namespace bomparser {

namespace {

/// False, and told, when the lists of two inputs would have one name.
bool TargetsDiffer(const Options& options) {
  const TargetClash clash = FindTargetClash(options.inputs);
  if (!clash) return true;
  const std::string& input = options.inputs[clash.second];
  PrintMessage(options.inputs[clash.first] + " and " + input + " would both be written to " +
               TargetName(input));
  return false;
}

/// The output folder of several inputs, if it is missing. False, and told, on failure.
bool MakeFolder(const std::string& path) {
  std::error_code failure;
  std::filesystem::create_directories(path, failure);
  if (!failure) return true;
  PrintMessage(SystemReason("cannot make the folder", path, failure.value()));
  return false;
}

std::string TargetPath(const Options& options, const std::string& input) {
  if (options.inputs.size() == 1) return options.output.value_or(std::string(kStandardStreamPath));
  return (std::filesystem::path(*options.output) / TargetName(input)).string();
}

/// False, and told, when something that is written would take the place of another file of the run.
bool EachFileHasItsPlace(const Options& options) {
  FileUses uses;
  uses.AddRead("the template", *options.templateFile);
  for (const std::string& input : options.inputs)
    uses.AddRead("the input", input);
  std::string error;
  bool good = true;
  for (const std::string& input : options.inputs)
    good = good && uses.AddWritten("the list", TargetPath(options, input), error);
  if (options.statsFile) good = good && uses.AddWritten("the counts", *options.statsFile, error);
  if (!good) PrintMessage(error);
  return good;
}

ExitStatus ApplyTo(Session& session, const Options& options, const std::string& input,
                   StatsReport& stats) {
  ExitStatus status = session.Apply(input);
  if (status != ExitStatus::Done) return status;
  // Not before there is a list to put into it.
  if (options.inputs.size() > 1 && !MakeFolder(*options.output)) return ExitStatus::Failed;
  status = session.WriteEntityList(input, TargetPath(options, input));
  if (status == ExitStatus::Done) stats.Add(input, session.GetEngine().GetStats());
  return status;
}

}  // namespace

ExitStatus RunApply(const Options& options) {
  Session session(options.sideCopy ? SideCopy::Yes : SideCopy::No);
  session.WorkAtFullSpeed(options.threads);
  if (!session.LoadTemplate(*options.templateFile)) return ExitStatus::Failed;
  WarnOfInvalidRecords(session.GetEngine());
  if (options.inputs.size() > 1 && !TargetsDiffer(options)) return ExitStatus::Failed;
  if (!EachFileHasItsPlace(options)) return ExitStatus::Failed;
  StatsReport stats(options.statsFile);
  std::string error;
  if (!stats.OpenPipe(error)) return TellFailure({}, error);
  ExitStatus worst = ExitStatus::Done;
  for (const std::string& input : options.inputs) {
    const ExitStatus status = ApplyTo(session, options, input, stats);
    if (status == ExitStatus::Interrupted) return status;
    if (status == ExitStatus::Done) continue;
    worst = status;
    if (!options.keepGoing) break;
  }
  return stats.Finish(error) ? worst : TellFailure({}, error);
}

}  // namespace bomparser
