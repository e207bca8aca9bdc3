// Keys and values of a device's registry, made and read as a program does.
#pragma once

#include <string>
#include <vector>
#include <windows.h>

#include "tests/support/device_test.h"

class RegistryFixture : public tests::DeviceTest {
protected:
    HKEY Create(HKEY parent, const wchar_t* name) {
        HKEY key = nullptr;
        EXPECT_EQ(ERROR_SUCCESS, ::RegCreateKeyExW(parent, name, 0, nullptr, 0, KEY_ALL_ACCESS,
                                                   nullptr, &key, nullptr));
        return key;
    }
    void Make(HKEY parent, const wchar_t* name) { ::RegCloseKey(Create(parent, name)); }
    LONG Open(HKEY parent, const wchar_t* name) {
        HKEY key = nullptr;
        const LONG status = ::RegOpenKeyExW(parent, name, 0, KEY_READ, &key);
        if (status == ERROR_SUCCESS) {
            ::RegCloseKey(key);
        }
        return status;
    }
    void SetText(HKEY key, const wchar_t* name, const std::wstring& text) {
        EXPECT_EQ(
            ERROR_SUCCESS,
            ::RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                             static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))));
    }
    std::wstring SubkeyName(HKEY key, DWORD index) { return NameAt(::RegEnumKeyExW, key, index); }
    std::wstring ValueName(HKEY key, DWORD index) { return NameAt(::RegEnumValueW, key, index); }
    std::vector<std::wstring> SubkeyNames(HKEY key) {
        std::vector<std::wstring> names;
        for (DWORD i = 0; SubkeyName(key, i)[0] != L'?'; ++i) {
            names.push_back(SubkeyName(key, i));
        }
        return names;
    }

private:
    // "?" and the error when there is none.
    template <typename Enumerate>
    static std::wstring NameAt(Enumerate enumerate, HKEY key, DWORD index) {
        wchar_t name[256];
        DWORD units = 256;
        const LONG status = enumerate(key, index, name, &units, nullptr, nullptr, nullptr, nullptr);
        return status == ERROR_SUCCESS ? std::wstring(name, units) : L"?" + std::to_wstring(status);
    }
};
