#include "entry/component/WindowApplication.h"

#include "entry/component/DisplayProbe.h"

#include <clocale>

namespace bomparser {
namespace {

/// Qt refers to these for as long as the application lives.
int g_argumentCount = 1;
char g_programName[] = "bomparser";
char* g_arguments[] = {g_programName, nullptr};

}  // namespace

WindowApplication::WindowApplication() {
  if (QCoreApplication::instance() != nullptr || !CanOpenDisplay()) return;
  m_localeBefore = std::setlocale(LC_ALL, nullptr);
  m_own = std::make_unique<QApplication>(g_argumentCount, g_arguments);
}

WindowApplication::~WindowApplication() {
  if (!m_own) return;
  m_own.reset();
  // Qt has set the user's. A host that knows nothing of Qt may count on its own.
  std::setlocale(LC_ALL, m_localeBefore.c_str());
}

bool WindowApplication::IsUsable() const {
  return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

}  // namespace bomparser
