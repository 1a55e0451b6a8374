#include "cli/ApplyCommand.h"

#include "cli/Messages.h"
#include "cli/Session.h"
#include "cli/StatsLine.h"
#include "cli/TargetNames.h"
#include "tnbase/SystemReason.h"
#include "tnbase/TNPath.h"

#include <filesystem>
#include <system_error>

namespace bomparser {

namespace {

/// The output folder of several inputs, made if it is missing.
ExitStatus PrepareFolder(const Options& options) {
  if (const TargetClash clash = FindTargetClash(options.inputs)) {
    const std::string& input = options.inputs[clash.second];
    PrintMessage(options.inputs[clash.first] + " and " + input + " would both be written to " +
                 TargetName(input));
    return ExitStatus::Failed;
  }
  std::error_code failure;
  std::filesystem::create_directories(*options.output, failure);
  if (!failure) return ExitStatus::Done;
  PrintMessage(SystemReason("cannot make the folder", *options.output, failure.value()));
  return ExitStatus::Failed;
}

/// False for what takes any number of writers: a pipe, a device.
bool IsOrdinary(const std::string& path) { return !FileExists(path) || IsRegularFile(path); }

std::string TargetPath(const Options& options, const std::string& input) {
  if (options.inputs.size() == 1) return options.output.value_or(std::string(kStandardStreamPath));
  return (std::filesystem::path(*options.output) / TargetName(input)).string();
}

/// The counts must not take the place of a list. False, and told, when they would.
bool StatsHaveAFileOfTheirOwn(const Options& options) {
  if (!options.statsFile || *options.statsFile == kStandardStreamPath) return true;
  for (const std::string& input : options.inputs) {
    const std::string target = TargetPath(options, input);
    if (target == kStandardStreamPath || !IsOrdinary(target)) continue;
    if (!AreSameFile(*options.statsFile, target)) continue;
    PrintMessage("the list and the counts would both be written to " + target);
    return false;
  }
  return true;
}

ExitStatus ApplyTo(Session& session, const std::string& input, const std::string& target,
                   StatsReport& stats) {
  ExitStatus status = session.Apply(input);
  if (status == ExitStatus::Done) status = session.WriteEntityList(input, target);
  if (status == ExitStatus::Done) stats.Add(input, session.GetEngine().GetStats());
  return status;
}

}  // namespace

ExitStatus RunApply(const Options& options) {
  Session session(options.sideCopy ? SideCopy::Yes : SideCopy::No);
  if (!session.LoadTemplate(*options.templateFile)) return ExitStatus::Failed;
  WarnOfInvalidRecords(session.GetEngine());
  if (!StatsHaveAFileOfTheirOwn(options)) return ExitStatus::Failed;
  if (options.inputs.size() > 1 && PrepareFolder(options) != ExitStatus::Done) {
    return ExitStatus::Failed;
  }
  StatsReport stats(options.statsFile);
  ExitStatus worst = ExitStatus::Done;
  for (const std::string& input : options.inputs) {
    const ExitStatus status = ApplyTo(session, input, TargetPath(options, input), stats);
    if (status == ExitStatus::Interrupted) return status;
    if (status == ExitStatus::Done) continue;
    worst = status;
    if (!options.keepGoing) break;
  }
  std::string error;
  return stats.Finish(error) ? worst : TellFailure({}, error);
}

}  // namespace bomparser
