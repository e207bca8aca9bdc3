#include "autobackup/autobackup_prompt.h"

#include "platform/dialog.h"
#include "platform/keep_awake.h"
#include "platform/layout.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr UINT kCountdownTimer = 41016;
constexpr UINT kTickMs = 1000;
constexpr int kSeconds = 20;

// On a screen that is too small for the template.
constexpr ControlPlace kPlaces[] = {
    {IDC_PROMPT_MESSAGE, {4, 6, 108, 24}, kWidens},
    {IDC_PROMPT_REASON, {4, 38, 108, 10}, kWidens},
    {IDC_PROMPT_COUNTDOWN, {4, 55, 108, 11}, kWidens},
    {IDOK, {4, 74, 50, 14}, {0, 0, 50, 0}},
    {IDCANCEL, {60, 74, 50, 14}, {50, 0, 100, 0}},
};
constexpr Layout kSmallScreens[] = {LayoutOf(116, 95, kPlaces)};

// One prompt at a time: what is left of its countdown.
class AutoBackupPrompt final : private Dialog {
public:
    explicit AutoBackupPrompt(LaunchCheckResult reason) : reason_(reason) {}

    PromptAnswer Run(HINSTANCE instance) {
        RunModal(instance, IDD_AUTOBACKUP_PROMPT, nullptr);
        return answer_;
    }

private:
    INT_PTR OnInit() {
        FitToWorkArea(window(), kSmallScreens);
        ::SetWindowTextW(window(), L"Autobackup");
        timer_ = ::SetTimer(window(), kCountdownTimer, kTickMs, nullptr);
        // Without a timer nobody would ever let the backup go on.
        if (timer_ == 0) {
            ::PostMessageW(window(), WM_CLOSE, 0, 0);
        }
        ::SetDlgItemTextW(window(), IDC_PROMPT_MESSAGE,
                          L"Tolvenar agent is about to start automatic backup.");
        ShowReason();
        count_ = kSeconds;
        ShowCount();
        ::SetWindowPos(window(), HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
        return TRUE;
    }

    INT_PTR OnTimer(WPARAM timer_id) {
        if (timer_id != kCountdownTimer) {
            return TRUE;
        }
        StayAwake();
        if (--count_ <= 0) {
            Answer(PromptAnswer::kGoOn);
        } else {
            ShowCount();
        }
        return TRUE;
    }

    INT_PTR OnCommand(WPARAM wparam) {
        if (HIWORD(wparam) != BN_CLICKED) {
            return FALSE;
        }
        if (LOWORD(wparam) == IDOK) {
            Answer(PromptAnswer::kGoOn);
        }
        if (LOWORD(wparam) == IDCANCEL) {
            Answer(PromptAnswer::kCancelled);
        }
        return TRUE;
    }

    // Closing is no refusal: an unattended device still gets its backup.
    INT_PTR OnClose() {
        Answer(PromptAnswer::kGoOn);
        return TRUE;
    }

    void ShowReason() {
        wchar_t text[64];
        ::wsprintfW(text, L"Reason: %s",
                    reason_ == LaunchCheckResult::kBattery ? L"Battery Low" : L"Schedule");
        ::SetDlgItemTextW(window(), IDC_PROMPT_REASON, text);
    }

    void ShowCount() {
        wchar_t text[64];
        ::wsprintfW(text, L"Continue in %02i seconds.", count_);
        ::SetDlgItemTextW(window(), IDC_PROMPT_COUNTDOWN, text);
    }

    void Answer(PromptAnswer answer) {
        if (timer_ != 0) {
            ::KillTimer(window(), timer_);
        }
        timer_ = 0;
        answer_ = answer;
        End(static_cast<INT_PTR>(answer));
    }

    INT_PTR Dispatch(UINT message, WPARAM wparam, LPARAM) override {
        switch (message) {
            case WM_INITDIALOG: return OnInit();
            case WM_TIMER: return OnTimer(wparam);
            case WM_COMMAND: return OnCommand(wparam);
            case WM_CLOSE: return OnClose();
            default: return FALSE;
        }
    }

    LaunchCheckResult reason_;
    PromptAnswer answer_ = PromptAnswer::kNotShown;
    UINT_PTR timer_ = 0;
    int count_ = 0;
};

}  // namespace

PromptAnswer ShowAutoBackupPrompt(HINSTANCE instance, LaunchCheckResult reason) {
    return AutoBackupPrompt(reason).Run(instance);
}

}  // namespace tolvenar
