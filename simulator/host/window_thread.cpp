#include "simulator/host/window_thread.h"

#include <tlhelp32.h>
#include <windows.h>

namespace sim::host {

std::optional<unsigned> AnswerTime(void* window, unsigned limit_ms) {
    const ULONGLONG start = ::GetTickCount64();
    DWORD_PTR answer = 0;
    if (!::SendMessageTimeoutW(static_cast<HWND>(window), WM_NULL, 0, 0, SMTO_NORMAL, limit_ms,
                               &answer)) {
        return std::nullopt;
    }
    return static_cast<unsigned>(::GetTickCount64() - start);
}

HeldThread::HeldThread(void* window)
    : thread_(::OpenThread(THREAD_SUSPEND_RESUME, FALSE,
                           ::GetWindowThreadProcessId(static_cast<HWND>(window), nullptr))) {
    ::SuspendThread(thread_);
}

HeldThread::~HeldThread() {
    ::ResumeThread(thread_);
    ::CloseHandle(thread_);
}

HostUse UseOfProcess(unsigned pid) {
    HostUse use;
    DWORD handles = 0;
    HANDLE process = ::OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, pid);
    if (::GetProcessHandleCount(process, &handles)) {
        use.handles = handles;
    }
    ::CloseHandle(process);

    HANDLE snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = ::Thread32First(snapshot, &entry); more;
         more = ::Thread32Next(snapshot, &entry)) {
        use.threads += entry.th32OwnerProcessID == pid ? 1 : 0;
    }
    ::CloseHandle(snapshot);
    return use;
}

}  // namespace sim::host
