#include "simulator/host/window_thread.h"

#include <windows.h>

namespace sim::host {

std::optional<unsigned> AnswerTime(void* window, unsigned limit_ms, unsigned message,
                                   std::uintptr_t wparam, std::intptr_t lparam) {
    const ULONGLONG start = ::GetTickCount64();
    DWORD_PTR answer = 0;
    if (!::SendMessageTimeoutW(static_cast<HWND>(window), message, wparam, lparam, SMTO_NORMAL,
                               limit_ms, &answer)) {
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

unsigned HostHandles(unsigned pid) {
    DWORD handles = 0;
    HANDLE process = ::OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, pid);
    ::GetProcessHandleCount(process, &handles);
    ::CloseHandle(process);
    return handles;
}

}  // namespace sim::host
