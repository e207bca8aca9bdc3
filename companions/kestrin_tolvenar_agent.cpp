// The agent: what the platform's notifications start. It hands a reason for a launch to Tolvenar
// unchanged and stays resident; an agent that is started beside a resident one only hands it on.
#include "platform/win32.h"

#include "companions/agent.h"
#include "platform/processes.h"
#include "platform/registry_key.h"

namespace {

constexpr wchar_t kSettingsKey[] = L"Software\\Kestrin2\\Tolvenar";
constexpr wchar_t kProgram[] = L"\\Tolvenar.exe";

// How the reasons for a launch begin. Any other argument is none: some systems give a program that
// is started without arguments its own name.
constexpr const wchar_t* kReasons[] = {L"TolvenarRun", L"AutoBackup: ", L"AutoRestore: "};

bool IsReason(const wchar_t* argument) {
    for (const wchar_t* reason : kReasons) {
        if (::wcsncmp(argument, reason, ::wcslen(reason)) == 0) {
            return true;
        }
    }
    return false;
}

// Fills `path` with InstDir's text; false when the installation left none or it does not fit.
bool ReadInstallFolder(wchar_t (&path)[MAX_PATH]) {
    const tolvenar::UniqueHkey key = tolvenar::OpenKey(HKEY_CURRENT_USER, kSettingsKey);
    if (!key) {
        return false;
    }
    DWORD type = 0;
    DWORD size_bytes = sizeof path - sizeof kProgram;
    const LONG result = ::RegQueryValueExW(key.get(), L"InstDir", nullptr, &type,
                                           reinterpret_cast<BYTE*>(path), &size_bytes);
    // The size of a text that is too long is its own, not what came.
    if (result != ERROR_SUCCESS || type != REG_SZ) {
        return false;
    }
    path[size_bytes / sizeof path[0]] = L'\0';
    return true;
}

void HandOn(const wchar_t* argument) {
    wchar_t program[MAX_PATH] = L"";
    if (!ReadInstallFolder(program)) {
        return;
    }
    ::wcscat(program, kProgram);
    tolvenar::StartProgram(program, argument);
}

LRESULT CALLBACK AgentProc(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_DESTROY) {
        ::PostQuitMessage(0);
        return 0;
    }
    return ::DefWindowProcW(hwnd, message, wparam, lparam);
}

int StayResident(HINSTANCE instance) {
    WNDCLASSW window_class{};
    window_class.lpfnWndProc = AgentProc;
    window_class.hInstance = instance;
    window_class.lpszClassName = kAgentClass;
    if (::RegisterClassW(&window_class) == 0 ||
        ::CreateWindowExW(0, kAgentClass, kAgentClass, 0, 0, 0, 0, 0, nullptr, nullptr, instance,
                          nullptr) == nullptr) {
        return 1;
    }
    MSG message;
    while (::GetMessageW(&message, nullptr, 0, 0)) {
        ::DispatchMessageW(&message);
    }
    return 0;
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPWSTR argument, int) {
    if (argument != nullptr && IsReason(argument)) {
        HandOn(argument);
    }
    // Never released: it becomes free when this process is gone, and CloseOther.exe waits for that.
    const HANDLE mutex = tolvenar::NamedMutex(kAgentMutex).Release();
    if (mutex == nullptr || ::WaitForSingleObject(mutex, 0) == WAIT_TIMEOUT) {
        return 0;
    }
    return StayResident(instance);
}
