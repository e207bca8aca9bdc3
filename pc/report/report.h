// report: what a storage holds as one page that needs nothing beside it.
#pragma once

#include "pc/command/command_line.h"

namespace tolvenar::pc {

extern const Command kReportCommand;

}  // namespace tolvenar::pc
