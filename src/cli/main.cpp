#include "cli/Command.h"

#include <string>
#include <vector>

int main(int argc, char** argv) {
  return bomparser::RunCommandLine(
      std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
}
