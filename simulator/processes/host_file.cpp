// The way from a program's device path to the bytes that the host can start.
#include "simulator/processes/process_start.h"

#include <windows.h>

namespace sim::processes {

std::wstring HostFileOf(Device& device, const std::wstring& path) {
    std::wstring file = device.folder() + L"\\files" + path;
    return ::GetFileAttributesW(file.c_str()) == INVALID_FILE_ATTRIBUTES ? std::wstring() : file;
}

}  // namespace sim::processes
