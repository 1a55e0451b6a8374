#pragma once

#include "tests/support/TestFolder.h"
#include "tests/ui/support/DialogUser.h"
#include "tests/ui/support/Environment.h"
#include "tests/ui/support/UiTest.h"
#include "tnbase/DesktopModule.h"

#include <dlfcn.h>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace bomparser::test {

/// The module of the dialog as the program calls it; the application object is the module's.
class DesktopTest : public TestFolder {
 protected:
  DesktopTest() {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
      environment.Set("QT_QPA_PLATFORM", "offscreen");
    environment.Set("XDG_CONFIG_HOME", QByteArray::fromStdString(Folder()));
    refusals.clear();
  }
  void SetUp() override {
    void* const module = dlopen(BOMPARSER_DESKTOP, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    ASSERT_NE(module, nullptr) << dlerror();
    main = reinterpret_cast<DesktopEntryPoint>(dlsym(module, kDesktopEntryPoint));
    ASSERT_NE(main, nullptr);
  }
  int Open(
      std::vector<std::string> arguments, std::function<void(QDialog&)> act = [](QDialog&) {}) {
    const DialogUser user(std::move(act));
    arguments.insert(arguments.begin(), "bomparser");
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments)
      pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    return main(static_cast<int>(arguments.size()), pointers.data(),
                [](const char* reason) { refusals.emplace_back(reason); });
  }

  Environment environment;
  static inline std::vector<std::string> refusals;  // What the program would tell its user.
  DesktopEntryPoint main = nullptr;
};

}  // namespace bomparser::test
