#include "app/operations/confirmation.h"

#include "app/operations/messages.h"
#include "app/operations/requests.h"
#include "app/operations/window_messages.h"
#include "platform/dialog.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr UINT kAnswerBase = WM_APP + 120;
static_assert(kAnswerBase + static_cast<UINT>(Confirmation::kRestored) == WM_OPCONFIRMED_RESTORED &&
              kAnswerBase + static_cast<UINT>(Confirmation::kBackup) == WM_OPCONFIRMED_BACKUP &&
              kAnswerBase + static_cast<UINT>(Confirmation::kRestore) == WM_OPCONFIRMED_RESTORE);

// "application" and "applications": kept as they are, on purpose.
const wchar_t* TextOf(Confirmation kind) {
    switch (kind) {
        case Confirmation::kRestored:
            return L"Data successfully restored.\nPlease reboot your Windows CE to complete the "
                   L"Restoring.";
        case Confirmation::kBackup:
            return L"Please close all application but Tolvenar\nto continue the Backing up\n\nARE "
                   L"YOU SURE?";
        default:
            return L"Please close all applications but Tolvenar\nto continue the Restoring\n\nARE "
                   L"YOU SURE?";
    }
}

// A restore must find the list as it is now, and restore the state that the user chose.
void RefreshStates(const Application& app) {
    ::SendMessageW(app.main_dialog, WM_STATES_CHANGED, 1, 0);
}

bool Post(Application& app, Confirmation kind, bool go_on, LPARAM lparam) {
    return PostAnswer(app, kAnswerBase + static_cast<UINT>(kind), go_on, lparam);
}

class ReminderDialog final : private Dialog {
public:
    ReminderDialog(Application& app, Confirmation kind, LPARAM lparam)
        : app_(app), kind_(kind), lparam_(lparam) {}

    // False when the user went on and nobody was there to hear it.
    bool Run() {
        RunModal(app_.instance, IDD_REMINDER, app_.main_dialog);
        return posted_;
    }

private:
    INT_PTR OnInit() {
        if (kind_ == Confirmation::kRestored) {
            ::ShowWindow(Control(IDC_REMINDER_OFF), SW_HIDE);
        }
        ::SetDlgItemTextW(window(), IDC_REMINDER_TEXT, TextOf(kind_));
        // A restore overwrites the device: Enter must not start one by accident.
        const int first = kind_ == Confirmation::kRestore ? IDCANCEL : IDOK;
        // The dialog manager's way: a focus that is merely set leaves OK to be what Enter presses.
        ::SendMessageW(window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(first)), TRUE);
        ::ShowWindow(window(), SW_SHOW);
        ::UpdateWindow(window());
        return FALSE;
    }

    // The hidden box of kRestored is never checked, so that its OK sets the bit; on purpose.
    void KeepChoice() {
        const bool is_off =
            ::SendMessageW(Control(IDC_REMINDER_OFF), BM_GETCHECK, 0, 0) == BST_CHECKED;
        const auto bit = static_cast<std::uint32_t>(kind_);
        const std::uint32_t reminders = ReadReminders();
        WriteSetting(setting::kReminders, is_off ? reminders & ~bit : reminders | bit);
    }

    void OnOk() {
        RefreshStates(app_);
        KeepChoice();
        posted_ = Post(app_, kind_, true, lparam_);
        End(1);
    }

    void OnCancel() {
        Post(app_, kind_, false, lparam_);
        End(0);
    }

    INT_PTR OnCommand(WORD id) {
        switch (id) {
            case IDOK: OnOk(); return TRUE;
            case IDCANCEL: OnCancel(); return TRUE;
            default: return FALSE;
        }
    }

    INT_PTR Dispatch(UINT message, WPARAM wparam, LPARAM) override {
        switch (message) {
            case WM_INITDIALOG: return OnInit();
            case WM_COMMAND: return OnCommand(LOWORD(wparam));
            case WM_CLOSE: OnCancel(); return TRUE;
            default: return FALSE;
        }
    }

    Application& app_;
    Confirmation kind_;
    LPARAM lparam_;
    bool posted_ = true;
};

bool Ask(Application& app, Confirmation kind, LPARAM lparam) {
    if ((ReadReminders() & static_cast<std::uint32_t>(kind)) == 0) {
        RefreshStates(app);
        return Post(app, kind, true, lparam);
    }
    return ReminderDialog(app, kind, lparam).Run();
}

}  // namespace

void ConfirmThenRun(Application& app, Confirmation kind, LPARAM lparam) {
    if (!Ask(app, kind, lparam)) {
        ShowNotStarted(app.main_dialog);
    }
}

}  // namespace tolvenar
