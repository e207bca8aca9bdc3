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

const CommandRow* FindRow(const CommandRows& rows, const std::string& name) {
    const auto at = std::find_if(rows.begin(), rows.end(),
                                 [&](const CommandRow& row) { return name == row.name; });
    return at != rows.end() ? &*at : nullptr;
}

}  // namespace

Json RunRow(const CommandRows& rows, const std::string& prefix, Device& device,
            const Words& words) {
    const std::string name = words.empty() ? std::string() : words[0];
    const CommandRow* row = FindRow(rows, name);
    if (row == nullptr) {
        throw CommandError("no such " + prefix + "command: " + name);
    }
    const Words rest(words.begin() + 1, words.end());
    if (rest.size() < row->least_words || rest.size() > row->most_words) {
        throw CommandError("usage: " + prefix + row->name + " " + row->usage);
    }
    return row->run(device, rest);
}

Json DoneOrThrow(bool done, const std::string& what) {
    if (!done) {
        throw CommandError(what);
    }
    return Done();
}

std::int64_t Number(const std::string& word) {
    char* end = nullptr;
    const std::int64_t number = std::strtoll(word.c_str(), &end, 0);
    if (word.empty() || *end != '\0') {
        throw CommandError("not a number: " + word);
    }
    return number;
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
