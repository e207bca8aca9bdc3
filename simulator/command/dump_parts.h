// The parts of a device's dump that the commands make themselves.
#pragma once

#include "simulator/command/command_row.h"

namespace sim {

// Every file and folder, sorted by path; files with the hash of their content.
Json DumpFiles(Device& device);

}  // namespace sim
