// Windows CE's view of processes: programs are named by device paths, their command line leaves the
// program's name out, and most of what the desktop's CreateProcess takes is not supported.
#include <windows.h>

#include "simulator/exports/gated.h"
#include "simulator/processes/process_handles.h"
#include "simulator/programs/programs.h"

namespace {

constexpr DWORD kSupportedFlags = CREATE_SUSPENDED | CREATE_NEW_CONSOLE;

BOOL FailWith(DWORD error) {
    sim::SetHostError(error);
    return FALSE;
}

// What a program gets that is started without arguments.
LPCWSTR NoArguments(LPCWSTR name) {
    return Device::Current().Setting("process.no.arguments", "empty") == "empty" ? L"" : name;
}

BOOL StartProgram(LPCWSTR name, LPCWSTR arguments, DWORD flags, LPPROCESS_INFORMATION info) {
    const sim::processes::Started started = sim::processes::Start(
        Device::Current(), name, arguments != nullptr ? arguments : NoArguments(name),
        (flags & CREATE_SUSPENDED) != 0);
    if (started.error != 0) {
        return FailWith(started.error);
    }
    if (info == nullptr) {
        sim::processes::CloseStarted(started);
        return TRUE;
    }
    sim::AddToGauge(sim::Gauge::kHandles, 2);
    info->hProcess = started.process;
    info->hThread = started.thread;
    info->dwProcessId = started.pid;
    info->dwThreadId = started.thread_id;
    return TRUE;
}

// Some systems do nothing when a process ends itself and say that it was done.
BOOL EndItself(UINT exit_code) {
    if (Device::Current().Setting("terminate.self", "ends") == "ends") {
        sim::EndThisProcess(exit_code);
    }
    return TRUE;
}

// Whether a new mutex clears the last error is not the same on every system.
HANDLE CreateMutexOn(Device& device, BOOL owned, LPCWSTR name) {
    LastError last_error;
    HANDLE mutex = sim::processes::CreateNamedMutex(owned != 0, name);
    const DWORD error = GetLastError();
    const bool is_new = mutex != nullptr && error != ERROR_ALREADY_EXISTS;
    if (!is_new || device.Setting("mutex.last.error", "cleared") == "cleared") {
        last_error.Set(error);
    }
    return mutex;
}

// An object that processes share by its name; the device knows none with security attributes.
template <typename Create>
HANDLE CreateNamed(Call call, LPSECURITY_ATTRIBUTES security, LPCWSTR name, Create&& create) {
    return Gated(
        call, HANDLE{},
        [&]() -> HANDLE {
            if (security != nullptr) {
                FailWith(ERROR_INVALID_PARAMETER);
                return nullptr;
            }
            return create();
        },
        name);
}

}  // namespace

BOOL WINAPI CreateProcessW(LPCWSTR name, LPWSTR arguments, LPSECURITY_ATTRIBUTES process_security,
                           LPSECURITY_ATTRIBUTES thread_security, BOOL inherit, DWORD flags,
                           LPVOID environment, LPCWSTR folder, LPSTARTUPINFOW startup,
                           LPPROCESS_INFORMATION info) {
    return Gated(
        Call::CreateProcessW, FALSE,
        [&] {
            if (name == nullptr || process_security != nullptr || thread_security != nullptr ||
                inherit || environment != nullptr || folder != nullptr || startup != nullptr ||
                (flags & ~kSupportedFlags) != 0) {
                return FailWith(ERROR_INVALID_PARAMETER);
            }
            return StartProgram(name, arguments, flags, info);
        },
        name, arguments);
}

BOOL WINAPI TerminateProcess(HANDLE process, UINT exit_code) {
    return Gated(
        Call::TerminateProcess, FALSE,
        [&]() -> BOOL {
            if (process == GetCurrentProcess()) {
                return EndItself(exit_code);
            }
            return sim::processes::Terminate(process, exit_code);
        },
        exit_code);
}

BOOL WINAPI GetExitCodeProcess(HANDLE process, LPDWORD exit_code) {
    return Gated(Call::GetExitCodeProcess, FALSE, [&]() -> BOOL {
        if (process == GetCurrentProcess()) {
            *exit_code = STILL_ACTIVE;
            return TRUE;
        }
        return sim::processes::ExitCode(process, exit_code);
    });
}

LPWSTR WINAPI GetCommandLineW() {
    return Gated(Call::GetCommandLineW, static_cast<LPWSTR>(nullptr),
                 [] { return const_cast<LPWSTR>(sim::processes::CommandLine()); });
}

HANDLE WINAPI CreateMutexW(LPSECURITY_ATTRIBUTES security, BOOL owned, LPCWSTR name) {
    return CreateNamed(Call::CreateMutexW, security, name,
                       [&] { return CreateMutexOn(Device::Current(), owned, name); });
}

HANDLE WINAPI CreateEventW(LPSECURITY_ATTRIBUTES security, BOOL manual, BOOL signalled,
                           LPCWSTR name) {
    return CreateNamed(Call::CreateEventW, security, name, [&] {
        return sim::processes::CreateNamedEvent(manual != 0, signalled != 0, name);
    });
}
