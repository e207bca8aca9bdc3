// Starting one file of the host as a program of a device, and what such a program finds at its
// start.
#pragma once

#include <string>

#include "simulator/processes/processes.h"

namespace sim::processes {

struct StartRequest {
    std::wstring host_file;  // what holds the program's bytes
    std::wstring path;       // its device path
    std::wstring arguments;
    std::wstring device_folder;
    std::wstring desktop;
};

// The folder of the simulator's DLLs.
std::wstring SimulatorFolder();

// The new process stands suspended.
Started StartHostFile(const StartRequest& request);

}  // namespace sim::processes
