#pragma once

#include "host/HelpWindow.h"
#include "host/Manual.h"
#include "ui/controls/CTNHostApp.h"
#include "ui/controls/ProfileFile.h"

#include <QString>
#include <memory>
#include <string>
#include <string_view>

namespace bomparser {

/// What the user named on the command line; empty for nothing.
struct StartFiles {
  std::string templateFile;
  std::string inputFile;
};

/// The program as the host of its component: a settings file of the user, and the manual as help.
class DesktopHost final : public CTNHostApp {
 public:
  DesktopHost(const QString& settingsFile, const QString& manualFolder, StartFiles start);

  /// What is opened at the start is that of the command line and never stored: writing it fails.
  std::string GetProfileString(std::string_view section, std::string_view key,
                               std::string_view fallback) const override;
  int GetProfileInt(std::string_view section, std::string_view key, int fallback) const override;
  bool WriteProfileString(std::string_view section, std::string_view key,
                          std::string_view value) override;
  bool WriteProfileInt(std::string_view section, std::string_view key, int value) override;

  /// At first the manual's index. What it is set to matters to nobody but who asks for it: help is
  /// the manual always.
  std::string GetHelpFilePath() const override { return m_settings.GetHelpFilePath(); }
  void SetHelpFilePath(const std::string& path) override { m_settings.SetHelpFilePath(path); }

  /// Opens the manual at the page of the window that the request comes from. About a control it
  /// shows a bubble at the point or, asked for by key, opens the manual at that control; where the
  /// manual has nothing about it, the window's page.
  void ShowHelp(const HelpRequest& request) override;

 private:
  void ShowPage(const QUrl& page);
  void ShowControlHelp(const HelpRequest& request);

  ProfileFile m_settings;
  Manual m_manual;
  StartFiles m_start;
  std::unique_ptr<HelpWindow> m_helpWindow;  // Made when it is first asked for.
};

}  // namespace bomparser
