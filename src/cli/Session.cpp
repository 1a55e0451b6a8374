#include "cli/Session.h"

#include "cli/Messages.h"
#include "cli/OutputFile.h"
#include "tnbase/Processors.h"

namespace bomparser {

ExitStatus TellFailure(const std::string& input, const std::string& error) {
  if (IsInterrupted()) return ExitStatus::Interrupted;
  PrintMessage(InputFailureText(input, error));
  return ExitStatus::Failed;
}

Session::Session(SideCopy sideCopy) : m_frontEnd(sideCopy), m_engine(&m_frontEnd) {
  m_engine.SetSideCopy(sideCopy);
  m_engine.GetTemplate()->SetKeepCurrentValues(false);
}

void Session::WorkAtFullSpeed(std::int32_t threads) {
  m_engine.GetInputFile()->SetMapping(true);
  m_engine.SetThreads(threads > 0 ? static_cast<unsigned>(threads) : CountUsableProcessors());
}

bool Session::LoadTemplate(const std::string& path) {
  if (m_engine.LoadTemplate(path)) return true;
  PrintErrorLog(m_engine);
  return false;
}

ExitStatus Session::Apply(const std::string& input) {
  // What an earlier input left is not needed any more: there is room for this one.
  m_engine.ForgetResults();
  const std::size_t told = m_engine.GetTemplate()->GetErrorLog().GetAllLines().size();
  std::string error;
  bool cancelled = false;
  const bool applied = m_engine.OpenInputFile(input, error) &&
                       m_engine.ApplyTemplate(error, cancelled, ShowProgress::Yes);
  WriteSideCopy();
  if (applied && !IsInterrupted()) return ExitStatus::Done;
  // The error may only say that it failed, and the log why.
  if (!IsInterrupted()) PrintErrorLog(m_engine, told, error);
  return TellFailure(input, error);
}

void Session::WriteSideCopy() {
  m_engine.WriteOwedSideCopy([] { return !IsInterrupted(); });
}

ExitStatus Session::WriteEntityList(const std::string& input, const std::string& path) {
  std::string error;
  OutputFile file;
  const auto write = [&file, &error](std::string_view piece) { return file.Write(piece, error); };
  const bool written =
      file.Open(path, error) && m_engine.WriteEntityList(write, error) && file.Commit(error);
  return written ? ExitStatus::Done : TellFailure(input, error);
}

}  // namespace bomparser
