#include "simulator/processes/processes.h"

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <windows.h>

namespace sim::processes {
namespace {

const std::u16string kPrefix = u"p/";
constexpr DWORD kEndTimeoutMs = 10000;

std::u16string KeyOf(std::uint32_t pid) {
    const std::string digits = std::to_string(pid);
    return kPrefix + std::u16string(digits.begin(), digits.end());
}

// A row's value: when the process was created (process ids are used again), then path and
// arguments, each with a terminator, as UTF-16.
struct Row {
    std::uint64_t created = 0;
    Running program;
};

std::string Encode(const Row& row) {
    std::string value(reinterpret_cast<const char*>(&row.created), sizeof row.created);
    for (const std::wstring* text : {&row.program.path, &row.program.arguments}) {
        value.append(reinterpret_cast<const char*>(text->c_str()),
                     (text->size() + 1) * sizeof(wchar_t));
    }
    return value;
}

Row Decode(const std::u16string& key, const std::string& value) {
    Row row;
    const std::string digits(key.begin() + static_cast<std::ptrdiff_t>(kPrefix.size()), key.end());
    row.program.pid = static_cast<std::uint32_t>(std::strtoul(digits.c_str(), nullptr, 10));
    value.copy(reinterpret_cast<char*>(&row.created), sizeof row.created);
    const auto* text = reinterpret_cast<const wchar_t*>(value.data() + sizeof row.created);
    row.program.path = text;
    row.program.arguments = text + row.program.path.size() + 1;
    return row;
}

std::uint64_t CreationTime(HANDLE process) {
    FILETIME created{}, ended, kernel, user;
    ::GetProcessTimes(process, &created, &ended, &kernel, &user);
    return (static_cast<std::uint64_t>(created.dwHighDateTime) << 32) | created.dwLowDateTime;
}

// The row's process when it still runs, or null; the caller closes it.
HANDLE OpenLive(const Row& row) {
    HANDLE process =
        ::OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION | PROCESS_TERMINATE | SYNCHRONIZE, FALSE,
                      row.program.pid);
    if (process == nullptr) {
        return nullptr;
    }
    if (::WaitForSingleObject(process, 0) == WAIT_TIMEOUT && CreationTime(process) == row.created) {
        return process;
    }
    ::CloseHandle(process);
    return nullptr;
}

bool IsLive(const Row& row) {
    HANDLE process = OpenLive(row);
    if (process == nullptr) {
        return false;
    }
    ::CloseHandle(process);
    return true;
}

std::vector<Row> Rows(Device& device) {
    std::vector<Row> rows;
    LogStore::View view(device.store());
    view.ForEach(kPrefix, [&](const std::u16string& key, const std::string& value) {
        rows.push_back(Decode(key, value));
    });
    return rows;
}

bool SamePath(const std::wstring& a, const std::wstring& b) {
    return ::CompareStringOrdinal(a.c_str(), static_cast<int>(a.size()), b.c_str(),
                                  static_cast<int>(b.size()), TRUE) == CSTR_EQUAL;
}

}  // namespace

std::optional<std::uint32_t> Wait(void* process, std::uint32_t timeout_ms) {
    DWORD code = 0;
    if (::WaitForSingleObject(process, timeout_ms) != WAIT_OBJECT_0 ||
        !::GetExitCodeProcess(process, &code)) {
        return std::nullopt;
    }
    return code;
}

void Register(Device& device, std::uint32_t pid, const std::wstring& path,
              const std::wstring& arguments) {
    HANDLE process = ::OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, pid);
    if (process == nullptr) {
        return;
    }
    const Row entry = {CreationTime(process), {pid, path, arguments}};
    ::CloseHandle(process);
    std::vector<std::uint32_t> gone;
    for (const Row& row : Rows(device)) {
        if (!IsLive(row)) {
            gone.push_back(row.program.pid);
        }
    }
    LogStore::Change change(device.store());
    for (const std::uint32_t ended : gone) {
        change.Erase(KeyOf(ended));
    }
    change.Set(KeyOf(pid), Encode(entry));
}

std::vector<Running> List(Device& device) {
    std::vector<Running> list;
    for (const Row& row : Rows(device)) {
        if (IsLive(row)) {
            list.push_back(row.program);
        }
    }
    std::sort(list.begin(), list.end(),
              [](const Running& a, const Running& b) { return a.pid < b.pid; });
    return list;
}

bool IsRunning(Device& device, const std::wstring& path) {
    const std::vector<Row> rows = Rows(device);
    return std::any_of(rows.begin(), rows.end(), [&](const Row& row) {
        return SamePath(row.program.path, path) && IsLive(row);
    });
}

bool Kill(Device& device, std::uint32_t pid, std::uint32_t exit_code) {
    for (const Row& row : Rows(device)) {
        HANDLE process = row.program.pid == pid ? OpenLive(row) : nullptr;
        if (process == nullptr) {
            continue;
        }
        ::TerminateProcess(process, exit_code);
        ::WaitForSingleObject(process, kEndTimeoutMs);
        ::CloseHandle(process);
        return true;
    }
    return false;
}

void KillAll(Device& device) {
    const std::uint32_t self = ::GetCurrentProcessId();
    // Again and again: a program may start another one while it is being ended.
    for (bool found = true; found;) {
        found = false;
        for (const Running& program : List(device)) {
            if (program.pid != self) {
                found = Kill(device, program.pid) || found;
            }
        }
    }
}

}  // namespace sim::processes
