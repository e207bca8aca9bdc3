#include "pc/mount/mount.h"
#include "pc/program/more_commands.h"
#include "pc/report/report.h"
#include "pc/serve/serve.h"

namespace tolvenar::pc {

std::vector<Command> MoreCommands() { return {kReportCommand, kServeCommand, kMountCommand}; }

}  // namespace tolvenar::pc
