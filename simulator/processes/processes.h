// The programs that run on a device. Their table stands in the device's state, so every process
// sees the same one. A program that has ended, in whatever way, counts as gone. Keys of the store:
// p/<host process id>.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/store/device.h"

namespace sim::processes {

struct Running {
    std::uint32_t pid;
    std::wstring path;  // device path of the program
    std::wstring arguments;
};

// A started program. The two handles are the caller's to close; both null when `error` is not 0.
struct Started {
    std::uint32_t error = 0;  // a system error code
    std::uint32_t pid = 0;
    std::uint32_t thread_id = 0;
    void* process = nullptr;
    void* thread = nullptr;
};

// Waits at most `timeout_ms` for the end of a process and gives its exit code; nothing in time:
// none.
std::optional<std::uint32_t> Wait(void* process, std::uint32_t timeout_ms);

// Enters a process of the host into the table as one that runs `path`.
void Register(Device& device, std::uint32_t pid, const std::wstring& path,
              const std::wstring& arguments);

// What runs now, by process id.
std::vector<Running> List(Device& device);

// Whether the file `path` is the program of a running process.
bool IsRunning(Device& device, const std::wstring& path);

// Ends one process of the device and waits for its end. False when the device has no such process.
bool Kill(Device& device, std::uint32_t pid, std::uint32_t exit_code = 1);

// Ends everything that runs on the device, the calling process excepted.
void KillAll(Device& device);

// This process's command line as Windows CE gives it: without the program's name.
const wchar_t* CommandLine();

}  // namespace sim::processes
