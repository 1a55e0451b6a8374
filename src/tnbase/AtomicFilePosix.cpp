#include "tnbase/AtomicFile.h"

#include "tnbase/Interrupts.h"
#include "tnbase/SystemReason.h"
#include "tnbase/TNPath.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace bomparser {

namespace {

using Durability = AtomicFile::Durability;

constexpr int kNoFile = -1;

/// The steps below return the error number of what went wrong.
constexpr int kDone = 0;

int Failed(int result) { return result == 0 ? kDone : errno; }

std::string FolderOf(const std::string& path) {
  const std::string folder = TNGetPathFromPathNFName(path);
  return folder.empty() ? "." : folder;
}

bool IsLink(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

/// A link of the process file system, such as the one behind /dev/stdout, stands for an open file,
/// whose text need not be a path at all.
bool IsLinkToOpenFile(const std::string& path) {
  return path.starts_with("/proc/") || path.starts_with("/dev/fd/");
}

/// Replaces `path` by what it names in the end, which need not exist. Stops at a link to an open
/// file.
int FollowLinks(std::string& path) {
  constexpr int kMostLinks = 40;
  for (int links = 0; IsLink(path) && !IsLinkToOpenFile(path); ++links) {
    if (links == kMostLinks) {
      return ELOOP;
    }
    std::array<char, PATH_MAX> text;
    const ssize_t length = readlink(path.c_str(), text.data(), text.size());
    if (length < 0) {
      return errno;
    }
    const std::string target(text.data(), static_cast<std::size_t>(length));
    path = target.starts_with('/') ? target : FolderOf(path) + '/' + target;
  }
  return kDone;
}

/// Whether an existing ordinary file may be replaced. Renaming asks for rights to the folder only,
/// so a file that was protected against writing must be asked here; its mode tells also for the
/// superuser, who is refused nothing.
int MayReplace(const std::string& path, const struct stat& status) {
  constexpr mode_t kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
  if ((status.st_mode & kAnyWrite) == 0) {
    return EACCES;
  }
  return Failed(faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS));
}

/// Gives a new file owner and mode of the one that it replaces. Where the owning group cannot be
/// kept, the file's own group gets no more than everybody.
int TakeOver(int file, const struct stat& replaced) {
  mode_t mode = replaced.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
  struct stat created {};
  if (fstat(file, &created) != 0) {
    return errno;
  }
  const bool sameOwner = created.st_uid == replaced.st_uid && created.st_gid == replaced.st_gid;
  if (!sameOwner && fchown(file, replaced.st_uid, replaced.st_gid) != 0) {
    mode = (mode & ~mode_t{S_IRWXG}) | ((mode & S_IRWXO) << 3);
  }
  return Failed(fchmod(file, mode));
}

/// A name that no other file has. Asks the system itself for chance: the library's random device
/// first finds out what the processor has, which takes longer than the rest of making a file.
int MakeHiddenName(std::string& hidden) {
  std::array<unsigned, 2> random{};
  if (getentropy(random.data(), sizeof random) != 0) {
    return errno;
  }
  std::array<char, 64> name;
  const int length = std::snprintf(name.data(), name.size(), ".bomparser-%ld-%08x%08x",
                                   static_cast<long>(getpid()), random[0], random[1]);
  hidden.assign(name.data(), static_cast<std::size_t>(length));
  return kDone;
}

int WriteAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file, bytes.data(), bytes.size());
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR || IsInterrupted()) {
      return errno;
    }
  }
  return kDone;
}

int FlushFolder(const std::string& folder) {
  const int file = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (file == kNoFile) {
    return errno;
  }
  const int failure = Failed(fsync(file));
  close(file);
  return failure == EINVAL ? kDone
                           : failure;  // Some file systems have no such thing as flushing a folder.
}

}  // namespace

struct AtomicFile::Unfinished {
  std::string path;       // As the caller named it, for messages.
  std::string target;     // What `path` names once links are followed.
  std::string temporary;  // Empty when the target is written straight.
  Durability durability = Durability::Renamed;
  int file = kNoFile;

