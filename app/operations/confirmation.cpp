#include "app/operations/confirmation.h"

#include "app/operations/messages.h"
#include "app/operations/requests.h"
#include "app/operations/window_messages.h"
#include "platform/dialog.h"
#include "platform/layout.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

// The bits of the setting Reminders.
enum class Reminder : std::uint32_t {
    kRestored = 2,
    kBackup = 4,
    kRestore = 8,
};

// "application" and "applications" are the system's own (docs/oddities.md, 20).
const wchar_t* TextOf(Reminder reminder) {
    switch (reminder) {
        case Reminder::kRestored:
            return L"Data successfully restored.\nPlease reboot your Windows CE to complete the "
                   L"Restoring.";
        case Reminder::kBackup:
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

// What the user is asked about: a request or, with none, whether the program is to end.
class Question {
public:
    Question(Application& app, const OperationRequest* request, const wchar_t* effect)
        : app_(app), request_(request), effect_(effect) {}

    Reminder reminder() const {
        if (request_ == nullptr) {
            return Reminder::kRestored;
        }
        return request_->kind == OperationKind::kBackup ? Reminder::kBackup : Reminder::kRestore;
    }
    const wchar_t* effect() const { return effect_; }
    // False when nobody is there to hear it.
    bool GoOn() const {
        return request_ != nullptr ? PostRequest(app_, *request_) : PostRestoredAnswer(app_, true);
    }
    void Refuse() const {
        if (request_ != nullptr) {
            PostRefusal(app_, *request_);
        } else {
            PostRestoredAnswer(app_, false);
        }
    }

private:
    Application& app_;
    const OperationRequest* request_;
    const wchar_t* effect_;
};

constexpr ControlPlace kHigh[] = {
    {IDC_REMINDER_TEXT, {4, 4, 125, 56}, kWidens},
    {IDC_REMINDER_EFFECT, {4, 62, 125, 24}, kWidens},
    {IDC_REMINDER_OFF, {4, 90, 125, 16}, kWidens, Showing::kByPage},
    {IDOK, {4, 110, 60, 18}, {0, 0, 50, 0}},
    {IDCANCEL, {69, 110, 60, 18}, {50, 0, 100, 0}},
};
constexpr ControlPlace kLow[] = {
    {IDC_REMINDER_TEXT, {4, 4, 171, 42}, kWidens},
    {IDC_REMINDER_EFFECT, {4, 48, 171, 16}, kWidens},
    {IDC_REMINDER_OFF, {4, 67, 171, 15}, kWidens, Showing::kByPage},
    {IDOK, {4, 85, 83, 18}, {0, 0, 50, 0}},
    {IDCANCEL, {91, 85, 84, 18}, {50, 0, 100, 0}},
};
constexpr Layout kSmallScreens[] = {LayoutOf(133, 130, kHigh), LayoutOf(179, 105, kLow)};

class ReminderDialog final : private Dialog {
public:
    ReminderDialog(const Application& app, const Question& question)
        : app_(app), question_(question) {}

    // False when the user went on and nobody was there to hear it.
    bool Run() {
        RunModal(app_.instance, IDD_REMINDER, app_.main_dialog);
        return is_heard_;
    }

private:
    INT_PTR OnInit() {
        FitToWorkArea(window(), kSmallScreens);
        if (question_.reminder() == Reminder::kRestored) {
            ::ShowWindow(Control(IDC_REMINDER_OFF), SW_HIDE);
        }
        ::SetDlgItemTextW(window(), IDC_REMINDER_TEXT, TextOf(question_.reminder()));
        ::SetDlgItemTextW(window(), IDC_REMINDER_EFFECT, question_.effect());
        // A restore overwrites the device: Enter must not start one by accident.
        const int first = question_.reminder() == Reminder::kRestore ? IDCANCEL : IDOK;
        // The dialog manager's way: a focus that is merely set leaves OK to be what Enter presses.
        ::SendMessageW(window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Control(first)), TRUE);
        ::ShowWindow(window(), SW_SHOW);
        ::UpdateWindow(window());
        return FALSE;
    }

    // The hidden box of kRestored is never checked: its OK sets the bit (docs/oddities.md, 21).
    void KeepChoice() {
        const bool is_off =
            ::SendMessageW(Control(IDC_REMINDER_OFF), BM_GETCHECK, 0, 0) == BST_CHECKED;
        const auto bit = static_cast<std::uint32_t>(question_.reminder());
        const std::uint32_t reminders = ReadReminders();
        WriteSetting(setting::kReminders, is_off ? reminders & ~bit : reminders | bit);
    }

    void OnOk() {
        RefreshStates(app_);
        KeepChoice();
        is_heard_ = question_.GoOn();
        End(1);
    }

    void OnCancel() {
        question_.Refuse();
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

    const Application& app_;
    const Question& question_;
    bool is_heard_ = true;
};

void Ask(Application& app, const OperationRequest* request, const wchar_t* effect) {
    const Question question(app, request, effect);
    bool is_heard = true;
    if ((ReadReminders() & static_cast<std::uint32_t>(question.reminder())) == 0) {
        RefreshStates(app);
        is_heard = question.GoOn();
    } else {
        is_heard = ReminderDialog(app, question).Run();
    }
    if (!is_heard) {
        ShowNotStarted(app.main_dialog);
    }
}

}  // namespace

void ConfirmThenRun(Application& app, const OperationRequest& request, const wchar_t* effect) {
    Ask(app, &request, effect);
}

void ConfirmThenEnd(Application& app) { Ask(app, nullptr, L""); }

}  // namespace tolvenar
