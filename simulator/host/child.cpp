#include "simulator/host/child.h"

#include <stdexcept>
#include <windows.h>

#include "simulator/host/attach.h"

namespace sim::host {
namespace {

constexpr DWORD kPatienceMs = 20000;
constexpr wchar_t kRole[] = L"TOLVENAR_CHILD_ROLE";
constexpr wchar_t kArgument[] = L"TOLVENAR_CHILD_ARGUMENT";
constexpr wchar_t kEvents[] = L"TOLVENAR_CHILD_EVENTS";

std::wstring Variable(const wchar_t* name) {
    wchar_t text[512] = L"";
    const DWORD length = ::GetEnvironmentVariableW(name, text, 512);
    return length < 512 ? std::wstring(text, length) : std::wstring();
}

HANDLE Event(const std::wstring& name, const wchar_t* which) {
    return ::CreateEventW(nullptr, TRUE, FALSE, (name + which).c_str());
}

}  // namespace

Child::Child(const std::wstring& role, const std::wstring& argument) {
    const std::wstring events = L"child-" + UniqueName();
    ready_ = Event(events, L"-ready");
    go_ = Event(events, L"-go");
    ::SetEnvironmentVariableW(kRole, role.c_str());
    ::SetEnvironmentVariableW(kArgument, argument.c_str());
    ::SetEnvironmentVariableW(kEvents, events.c_str());
    wchar_t program[MAX_PATH] = L"";
    ::GetModuleFileNameW(nullptr, program, MAX_PATH);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    const bool running = ::CreateProcessW(program, nullptr, nullptr, nullptr, FALSE, 0, nullptr,
                                          nullptr, &startup, &started) != FALSE;
    ::SetEnvironmentVariableW(kRole, nullptr);
    if (!running) {
        throw std::runtime_error("the second process does not start");
    }
    ::CloseHandle(started.hThread);
    process_ = started.hProcess;
    pid_ = started.dwProcessId;
}

Child::~Child() {
    Kill();
    ::CloseHandle(process_);
    ::CloseHandle(ready_);
    ::CloseHandle(go_);
}

bool Child::WaitReady() {
    const HANDLE either[] = {ready_, process_};
    return ::WaitForMultipleObjects(2, either, FALSE, kPatienceMs) == WAIT_OBJECT_0;
}

int Child::Finish() {
    ::SetEvent(go_);
    if (::WaitForSingleObject(process_, kPatienceMs) != WAIT_OBJECT_0) {
        return -1;
    }
    DWORD code = 0;
    ::GetExitCodeProcess(process_, &code);
    return static_cast<int>(code);
}

void Child::Kill() {
    ::TerminateProcess(process_, 9);
    ::WaitForSingleObject(process_, kPatienceMs);
}

std::wstring ChildRole() { return Variable(kRole); }
std::wstring ChildArgument() { return Variable(kArgument); }

void TellReady() {
    HANDLE ready = Event(Variable(kEvents), L"-ready");
    ::SetEvent(ready);
    ::CloseHandle(ready);
}

void WaitForParent() {
    HANDLE go = Event(Variable(kEvents), L"-go");
    ::WaitForSingleObject(go, kPatienceMs);
    ::CloseHandle(go);
}

void EndChild(int code) { ::ExitProcess(static_cast<UINT>(code)); }

}  // namespace sim::host
