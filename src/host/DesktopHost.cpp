#include "host/DesktopHost.h"

#include "input/MessageTexts.h"
#include "tnbase/NumberText.h"
#include "ui/controls/Ids.h"

#include <QWhatsThis>
#include <utility>

namespace bomparser {
namespace {

/// What of the command line answers for this setting; null for any other.
const std::string* FindStartFile(const StartFiles& start, std::string_view section,
                                 std::string_view key) {
  if (section != GetMessageText(Msg::StartSection)) return nullptr;
  if (key == GetMessageText(Msg::StartTemplateKey)) return &start.templateFile;
  if (key == GetMessageText(Msg::StartInputKey)) return &start.inputFile;
  return nullptr;
}

/// The number of the control that the request is about. Buttons that every dialog has are asked for
/// by a pair that names none.
int ControlNumber(const HelpRequest& request) {
  constexpr HelpPair kStandardButton(-2, -2);
  if (!request.pairs.empty() && request.pairs.front() != kStandardButton) {
    return request.pairs.front().first;
  }
  return request.control != nullptr ? static_cast<int>(GetControlId(*request.control)) : 0;
}

}  // namespace

DesktopHost::DesktopHost(const QString& settingsFile, const QString& manualFolder, StartFiles start)
    : m_settings(settingsFile), m_manual(manualFolder), m_start(std::move(start)) {
  m_settings.SetHelpFilePath(m_manual.GetIndex().toLocalFile().toStdString());
}

std::string DesktopHost::GetProfileString(std::string_view section, std::string_view key,
                                          std::string_view fallback) const {
  const std::string* const start = FindStartFile(m_start, section, key);
  if (start == nullptr) return m_settings.GetProfileString(section, key, fallback);
  return start->empty() ? std::string(fallback) : *start;
}

int DesktopHost::GetProfileInt(std::string_view section, std::string_view key, int fallback) const {
  return m_settings.GetProfileInt(section, key, fallback);
}

bool DesktopHost::WriteProfileString(std::string_view section, std::string_view key,
                                     std::string_view value) {
  return FindStartFile(m_start, section, key) == nullptr &&
         m_settings.WriteProfileString(section, key, value);
}

bool DesktopHost::WriteProfileInt(std::string_view section, std::string_view key, int value) {
  return WriteProfileString(section, key, FormatInt(value));
}

void DesktopHost::ShowHelp(const HelpRequest& request) {
  if (request.command == HelpCommand::Contents) {
    ShowPage(m_manual.GetPageOf(request.control));
  } else {
    ShowControlHelp(request);
  }
}

void DesktopHost::ShowControlHelp(const HelpRequest& request) {
  const Manual::Entry entry = m_manual.GetEntry(request.control, ControlNumber(request));
  if (entry.text.isEmpty()) {
    ShowPage(m_manual.GetPageOf(request.control));
  } else if (request.byKey) {
    ShowPage(entry.place);
  } else {
    QWhatsThis::showText(request.screenPoint, entry.text, request.control);
  }
}

void DesktopHost::ShowPage(const QUrl& page) {
  if (!m_helpWindow) m_helpWindow = std::make_unique<HelpWindow>(m_settings, m_manual.GetIndex());
  m_helpWindow->ShowPage(page);
}

}  // namespace bomparser
