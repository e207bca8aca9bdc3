// create, export, dump: a device as a whole.
#include "simulator/command/command_row.h"
#include "simulator/system/settings.h"

namespace sim {
namespace {

Json RunDump(Device& device, const Words&) { return {{"settings", OwnSettings(device)}}; }

}  // namespace

const CommandRows& ProfileCommands() {
    static const CommandRows rows = {
        {"dump", 0, 0, RunDump, ""},
    };
    return rows;
}

}  // namespace sim
