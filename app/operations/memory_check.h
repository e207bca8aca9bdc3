// Whether there is memory enough to start an operation.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tolvenar {

constexpr std::uint32_t kMinimumFreeBytes = 0x800000;

// True when enough is free. `available`: three quarters of the free object store, which the
// platform may turn into program memory, and the free physical memory, in bytes.
bool MemoryCheck(std::uint32_t& available);

// How much is to be freed of the device's memory when `available` bytes were not enough. An
// operation can find too little behind the check, too: then it needs as much again.
std::uint32_t MissingMemory(std::uint32_t available);

constexpr std::size_t kMegabytesUnits = 16;
// Bytes as megabytes with one decimal and a point, as "0.5"; the platform's formatter knows no
// floats.
void FormatMegabytes(std::uint32_t bytes, wchar_t (&text)[kMegabytesUnits]);

}  // namespace tolvenar
