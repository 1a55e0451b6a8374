#include "entry/component/CTNFileParserInterface.h"

#include "entry/component/HostRole.h"
#include "entry/component/WindowApplication.h"
#include "input/MessageTexts.h"
#include "tnbase/TNPath.h"
#include "ui/dialogs/CTNFileParserDlg.h"

using bomparser::CTNFileParserDlg;
using bomparser::CTNHostApp;
using bomparser::GetMessageText;
using bomparser::Msg;
using bomparser::WindowApplication;

namespace {

bool g_isOpen = false;

class OpenMark {
 public:
  OpenMark() { g_isOpen = true; }
  ~OpenMark() { g_isOpen = false; }
  OpenMark(const OpenMark&) = delete;
  OpenMark& operator=(const OpenMark&) = delete;
};

/// The host's help path is the fixed one for as long as this lives.
class FixedHelpPath {
 public:
  explicit FixedHelpPath(CTNHostApp& host) : m_host(host), m_before(host.GetHelpFilePath()) {
    m_host.SetHelpFilePath(GetMessageText(Msg::FixedHelpFilePath));
  }
  ~FixedHelpPath() { m_host.SetHelpFilePath(m_before); }
  FixedHelpPath(const FixedHelpPath&) = delete;
  FixedHelpPath& operator=(const FixedHelpPath&) = delete;

 private:
  CTNHostApp& m_host;
  std::string m_before;
};

/// The help file beside the one that the host has now.
std::string HelpFileBesideHosts(const CTNHostApp& host) {
  std::string path = bomparser::TNGetPathFromPathNFName(host.GetHelpFilePath());
  if (!path.ends_with('\\')) path += '\\';
  return path + GetMessageText(Msg::HelpFileName);
}

void RunDialog(CTNHostApp& host) {
  CTNFileParserDlg dialog(host);
  dialog.SetProfileSection(GetMessageText(Msg::ProfileSection));
  dialog.SetTitle(GetMessageText(Msg::DialogTitle));
  // Looked up and not used: hosts expect that their help path is asked for here, and that what the
  // dialog's help gets to see is the fixed path all the same.
  static_cast<void>(HelpFileBesideHosts(host));
  const FixedHelpPath helpPath(host);
  dialog.exec();
}

}  // namespace

CTNFileParserInterface::CTNFileParserInterface() = default;
CTNFileParserInterface::CTNFileParserInterface(const CTNFileParserInterface&) = default;
CTNFileParserInterface::~CTNFileParserInterface() = default;

CTNFileParserInterface& CTNFileParserInterface::operator=(const CTNFileParserInterface&) = default;

int CTNFileParserInterface::DisplayFileParserAsImportBOM(std::string& /*result*/) {
  constexpr int kEnded = 1;
  if (g_isOpen) return kEnded;
  const OpenMark open;
  const WindowApplication application;
  if (application.IsUsable()) RunDialog(bomparser::Host());
  return kEnded;
}
