// mount: a storage as folders and files, until it is unmounted or the command is ended.
#pragma once

#include "pc/command/command_line.h"

namespace tolvenar::pc {

extern const Command kMountCommand;

}  // namespace tolvenar::pc
