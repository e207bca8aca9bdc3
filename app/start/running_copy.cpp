#include "app/start/running_copy.h"

#include "app/operations/application.h"
#include "app/operations/window_messages.h"
#include "app/rules/launch_reason.h"

namespace tolvenar {
namespace {

constexpr int kTries = 10;
constexpr DWORD kTryMs = 200;

// With the lowest bit set a handle stands for the window and those that it owns.
HWND WithItsBoxes(HWND window) {
    return reinterpret_cast<HWND>(reinterpret_cast<ULONG_PTR>(window) | 1);
}

Arbitration BringForward() {
    BringRunningCopyForward();
    return Arbitration::kHandOver;
}

}  // namespace

bool RunningCopyIsUp() { return ::FindWindowW(kOperationWindowClass, nullptr) != nullptr; }

void BringRunningCopyForward() {
    const HWND dialog = ::FindWindowW(kDialogClass, kProgramName);
    ::SetForegroundWindow(dialog);
    // Not every system brings another program's window forward at the first asking, and none the
    // box above a disabled one.
    if (dialog != nullptr && (!::IsWindowEnabled(dialog) || ::GetForegroundWindow() != dialog)) {
        ::SetForegroundWindow(WithItsBoxes(dialog));
    }
}

Arbitration ArbitrateWithRunningCopy(const wchar_t* launch_reason) {
    const HWND operations = ::FindWindowW(kOperationWindowClass, nullptr);
    if (operations == nullptr) {
        return Arbitration::kGoOn;
    }
    // A restore never takes over: whoever works with the other copy would not expect it.
    if (!IsBackupReason(launch_reason)) {
        return BringForward();
    }
    if (::SendMessageW(operations, WM_QUERYBUSY, 0, 0) != 0) {
        return BringForward();
    }
    // Without a window the message would go to this thread's own queue.
    if (const HWND main_window = ::FindWindowW(kMainWindowClass, nullptr)) {
        ::PostMessageW(main_window, WM_CLOSE, 0, 0);
    }
    return Arbitration::kTakeOver;
}

bool WaitForOldCopy() {
    for (int i = 0; i < kTries; ++i) {
        if (::FindWindowW(kMainWindowClass, nullptr) == nullptr) {
            return true;
        }
        ::Sleep(kTryMs);
    }
    return false;
}

}  // namespace tolvenar
