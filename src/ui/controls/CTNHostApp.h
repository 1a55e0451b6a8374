#pragma once

#include <QPoint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class QWidget;

namespace bomparser {

/// What a host's help is asked for; the numbers are those of the platform's help call.
enum class HelpCommand : int {
  Contents = 11,     // Opens the manual.
  ContextMenu = 16,  // A pop-up for the control that was right-clicked.
  HelpKey = 17,      // A pop-up for the control at which help was asked for.
};

/// One control and the number that the help knows it by.
using HelpPair = std::pair<int, int>;

/// One request to the host's help.
struct HelpRequest {
  HelpCommand command = HelpCommand::Contents;
  std::string topicFile;        // Of a pop-up: the help file and the topic in it.
  std::vector<HelpPair> pairs;  // Of a pop-up; that of the help key ends with a pair of zeros.
  QWidget* control = nullptr;   // What it is about; not owned, alive during the call only.
  QPoint screenPoint;
  bool byKey = false;  // Asked for by F1, not by pointing at the control.
};

/// The application that opens the dialog. It owns the per-user settings and the help. Played by the
/// host; by a settings file of our own where the host does not offer it; by tests.
class CTNHostApp {
 public:
  /// The stored text, or the fallback where there is none. An empty section is the unnamed one.
  virtual std::string GetProfileString(std::string_view section, std::string_view key,
                                       std::string_view fallback) const = 0;
  virtual int GetProfileInt(std::string_view section, std::string_view key, int fallback) const = 0;
  /// False when it could not be stored.
  virtual bool WriteProfileString(std::string_view section, std::string_view key,
                                  std::string_view value) = 0;
  virtual bool WriteProfileInt(std::string_view section, std::string_view key, int value) = 0;
  virtual std::string GetHelpFilePath() const = 0;
  virtual void SetHelpFilePath(const std::string& path) = 0;
  virtual void ShowHelp(const HelpRequest& request) = 0;

 protected:
  ~CTNHostApp() = default;
};

}  // namespace bomparser
