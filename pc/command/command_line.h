// The command line: which command, with which options.
#pragma once

#include <string>
#include <vector>

#include "pc/command/console.h"

namespace tolvenar::pc {

// Runs what `arguments`, without the program's own name, ask for; the exit code.
int RunCommandLine(const std::vector<std::string>& arguments, Console& console);

}  // namespace tolvenar::pc
