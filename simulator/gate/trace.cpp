#include "simulator/gate/trace.h"

#include <cstdio>
#include <windows.h>

namespace sim {
namespace {

HANDLE OpenTrace(const std::wstring& folder, DWORD disposition) {
    return ::CreateFileW((folder + L"\\trace.jsonl").c_str(), GENERIC_READ | GENERIC_WRITE,
                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                         disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// A process that dies between taking its place and writing leaves zeros there.
std::vector<std::string> Lines(const std::string& bytes) {
    std::vector<std::string> lines;
    std::string line;
    for (const char c : bytes) {
        if (c == '\n') {
            lines.push_back(std::move(line));
            line.clear();
        } else if (c != '\0') {
            line += c;
        }
    }
    return lines;
}

}  // namespace

void StartTrace(Device& device) {
    StopTrace(device);
    ::CloseHandle(OpenTrace(device.folder(), CREATE_ALWAYS));
    GateFile& gate = GateOf(device);
    ::InterlockedExchange(&gate.trace_bytes, 0);
    if (::InterlockedExchange(&gate.trace, 1) == 0) {
        ::InterlockedIncrement(&gate.watch_all);
    }
}

void StopTrace(Device& device) {
    GateFile& gate = GateOf(device);
    if (::InterlockedExchange(&gate.trace, 0) == 1) {
        ::InterlockedDecrement(&gate.watch_all);
    }
}

std::vector<std::string> TraceLines(Device& device) {
    const HANDLE file = OpenTrace(device.folder(), OPEN_ALWAYS);
    if (file == INVALID_HANDLE_VALUE) {
        return {};
    }
    std::string bytes(::GetFileSize(file, nullptr), '\0');
    DWORD count = 0;
    ::ReadFile(file, &bytes[0], static_cast<DWORD>(bytes.size()), &count, nullptr);
    ::CloseHandle(file);
    bytes.resize(count);
    return Lines(bytes);
}

// A thread that was killed leaves its id behind; the next command puts its own there.
UntracedThread::UntracedThread(Device& device) : gate_(GateOf(device)) {
    ::InterlockedExchange(&gate_.untraced_thread, static_cast<long>(::GetCurrentThreadId()));
}

UntracedThread::~UntracedThread() {
    ::InterlockedCompareExchange(&gate_.untraced_thread, 0,
                                 static_cast<long>(::GetCurrentThreadId()));
}

TraceFile::~TraceFile() {
    if (file_ != nullptr) {
        ::CloseHandle(file_);
    }
}

void* TraceFile::Opened() {
    if (file_ != nullptr) {
        return file_;
    }
    const HANDLE opened = OpenTrace(folder_, OPEN_ALWAYS);
    if (opened == INVALID_HANDLE_VALUE) {
        return nullptr;
    }
    void* const earlier = ::InterlockedCompareExchangePointer(&file_, opened, nullptr);
    if (earlier != nullptr) {  // another thread was first
        ::CloseHandle(opened);
    }
    return file_;
}

void TraceFile::Append(GateFile& gate, const std::string& line) {
    const std::string whole = line + "\n";
    const auto size = static_cast<LONG>(whole.size());
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(::InterlockedExchangeAdd(&gate.trace_bytes, size));
    if (void* const file = Opened()) {
        DWORD count = 0;
        ::WriteFile(file, whole.data(), static_cast<DWORD>(size), &count, &place);
    }
}

std::string JsonText(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
            quoted += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
            quoted += escape;
        } else {
            quoted += c;
        }
    }
    return quoted + "\"";
}

}  // namespace sim
