// The commands of rooms above the one of most commands.
#pragma once

#include <vector>

#include "pc/command/command_line.h"

namespace tolvenar::pc {

std::vector<Command> MoreCommands();

}  // namespace tolvenar::pc
