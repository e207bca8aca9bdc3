// The way from a program's device path to the bytes that the host can start.
#include "simulator/files/files.h"
#include "simulator/processes/process_start.h"

namespace sim::processes {

std::wstring HostFileOf(Device& device, const std::wstring& path) {
    return files::HostFile(device, path);
}

}  // namespace sim::processes
