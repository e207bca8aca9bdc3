#include "simulator/guest/report.h"

#include <atomic>
#include <cstdio>
#include <string>
#include <windows.h>

namespace sim::guest {
namespace {

constexpr UINT kStoppedExitCode = 99;
std::atomic<std::uint64_t> instructions_run;

std::wstring Variable(const wchar_t* name) {
    wchar_t text[MAX_PATH] = L"";
    ::GetEnvironmentVariableW(name, text, MAX_PATH);
    return text;
}

// One write at the end of the file, so that lines of several programs stay whole.
void Report(const char* format, ...) {
    char line[256];
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    const std::wstring file = Variable(L"CEDEVICE") + L"\\guest.log";
    HANDLE handle =
        ::CreateFileW(file.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                      OPEN_ALWAYS, 0, nullptr);
    if (handle != INVALID_HANDLE_VALUE) {
        DWORD written = 0;
        ::WriteFile(handle, line, static_cast<DWORD>(length), &written, nullptr);
        ::CloseHandle(handle);
    }
}

}  // namespace

std::uint64_t InstructionCount() { return instructions_run; }
void AddInstructions(std::uint64_t count) { instructions_run += count; }

void ReportThread(Word stack_bytes, std::uint64_t instructions) {
    Report("%ls: stack %u, instructions %llu\n", Variable(L"CEPROGRAM").c_str(), stack_bytes,
           static_cast<unsigned long long>(instructions));
}

void Stop(const char* what, Word address, Word value) {
    Report("%ls: stopped: %s at %08x: %08x\n", Variable(L"CEPROGRAM").c_str(), what, address,
           value);
    ::TerminateProcess(::GetCurrentProcess(), kStoppedExitCode);
    for (;;) {
        ::ExitThread(kStoppedExitCode);
    }
}

}  // namespace sim::guest
