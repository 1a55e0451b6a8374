#pragma once

#include "ui/controls/CTNHostApp.h"

#include <QString>
#include <string>
#include <string_view>

namespace bomparser {

/// A host that is nothing but a settings file of the user: for programs that have no profile of
/// their own to offer. Several processes may use the file at the same time; each setting is that of
/// whoever wrote it last.
///
/// The file is text for people to read and edit:
///
///   KEY=value of the unnamed section
///
///   [BOM Parser]
///   TAB_STOP=8
///
/// Sections and keys stand in it as they are named and are told apart by case. Lines that begin
/// with ";" or "#" are passed over, and go at the next write. A value may hold any bytes: what a
/// line cannot hold stands as "%" and two upper-case hexadecimal digits.
class ProfileFile final : public CTNHostApp {
 public:
  /// The file need not exist; it and its folder are made when something is written.
  explicit ProfileFile(QString path);

  /// bomparser/bomparser.ini in the user's configuration folder (XDG_CONFIG_HOME, or .config in the
  /// home folder).
  static QString UsersFile();

  /// What is stored, or the fallback, also where the file cannot be read. No integer is what does
  /// not consist of one.
  std::string GetProfileString(std::string_view section, std::string_view key,
                               std::string_view fallback) const override;
  int GetProfileInt(std::string_view section, std::string_view key, int fallback) const override;
  /// Writes the whole file at once. False when that fails; the file is as before then.
  bool WriteProfileString(std::string_view section, std::string_view key,
                          std::string_view value) override;
  bool WriteProfileInt(std::string_view section, std::string_view key, int value) override;
  /// Kept in memory only.
  std::string GetHelpFilePath() const override { return m_helpFilePath; }
  void SetHelpFilePath(const std::string& path) override { m_helpFilePath = path; }
  /// There is no help.
  void ShowHelp(const HelpRequest& request) override;

 private:
  QString m_path;
  std::string m_helpFilePath;
};

}  // namespace bomparser
