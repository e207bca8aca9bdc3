// Functions that the device's system lacks: those that came with a newer version of it, and what
// settings take away.
#pragma once

#include <cstdint>
#include <string_view>

#include "simulator/store/device.h"

namespace sim {

// Whether `dll`, in lower case, exports no `name` on this device: what began with a newer system
// than "os.version", the power status without "power.present", the window to choose a file with
// where "file.chooser" names the other DLL, and the checks of locales and code pages where
// "locale.checks" says so.
bool IsMissing(const Device& device, std::wstring_view dll, std::wstring_view name);

// The name of what coredll.dll exports by `number`; null when this device has nothing there.
const wchar_t* NameOfNumber(const Device& device, std::uint16_t number);

}  // namespace sim
