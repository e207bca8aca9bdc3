#include "app/operations/memory_check.h"

#include "platform/win32.h"

namespace tolvenar {

bool MemoryCheck(std::uint32_t& available) {
    MEMORYSTATUS memory{};
    memory.dwLength = sizeof memory;
    ::GlobalMemoryStatus(&memory);
    STORE_INFORMATION store{};
    ::GetStoreInformation(&store);
    available = store.dwFreeSize / 4 + store.dwFreeSize / 2 + memory.dwAvailPhys;
    return available >= kMinimumFreeBytes;
}

std::uint32_t MissingMemory(std::uint32_t available) {
    return available < kMinimumFreeBytes ? kMinimumFreeBytes - available : kMinimumFreeBytes;
}

void FormatMegabytes(std::uint32_t bytes, wchar_t (&text)[kMegabytesUnits]) {
    constexpr std::uint64_t kMegabyte = 0x100000;
    // As if times 9.536743e-7, which is a little less than 1 / 2^20: a half is rounded down.
    const auto tenths = static_cast<unsigned>((bytes * 10ull + kMegabyte / 2 - 1) / kMegabyte);
    ::wsprintfW(text, L"%u.%u", tenths / 10, tenths % 10);
}

}  // namespace tolvenar
