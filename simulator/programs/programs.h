// Starting the programs that a device holds as files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "simulator/processes/processes.h"

namespace sim::processes {

// The device path that `name` means to a start: as given, then in \Windows, then in the root; a
// bare name without extension gets ".exe". Empty when there is no such file.
std::wstring FindProgram(Device& device, const std::wstring& name);

// Starts the program `path` (found as above) with `arguments` as its whole command line, on the
// device and its desktop. It lives on when the starter ends.
Started Start(Device& device, const std::wstring& path, const std::wstring& arguments,
              bool suspended = false);

// Starts a program and gives its exit code. None when it cannot be started or does not end in time;
// `error` then tells which (1460: the time was over).
std::optional<std::uint32_t> Run(Device& device, const std::wstring& path,
                                 const std::wstring& arguments, std::uint32_t timeout_ms,
                                 std::uint32_t* error = nullptr);

}  // namespace sim::processes
