#include "simulator/command/command_row.h"

#include <algorithm>
#include <cstdlib>
#include <windows.h>

namespace sim {
namespace {

struct File {
    HANDLE handle;
    ~File() {
        if (handle != INVALID_HANDLE_VALUE) {
            ::CloseHandle(handle);
        }
    }
};

}  // namespace

std::int64_t Number(const std::string& word) {
    char* end = nullptr;
    const std::int64_t number = std::strtoll(word.c_str(), &end, 0);
    if (word.empty() || *end != '\0') {
        throw CommandError("not a number: " + word);
    }
    return number;
}

std::wstring Wide(const std::string& utf8) {
    const int bytes = static_cast<int>(utf8.size());
    std::wstring text(utf8.size(), L'\0');
    const int units = ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, &text[0], bytes);
    text.resize(static_cast<std::size_t>(units));
    return text;
}

std::u16string Wide16(const std::string& utf8) {
    const std::wstring text = Wide(utf8);
    return std::u16string(text.begin(), text.end());
}

std::string Utf8(const std::wstring& text) {
    const int units = static_cast<int>(text.size());
    std::string bytes(text.size() * 3, '\0');
    const int count = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), units, &bytes[0],
                                            static_cast<int>(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(count));
    return bytes;
}

std::string Utf8(const std::u16string& text) {
    return Utf8(std::wstring(text.begin(), text.end()));
}

std::wstring HostPath(const std::string& path) {
    std::wstring host = (path.empty() || path[0] != '/' ? L"" : L"Z:") + Wide(path);
    std::replace(host.begin(), host.end(), L'/', L'\\');
    return host;
}

std::string ReadHostFile(const std::string& path) {
    const File file{::CreateFileW(HostPath(path).c_str(), GENERIC_READ,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                                  nullptr)};
    if (file.handle == INVALID_HANDLE_VALUE) {
        throw CommandError("cannot be read: " + path);
    }
    std::string bytes(::GetFileSize(file.handle, nullptr), '\0');
    DWORD count = 0;
    if (!::ReadFile(file.handle, &bytes[0], static_cast<DWORD>(bytes.size()), &count, nullptr) ||
        count != bytes.size()) {
        throw CommandError("cannot be read: " + path);
    }
    return bytes;
}

void WriteHostFile(const std::string& path, const std::string& bytes) {
    const File file{::CreateFileW(HostPath(path).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr)};
    DWORD count = 0;
    if (file.handle == INVALID_HANDLE_VALUE ||
        !::WriteFile(file.handle, bytes.data(), static_cast<DWORD>(bytes.size()), &count,
                     nullptr) ||
        count != bytes.size()) {
        throw CommandError("cannot be written: " + path);
    }
}

}  // namespace sim
