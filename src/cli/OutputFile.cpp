#include "cli/OutputFile.h"

#include "cli/Options.h"
#include "tnbase/StandardStreams.h"
#include "tnbase/TNPath.h"

namespace bomparser {

bool OutputFile::Open(const std::string& path, std::string& error) {
  if (path == kStandardStreamPath) return true;
  // A pipe or device is written straight: nothing stays behind, and it may have to be waited for.
  if (!FileExists(path) || IsRegularFile(path)) m_hold.emplace();
  m_file.emplace();
  return m_file->Open(path, AtomicFile::Durability::Renamed, error);
}

bool OutputFile::Write(std::string_view bytes, std::string& error) {
  if (IsInterrupted()) return false;
  return m_file ? m_file->Write(bytes, error) : WriteTo(StandardStream::Output, bytes, error);
}

bool OutputFile::Commit(std::string& error) {
  if (IsInterrupted()) return false;
  return !m_file || m_file->Commit(error);
}

}  // namespace bomparser
