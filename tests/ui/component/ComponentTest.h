#pragma once

#include "entry/component/CTNFileParserInterface.h"
#include "entry/component/FileParserComponent.h"
#include "tests/support/TestFolder.h"
#include "tests/ui/support/DialogUser.h"
#include "tests/ui/support/Environment.h"
#include "tests/ui/support/UiTest.h"

#include <dlfcn.h>
#include <optional>

namespace bomparser::test {

/// The component as a host meets it: loaded at run time, reached by its exported names only. There
/// is no application object unless a test makes one.
class ComponentTest : public TestFolder {
 protected:
  ComponentTest() {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
      environment.Set("QT_QPA_PLATFORM", "offscreen");
    environment.Set("XDG_CONFIG_HOME", QByteArray::fromStdString(Folder()));
  }
  void SetUp() override {
    void* const module = dlopen(BOMPARSER_COMPONENT, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(module, nullptr) << dlerror();
    init = reinterpret_cast<ComponentInit>(dlsym(module, kComponentInitSymbol));
    display = reinterpret_cast<ComponentDisplay>(dlsym(module, kComponentDisplaySymbol));
    ASSERT_NE(init, nullptr);
    ASSERT_NE(display, nullptr);
    Introduce(&host);
  }
  void TearDown() override { Introduce(nullptr); }

  void MakeApplication() {
    static int s_count = 1;
    static char s_name[] = "host";
    static char* s_arguments[] = {s_name, nullptr};
    application.emplace(s_count, s_arguments);
  }
  void Introduce(CTNHostApp* role) {
    appinfo_struct info;
    info.host = role;
    init(&info, 0);
  }
  /// Opens the dialog for somebody who does this in it.
  int Display(std::function<void(QDialog&)> act = [](QDialog&) {}) {
    const DialogUser user(std::move(act));
    return display(text);
  }

  Environment environment;
  FakeHostApp host;
  std::optional<QApplication> application;
  ComponentInit init = nullptr;
  ComponentDisplay display = nullptr;
  std::string text = "kept";
};

}  // namespace bomparser::test
