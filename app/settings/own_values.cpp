#include "app/settings/own_values.h"

#include "platform/registry_key.h"
#include "platform/text.h"

namespace tolvenar {
namespace {

UniqueHkey OpenSettings(REGSAM access) {
    return OpenKey(HKEY_CURRENT_USER, Wide(kSettingsKey), access);
}

}  // namespace

bool ReadOwnBytes(const char16_t* name, void* buffer, std::uint32_t bytes) {
    const UniqueHkey hkey = OpenSettings(0);
    DWORD type = 0;
    DWORD size = bytes;
    return hkey &&
           ::RegQueryValueExW(hkey.get(), Wide(name), nullptr, &type, static_cast<BYTE*>(buffer),
                              &size) == ERROR_SUCCESS &&
           type == REG_BINARY && size == bytes;
}

bool WriteOwnBytes(const char16_t* name, const void* data, std::uint32_t bytes) {
    const UniqueHkey hkey = OpenSettings(KEY_ALL_ACCESS);
    return hkey && ::RegSetValueExW(hkey.get(), Wide(name), 0, REG_BINARY,
                                    static_cast<const BYTE*>(data), bytes) == ERROR_SUCCESS;
}

bool DeleteOwnValue(const char16_t* name) {
    const UniqueHkey hkey = OpenSettings(KEY_ALL_ACCESS);
    return hkey && ::RegDeleteValueW(hkey.get(), Wide(name)) == ERROR_SUCCESS;
}

bool ValueExists(const char16_t* name) {
    const UniqueHkey hkey = OpenSettings(0);
    return hkey && ::RegQueryValueExW(hkey.get(), Wide(name), nullptr, nullptr, nullptr, nullptr) ==
                       ERROR_SUCCESS;
}

void FlushSettings() {
    const UniqueHkey hkey = OpenSettings(0);
    if (hkey) {
        ::RegFlushKey(hkey.get());
    }
}

}  // namespace tolvenar
