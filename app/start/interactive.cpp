#include "app/start/interactive.h"

#include "app/operations/messages.h"
#include "app/operations/operation_drivers.h"
#include "app/operations/operation_window.h"
#include "app/operations/storage_files.h"
#include "app/pages/main_dialog.h"
#include "app/start/main_window.h"
#include "platform/waiting.h"
#include "res/resource.h"
#include "storage/opened/storage_file.h"

namespace tolvenar {
namespace {

constexpr int kFailed = 1;
constexpr int kThreadEndRounds = 100;
constexpr DWORD kThreadEndRoundMs = 50;

bool MakeMainWindow(Application& app) {
    return RegisterMainWindowClass(app.instance) && RegisterOperationWindowClass(app.instance) &&
           CreateMainWindow(app);
}

// A storage that cannot be opened leaves the pages to offer another. False only when its journal
// cannot be read: the program does not start then.
bool LoadStorage(Application& app) {
    app.storageStatus = StorageStatus::kNone;
    if (!DeriveNames(app.storage.names)) {
        return true;
    }
    OpenStorageResult result;
    if (!OpenStorage(app.storage.names.sav, app.storage, result)) {
        // A damaged file is told when it is chosen; here the page that offers another is enough.
        if (result != OpenStorageResult::kHeaderUnreadable) {
            TellWhyNotOpened(result);
        }
        return true;
    }
    if (!LoadUnderPopup(app)) {
        return false;
    }
    app.storageStatus = StorageStatus::kOpen;
    return true;
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

void RunMessageLoop(const Application& app, MainDialog& dialog, HACCEL accelerators) {
    MSG message;
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (::TranslateAcceleratorW(app.main_dialog, accelerators, &message)) {
            continue;
        }
        if (dialog.TakesMessage(message)) {
            continue;
        }
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
}

}  // namespace

int RunInteractive(Application& app, bool with_main_window) {
    if (with_main_window) {
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
    MainDialog dialog(app);
    const bool created = dialog.Create();
    if (created) {
        ReadAllSettings(SlotsOf(app.settings), app.installationMissing);
        RunMessageLoop(app, dialog, accelerators);
    }
    dialog.Destroy();
    EndOperationThread(app, operation_thread.get());
    return created ? 0 : kFailed;
}

}  // namespace tolvenar
