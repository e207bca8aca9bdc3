// A window of another program, for tests of how the product deals with one: it ignores being closed
// and answers messages with a fixed number.
#pragma once

#include <cstdint>
#include <string>

#include "simulator/store/device.h"

namespace sim::windows {

// Shows the window in a process of its own, which stands in the process table as "stub" and lives
// until it is ended. `answer` is what every message from WM_USER on gets. Gives its process id, or
// 0 when it did not come up in time.
std::uint32_t StartStub(Device& device, const std::wstring& class_name, const std::wstring& title,
                        std::int32_t answer);

// The body of that process.
int RunStub(const std::wstring& class_name, const std::wstring& title, std::int32_t answer);

}  // namespace sim::windows
