#include "simulator/store/device_name.h"

#include <cwchar>
#include <windows.h>

namespace sim {
namespace {

std::wstring CanonicalFolder(const Device& device) {
    wchar_t full[MAX_PATH] = L"";
    const DWORD length = ::GetFullPathNameW(device.folder().c_str(), MAX_PATH, full, nullptr);
    std::wstring folder =
        length != 0 && length < MAX_PATH ? std::wstring(full, length) : device.folder();
    while (!folder.empty() && folder.back() == L'\\') {
        folder.pop_back();
    }
    ::CharLowerBuffW(&folder[0], static_cast<DWORD>(folder.size()));
    return folder;
}

std::uint64_t HashOf(const std::wstring& text) {  // FNV-1a
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const wchar_t unit : text) {
        hash = (hash ^ unit) * 0x100000001B3;
    }
    return hash;
}

}  // namespace

std::wstring DeviceName(const Device& device) {
    wchar_t name[40];
    std::swprintf(name, 40, L"device-%016llx",
                  static_cast<unsigned long long>(HashOf(CanonicalFolder(device))));
    return name;
}

std::wstring ObjectName(const Device& device, const wchar_t* name) {
    return DeviceName(device) + L"-" + name;
}

}  // namespace sim
