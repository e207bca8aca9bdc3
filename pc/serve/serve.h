// serve: a storage in a browser, with downloads, until the command is ended.
#pragma once

#include "pc/command/command_line.h"

namespace tolvenar::pc {

extern const Command kServeCommand;

}  // namespace tolvenar::pc
