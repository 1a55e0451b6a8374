#pragma once

#include "tests/support/TestFolder.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace bomparser {

/// A test that runs under a locale whose decimal separator is a comma and whose digits are grouped
/// by points, as a host application may have set it. The locale is compiled for the test: the
/// machine need not have it, only its sources.
class CommaLocaleTest : public TestFolder {
 protected:
  void SetUp() override {
    const std::string command =
        "localedef --no-archive -i de_DE -f UTF-8 '" + PathOf("comma") + "' 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0) << "is the package locales installed?";
    ASSERT_EQ(setenv("LOCPATH", Folder().c_str(), 1), 0);
    ASSERT_NE(std::setlocale(LC_ALL, "comma"), nullptr);
    ASSERT_EQ(PrintedByC(1.5), "1,5") << "the locale has no effect";
  }

  void TearDown() override {
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
  }

  /// A number as the C library prints it, which follows the locale.
  static std::string PrintedByC(double value) {
    char text[32];
    const int length = std::snprintf(text, sizeof text, "%.1f", value);
    return std::string(text, static_cast<std::size_t>(length));
  }
};

}  // namespace bomparser
