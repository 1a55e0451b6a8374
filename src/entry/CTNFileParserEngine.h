#pragma once

#include "input/CTNParserInFile.h"
#include "input/roles/CTNFrontEnd.h"
#include "input/roles/CTNParserContext.h"
#include "template/CTNParserTemplate.h"
#include "tnbase/FileStamp.h"
#include "tnbase/PrivateFolder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser {

/// What an edit of the template was, one bit a kind. The settings say which kinds re-apply the
/// template at once.
enum EditKind : std::uint32_t {
  kRecordsAdded = 1,
  kRecordsDeleted = 2,
  kRecordsModified = 4,
  kInputFieldsAdded = 8,
  kInputFieldsDeleted = 16,
  kInputFieldsModified = 32,
  kOutputElementsAdded = 64,
  kOutputElementsDeleted = 128,
  kOutputElementsModified = 256,
  kParametersChanged = 512,
  kAllEdits = 1023,
};

/// Whether every application also writes the copy of the entity list that the results page shows.
enum class SideCopy { No, Yes };

/// The working data of one run: the current template, the current input file with its results, and
/// the settings that steer them. It shows nothing itself: failures are error texts to the caller
/// or entries of the template's error log; the front end, if there is one, is told of those that
/// are to be shown at once.
class CTNFileParserEngine final : public CTNParserContext {
 public:
  static constexpr int kDefaultTabStop = 8;
  static constexpr unsigned kMostThreads = 64;

  explicit CTNFileParserEngine(CTNFrontEnd* frontEnd = nullptr);
  virtual ~CTNFileParserEngine();
  CTNFileParserEngine(const CTNFileParserEngine&) = delete;
  CTNFileParserEngine& operator=(const CTNFileParserEngine&) = delete;

  /// True when template and input file could be made. Otherwise both are absent (null below).
  bool IsValid() const { return m_valid; }
  CTNParserTemplate* GetTemplate() const { return m_valid ? m_template.get() : nullptr; }
  CTNParserInFile* GetInputFile() const { return m_valid ? m_inputFile.get() : nullptr; }

  /// Opens the file for shared reading; one that is open is closed first. False with `error` when
  /// that fails; an empty path is also reported to the error log.
  bool OpenInputFile(const std::string& path, std::string& error);
  /// True when the file is no longer open.
  bool CloseInputFile();
  /// Closes the input file and gives up all that earlier applications left in memory; a side copy
  /// that is owed is written before.
  void ForgetResults();
  /// Resets the template to an empty, untitled one; results are stale.
  void NewTemplate();
  /// Replaces the template by the one in the file. On failure the template is reset and its error
  /// log holds the reasons.
  bool LoadTemplate(const std::string& path);
  /// Writes the template, whole or not at all, and flushed to disk. On failure the reason is in the
  /// error log.
  bool SaveTemplate(const std::string& path);
  bool IsTemplateModified() const;
  /// True when the path leads to the template's own file and somebody else has written that since
  /// it was loaded or saved here.
  bool IsTemplateFileChanged(const std::string& path) const;

  /// Applies the template to the input file. After success the side copy, if that is on, is owed;
  /// see WriteOwedSideCopy.
  bool ApplyTemplate(std::string& error, bool& cancelled, ShowProgress show);
  /// Tells of an edit. The template is modified unless the change is None; it is applied again at
  /// once if the automatic application flags ask for it and the results are stale now.
  void OnTemplateChanged(ChangeKind change, std::uint32_t editKinds);
  /// Tries every template of the search folder and keeps the best one, applied. True when one was
  /// found; also then `error` tells of a failure that ended the search.
  bool FindTemplate(std::string& error, bool& cancelled, ShowProgress show);
  /// Writes the entity list, whole or not at all, and remembers the path as that of the latest
  /// output. On failure `error` says why; what fails once the file was begun is also an entry of
  /// the error log. `mayGoOn` is asked before every piece of a few hundred KiB: false cancels, and
  /// nothing is written.
  bool OutputEntityList(const std::string& path, std::string& error,
                        const std::function<bool()>& mayGoOn = {});
  /// Hands the entity list to a sink in pieces. False when the sink stopped it, who knows why, or
  /// when memory ran out or the input was cut short meanwhile, which `error` then says.
  bool WriteEntityList(const std::function<bool(std::string_view)>& sink, std::string& error) const;
  ApplicationStats GetStats() const;

