#include "autobackup/autobackup_prompt.h"

#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr UINT kCountdownTimer = 41016;
constexpr UINT kTickMs = 1000;
constexpr int kSeconds = 20;
constexpr INT_PTR kGoOn = 1;
constexpr INT_PTR kCancelled = 2;

// One prompt at a time: what is left of its countdown.
class AutoBackupPrompt {
public:
    explicit AutoBackupPrompt(LaunchCheckResult reason) : reason_(reason) {}

    INT_PTR OnInit(HWND dialog) {
        ::SetWindowTextW(dialog, L"Autobackup");
        timer_ = ::SetTimer(dialog, kCountdownTimer, kTickMs, nullptr);
        // Without a timer nobody would ever let the backup go on.
        if (timer_ == 0) {
            ::PostMessageW(dialog, WM_CLOSE, 0, 0);
        }
        ::SetDlgItemTextW(dialog, IDC_PROMPT_MESSAGE,
                          L"Tolvenar agent is about to start automatic backup.");
        ShowReason(dialog);
        count_ = kSeconds;
        ShowCount(dialog);
        ::SetWindowPos(dialog, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
        return TRUE;
    }

    INT_PTR OnTimer(HWND dialog, WPARAM timer_id) {
        if (timer_id != kCountdownTimer) {
            return TRUE;
        }
        if (--count_ <= 0) {
            End(dialog, kGoOn);
        } else {
            ShowCount(dialog);
        }
        return TRUE;
    }

    INT_PTR OnCommand(HWND dialog, WPARAM wparam) {
        if (HIWORD(wparam) != BN_CLICKED) {
            return FALSE;
        }
        if (LOWORD(wparam) == IDOK) {
            End(dialog, kGoOn);
        }
        if (LOWORD(wparam) == IDCANCEL) {
            End(dialog, kCancelled);
        }
        return TRUE;
    }

    // Closing is no refusal: an unattended device still gets its backup.
    INT_PTR OnClose(HWND dialog) {
        End(dialog, kGoOn);
        return TRUE;
    }

private:
    void ShowReason(HWND dialog) {
        wchar_t text[64];
        ::wsprintfW(text, L"Reason: %s",
                    reason_ == LaunchCheckResult::kBattery ? L"Battery Low" : L"Schedule");
        ::SetDlgItemTextW(dialog, IDC_PROMPT_REASON, text);
    }

    void ShowCount(HWND dialog) {
        wchar_t text[64];
        ::wsprintfW(text, L"Continue in %02i seconds.", count_);
        ::SetDlgItemTextW(dialog, IDC_PROMPT_COUNTDOWN, text);
    }

    void End(HWND dialog, INT_PTR result) {
        if (timer_ != 0) {
            ::KillTimer(dialog, timer_);
        }
        timer_ = 0;
        ::EndDialog(dialog, result);
    }

    LaunchCheckResult reason_;
    UINT_PTR timer_ = 0;
    int count_ = 0;
};

INT_PTR CALLBACK AutoBackupPromptProc(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        ::SetWindowLongW(dialog, DWL_USER, lparam);
    }
    auto* prompt = reinterpret_cast<AutoBackupPrompt*>(::GetWindowLongW(dialog, DWL_USER));
    if (prompt == nullptr) {
        return FALSE;
    }
    switch (message) {
        case WM_INITDIALOG: return prompt->OnInit(dialog);
        case WM_TIMER: return prompt->OnTimer(dialog, wparam);
        case WM_COMMAND: return prompt->OnCommand(dialog, wparam);
        case WM_CLOSE: return prompt->OnClose(dialog);
        default: return FALSE;
    }
}

}  // namespace

INT_PTR ShowAutoBackupPrompt(HINSTANCE instance, LaunchCheckResult reason) {
    AutoBackupPrompt prompt(reason);
    return ::DialogBoxParamW(instance, MAKEINTRESOURCEW(IDD_AUTOBACKUP_PROMPT), nullptr,
                             AutoBackupPromptProc, reinterpret_cast<LPARAM>(&prompt));
}

}  // namespace tolvenar