  Unfinished() = default;
  Unfinished(const Unfinished&) = delete;
  Unfinished& operator=(const Unfinished&) = delete;
  ~Unfinished() {
    if (file != kNoFile) {
      close(file);
    }
    if (!temporary.empty()) {
      unlink(temporary.c_str());
    }
  }

  int Start() {
    if (const int failure = FollowLinks(target); failure != kDone) {
      return failure;
    }
    struct stat status {};
    if (stat(target.c_str(), &status) != 0) {
      return errno == ENOENT ? StartBeside(nullptr) : errno;
    }
    if (S_ISDIR(status.st_mode)) {
      return EISDIR;
    }
    if (!S_ISREG(status.st_mode) || IsLinkToOpenFile(target)) {
      return StartStraight();
    }
    const int refusal = MayReplace(target, status);
    return refusal != kDone ? refusal : StartBeside(&status);
  }

  /// Appends, since an open file may hold what was written before, as with the shell's ">>".
  int StartStraight() {
    file = open(target.c_str(), O_WRONLY | O_APPEND | O_NOCTTY | O_CLOEXEC);
    return file == kNoFile ? errno : kDone;
  }

  int StartBeside(const struct stat* replaced) {
    if (TNGetFNameFromPath(target).empty()) {
      return target.empty() ? ENOENT : EISDIR;
    }
    constexpr mode_t kNobodyElse = S_IRUSR | S_IWUSR;
    constexpr mode_t kEverybody = 0666;  // Less what the process's mask takes away.
    std::string hidden;
    if (const int failure = MakeHiddenName(hidden); failure != kDone) {
      return failure;
    }
    std::string name = FolderOf(target) + '/' + hidden;
    file = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                replaced != nullptr ? kNobodyElse : kEverybody);
    if (file == kNoFile) {
      return errno;
    }
    temporary = std::move(name);
    return replaced != nullptr ? TakeOver(file, *replaced) : kDone;
  }

  int Finish() {
    const bool flush = durability == Durability::FlushedToDisk && !temporary.empty();
    // Once the file is in its place nothing may fail any more that has nothing to do with it.
    const std::string folder = flush ? FolderOf(target) : std::string();
    if (flush && fsync(file) != 0) {
      return errno;
    }
    // Some systems report only now that the bytes found no place.
    if (close(std::exchange(file, kNoFile)) != 0) {
      return errno;
    }
    if (temporary.empty()) {
      return kDone;
    }
    if (rename(temporary.c_str(), target.c_str()) != 0) {
      return errno;
    }
    temporary.clear();
    return flush ? FlushFolder(folder) : kDone;
  }
};

AtomicFile::AtomicFile() = default;
AtomicFile::AtomicFile(AtomicFile&& other) noexcept = default;
AtomicFile& AtomicFile::operator=(AtomicFile&& other) noexcept = default;
AtomicFile::~AtomicFile() = default;

bool AtomicFile::Open(const std::string& path, Durability durability, std::string& error) {
  auto started = std::make_unique<Unfinished>();
  started->path = path;
  started->target = path;
  started->durability = durability;
  if (const int failure = started->Start(); failure != kDone) {
    error = SystemReason("cannot write", path, failure);
    return false;
  }
  m_unfinished = std::move(started);
  return true;
}

bool AtomicFile::Write(std::string_view bytes, std::string& error) {
  const int failure = m_unfinished ? WriteAll(m_unfinished->file, bytes) : EBADF;
  if (failure == kDone) {
    return true;
  }
  return Fail(failure, error);
}

bool AtomicFile::Commit(std::string& error) {
  const int failure = m_unfinished ? m_unfinished->Finish() : EBADF;
  if (failure != kDone) {
    return Fail(failure, error);
  }
  m_unfinished.reset();
  return true;
}

bool AtomicFile::Fail(int failure, std::string& error) {
  error = SystemReason("cannot write", m_unfinished ? m_unfinished->path : std::string(), failure);
  m_unfinished.reset();
  return false;
}

}  // namespace bomparser
