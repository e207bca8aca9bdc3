#include "simulator/processes/process_handles.h"

#include <windows.h>

#include "simulator/store/device_name.h"

namespace sim::processes {
namespace {

std::wstring NameOnDevice(const wchar_t* name) {
    return name != nullptr ? ObjectName(Device::Current(), name) : std::wstring();
}

}  // namespace

void CloseStarted(const Started& started) {
    ::CloseHandle(started.thread);
    ::CloseHandle(started.process);
}

bool Terminate(void* process, unsigned exit_code) {
    return ::TerminateProcess(process, exit_code) != 0;
}

bool ExitCode(void* process, unsigned long* exit_code) {
    return ::GetExitCodeProcess(process, exit_code) != 0;
}

void* CreateNamedMutex(bool owned, const wchar_t* name) {
    const std::wstring full = NameOnDevice(name);
    return ::CreateMutexW(nullptr, owned, name != nullptr ? full.c_str() : nullptr);
}

void* CreateNamedEvent(bool manual, bool signalled, const wchar_t* name) {
    const std::wstring full = NameOnDevice(name);
    return ::CreateEventW(nullptr, manual, signalled, name != nullptr ? full.c_str() : nullptr);
}

}  // namespace sim::processes