  /// Where the side copy of the current input file's list is: a private folder of this user and
  /// process, which goes with the engine. What is owed is written first. False with `error` when
  /// the folder cannot be made.
  bool GetSideCopyPath(std::string& path, std::string& error);
  /// Writes the side copy of the latest application that succeeded, if that is still to be done.
  /// Applying leaves it undone, because who edits applies again before anybody looks: an event loop
  /// calls this when it has nothing else to do. It is the list of that application whatever became
  /// of template and input file since, it never counts as the user's output, and when it cannot be
  /// written nobody is told. `mayGoOn` is asked before every piece of a few hundred KiB: false puts
  /// the whole off once more. It only looks, and calls nothing of the engine.
  void WriteOwedSideCopy(const std::function<bool()>& mayGoOn = {});

  /// Deletes the side copy of the current input file's list, if there is one: it is no longer the
  /// template's. What is owed of it is written no more. False with `error` when it cannot be
  /// deleted.
  bool DeleteSideCopy(std::string& error);

  void SetSideCopy(SideCopy sideCopy) { m_sideCopy = sideCopy; }
  /// How many threads may work on one application or list, the caller's included; 1 at first, and
  /// 64 at most. What comes out is the same for any number.
  void SetThreads(unsigned threads) { m_threads = std::clamp(threads, 1U, kMostThreads); }
  const std::string& GetTemplateSearchPath() const { return m_searchPath; }
  void SetTemplateSearchPath(const std::string& path) { m_searchPath = path; }
  void SetTabStop(int tabStop) { m_tabStop = tabStop; }
  const std::string& GetProfileSection() const { return m_profileSection; }
  void SetProfileSection(const std::string& section) { m_profileSection = section; }
  std::uint32_t GetAutoApplicationFlags() const { return m_autoFlags; }
  void SetAutoApplicationFlags(std::uint32_t flags) { m_autoFlags = flags; }

  bool AreResultsStale() const override;
  int GetTabStop() const override { return m_tabStop; }
  bool ReportError(std::string_view text, ErrorShown shown) override;
  void OnTemplateModified() override;

 private:
  struct Search;
  struct OwedCopy;
  struct ScoreBound;

  template <class Work>
  static bool Guard(std::string& error, Work work) {
    // Nothing is thrown out of the engine: where memory ends, what was asked for fails.
    try {
      return work();
    } catch (const std::bad_alloc&) {
      error = XmlStatusText(kXmlOutOfMemory);
      return false;
    }
  }
  bool SearchFolder(std::string& error, bool& cancelled, ShowProgress show);
  bool ReadTemplate(const std::string& path);
  bool WriteTemplate(const std::string& path, std::string& error);
  bool WriteEntityListFile(const std::string& path, std::string& error,
                           const std::function<bool()>& mayGoOn);
  void ReportLoadFailure(const std::string& path, int status);
  std::string SideCopyName() const;
  void OweSideCopy();
  bool Apply(std::string& error, bool& cancelled, ShowProgress show,
             const ApplicationPurpose& purpose);
  void TryFolder(Search& search);
  bool TryTemplate(std::size_t place, Search& search);
  void AskAgain(Search& search);
  std::optional<ScoreBound> BoundFor(const CTNParserTemplate& document, Search& search) const;
  bool Try(CTNParserTemplate& document, std::size_t place, double promise, Search& search);
  static void NoteFailure(std::size_t place, std::string error, Search& search);
  void ApplyInFull(const std::string& path);
  void GiveUpSearch(const Search& search, const std::string& startPath);

  std::unique_ptr<CTNParserTemplate> m_template;
  std::optional<FileStamp>
      m_templateStamp;  // Of its file as it was read or written; if it has one.
  std::unique_ptr<CTNParserInFile> m_inputFile;
  std::string m_searchPath;
  int m_tabStop = kDefaultTabStop;
  std::string m_profileSection;
  bool m_valid = false;
  std::uint32_t m_autoFlags = kAllEdits;
  CTNFrontEnd* m_frontEnd;  // Not owned.
  SideCopy m_sideCopy = SideCopy::Yes;
  unsigned m_threads = 1;
  PrivateFolder m_sideFolder;
  std::unique_ptr<OwedCopy> m_owedCopy;  // Null when every side copy is written.
};

}  // namespace bomparser
