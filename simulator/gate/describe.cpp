// Arguments as text. A program may hand over anything, also buffers that were never filled.
#include <cstdio>
#include <windows.h>

#include "simulator/gate/gate.h"

namespace sim {
namespace {

constexpr std::size_t kMostUnits = 260;
constexpr std::uintptr_t kFirstPointer = 0x10000;  // below: the number of a resource

// Units from `text` to the end of its readable memory.
std::size_t ReadableUnits(const wchar_t* text) {
    MEMORY_BASIC_INFORMATION area{};
    if (::VirtualQuery(text, &area, sizeof area) == 0 || area.State != MEM_COMMIT ||
        (area.Protect & (PAGE_NOACCESS | PAGE_GUARD)) != 0) {
        return 0;
    }
    const char* end = static_cast<const char*>(area.BaseAddress) + area.RegionSize;
    const auto bytes = static_cast<std::size_t>(end - reinterpret_cast<const char*>(text));
    return bytes / sizeof(wchar_t);
}

}  // namespace

std::string Describe(const wchar_t* text) {
    if (reinterpret_cast<std::uintptr_t>(text) < kFirstPointer) {
        return Describe(static_cast<const void*>(text));
    }
    const DWORD error = ::GetLastError();
    const std::size_t units = ReadableUnits(text);
    std::size_t length = 0;
    while (length < units && length < kMostUnits && text[length] != L'\0') {
        ++length;
    }
    std::string bytes(length * 3, '\0');
    const int count =
        length == 0 ? 0
                    : ::WideCharToMultiByte(CP_UTF8, 0, text, static_cast<int>(length), &bytes[0],
                                            static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(count));
    ::SetLastError(error);
    return bytes;
}

std::string Describe(const void* pointer) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%x",
                  static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(pointer)));
    return text;
}

std::string DescribeNumber(long long number) { return std::to_string(number); }

}  // namespace sim
