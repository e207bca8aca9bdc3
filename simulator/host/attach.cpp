#include "simulator/host/attach.h"

#include <cstdint>
#include <stdexcept>
#include <windows.h>

#include "simulator/store/device.h"

namespace sim::host {
namespace {

template <typename Function>
Function Control(const char* name) {
    const HMODULE coredll = ::LoadLibraryW(L"coredll.dll");
    const FARPROC found = coredll != nullptr ? ::GetProcAddress(coredll, name) : nullptr;
    if (found == nullptr) {
        throw std::runtime_error(std::string("coredll.dll has no ") + name);
    }
    return reinterpret_cast<Function>(reinterpret_cast<void*>(found));
}

std::uint64_t Now() {
    FILETIME now{};
    ::GetSystemTimeAsFileTime(&now);
    return std::uint64_t{now.dwHighDateTime} << 32 | now.dwLowDateTime;
}

}  // namespace

void AttachProcess(const std::wstring& folder) {
    Control<void(WINAPI*)(const wchar_t*)>("SimAttachDevice")(folder.c_str());
    Device::Attach(folder);
}

int OpenHandlesOfCoredll() { return Control<int(WINAPI*)()>("SimOpenHandles")(); }

unsigned long StepsOfCoredll() { return Control<unsigned long(WINAPI*)()>("SimSteps")(); }

// The host gives an ended process's id to the next one at once, while the desktop of a device still
// stands for a second after its last program.
std::wstring UniqueName() {
    static const std::wstring start = std::to_wstring(Now());
    static volatile LONG count = 0;
    return start + L"-" + std::to_wstring(::GetCurrentProcessId()) + L"-" +
           std::to_wstring(::InterlockedIncrement(&count));
}

}  // namespace sim::host
