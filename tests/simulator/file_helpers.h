// Short forms of what the tests of files do again and again.
#pragma once

#include "platform/win32.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tests {

inline HANDLE Open(const wchar_t* path, DWORD access, DWORD share, DWORD disposition) {
    return ::CreateFileW(path, access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// The last error of an opening, 0 when it succeeds; the handle is closed.
inline long OpenError(const wchar_t* path, DWORD access, DWORD share = 0,
                      DWORD disposition = OPEN_EXISTING) {
    HANDLE file = Open(path, access, share, disposition);
    if (file == INVALID_HANDLE_VALUE) {
        return static_cast<long>(::GetLastError());
    }
    ::CloseHandle(file);
    return 0;
}

// The last error of a call that answers FALSE on failure, 0 when it succeeds.
inline long ErrorOf(BOOL result) { return result ? 0 : static_cast<long>(::GetLastError()); }

inline bool Write(HANDLE file, const std::string& bytes) {
    DWORD count = 0;
    return ::WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) &&
           count == bytes.size();
}

inline std::string Read(HANDLE file, DWORD bytes) {
    std::string text(bytes, '\0');
    DWORD count = 0;
    EXPECT_TRUE(::ReadFile(file, &text[0], bytes, &count, nullptr));
    text.resize(count);
    return text;
}

// Names that a search shows, in its order; empty when it finds nothing.
inline std::vector<std::wstring> Names(const wchar_t* pattern) {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW data;
    HANDLE find = ::FindFirstFileW(pattern, &data);
    if (find == INVALID_HANDLE_VALUE) {
        return names;
    }
    do {
        names.push_back(data.cFileName);
    } while (::FindNextFileW(find, &data));
    EXPECT_EQ(static_cast<DWORD>(ERROR_NO_MORE_FILES), ::GetLastError());
    EXPECT_TRUE(::FindClose(find));
    return names;
}

inline std::vector<std::wstring> Sorted(std::vector<std::wstring> names) {
    std::sort(names.begin(), names.end());
    return names;
}

inline WIN32_FIND_DATAW Found(const wchar_t* path) {
    WIN32_FIND_DATAW data{};
    HANDLE find = ::FindFirstFileW(path, &data);
    EXPECT_NE(INVALID_HANDLE_VALUE, find);
    EXPECT_TRUE(::FindClose(find));
    return data;
}

inline FILETIME FileTime(unsigned long long count) {
    return {static_cast<DWORD>(count), static_cast<DWORD>(count >> 32)};
}
inline unsigned long long Count(const FILETIME& time) {
    return (static_cast<unsigned long long>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

}  // namespace tests
