#include "app/start/interactive.h"

#include "app/operations/messages.h"
#include "app/operations/operation_window.h"
#include "app/operations/storage_search.h"
#include "app/pages/main_dialog.h"
#include "app/start/main_window.h"
#include "app/start/running_copy.h"
#include "platform/waiting.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr int kFailed = 1;
constexpr UINT_PTR kFirstCopyTimer = 1;
constexpr UINT kFirstCopyMs = 200;
constexpr int kThreadEndRounds = 100;
constexpr DWORD kThreadEndRoundMs = 50;

bool MakeMainWindow(Application& app) {
    return RegisterMainWindowClass(app.instance) && RegisterOperationWindowClass(app.instance) &&
           CreateMainWindow(app);
}

// A storage that cannot be opened leaves the pages to offer another. False only when its journal
// cannot be read: the program does not start then.
bool LoadStorage(Application& app) {
    if (LoadChosenStorage(app) != StorageLoad::kListUnreadable) {
        return true;
    }
    TellOfUnreadableJournal(app.instance, app.storage.names);
    return false;
}

// The private heap is destroyed next; no thread may still use it. A thread that has just been
// started has no window yet: the request is repeated.
void EndOperationThread(const Application& app, HANDLE thread) {
    for (int round = 0; round < kThreadEndRounds; ++round) {
        if (app.operation_window != nullptr) {
            ::PostMessageW(app.operation_window, WM_CLOSE, 0, 0);
        }
        if (WaitForThread(thread, kThreadEndRoundMs)) {
            return;
        }
    }
}

// The second copy of a double tap ends, too, when the first has come up: false.
bool RunMessageLoop(const Application& app, MainDialog& dialog, HACCEL accelerators,
                    bool is_second) {
    if (is_second) {
        ::SetTimer(app.main_dialog, kFirstCopyTimer, kFirstCopyMs, nullptr);
    }
    MSG message;
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (is_second && message.message == WM_TIMER && message.wParam == kFirstCopyTimer &&
            !app.gate.IsOccupied() && RunningCopyIsUp()) {
            return false;
        }
        if (::TranslateAcceleratorW(app.main_dialog, accelerators, &message)) {
            continue;
        }
        if (dialog.TakesMessage(message)) {
            continue;
        }
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
    return true;
}

int RunDialog(Application& app, HACCEL accelerators, Beside beside) {
    MainDialog dialog(app);
    if (!dialog.Create()) {
        return kFailed;
    }
    ReadAllSettings(SlotsOf(app.settings), app.installationMissing);
    if (RunMessageLoop(app, dialog, accelerators, beside == Beside::kStartingCopy)) {
        dialog.Destroy();
        return 0;
    }
    // Only without this one is the first copy's dialog the one of its name.
    dialog.Destroy();
    BringRunningCopyForward();
    return kFailed;
}

}  // namespace

int RunInteractive(Application& app, Beside beside) {
    if (beside == Beside::kNothing) {
        app.installationMissing = InstallationIsMissing();
        if (!MakeMainWindow(app)) {
            return kFailed;
        }
    }
    const HACCEL accelerators =
        ::LoadAcceleratorsW(app.instance, MAKEINTRESOURCEW(IDR_ACCELERATORS));
    if (app.main_window != nullptr) {
        ::ShowWindow(app.main_window, SW_HIDE);
        ::UpdateWindow(app.main_window);
    }
    if (!LoadStorage(app)) {
        return kFailed;
    }
    const UniqueHandle operation_thread = StartOperationThread(app);
    if (!operation_thread) {
        return kFailed;
    }
    const int code = RunDialog(app, accelerators, beside);
    EndOperationThread(app, operation_thread.get());
    return code;
}

}  // namespace tolvenar
