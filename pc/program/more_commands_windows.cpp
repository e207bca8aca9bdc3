#include "pc/program/more_commands.h"
#include "pc/report/report.h"

namespace tolvenar::pc {

std::vector<Command> MoreCommands() { return {kReportCommand}; }

}  // namespace tolvenar::pc
