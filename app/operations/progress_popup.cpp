#include "app/operations/progress_popup.h"

#include "app/operations/window_progress.h"
#include "platform/processes.h"
#include "platform/waiting.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr DWORD kLimitMs = 5000;
constexpr DWORD kPollMs = 50;

void ShowTotal(HWND window, bool is_shown) {
    for (const int id : {IDC_TOTAL_BAR, IDC_TOTAL_LABEL}) {
        ::ShowWindow(::GetDlgItem(window, id), is_shown ? SW_SHOW : SW_HIDE);
    }
}

}  // namespace

void ProgressPopup::Show(HWND owner, const wchar_t* title, int total_steps) {
    if (is_closing_) {
        WaitForClosing();
        if (thread_) {
            return;  // the old one is stuck; its closing still stands
        }
    }
    if (!thread_) {
        owner_ = owner;
        total_steps_ = total_steps;
        ::wcsncpy(title_, title, kTitleUnits - 1);
        thread_ = StartThread(Run, this);
        if (!thread_) {
            return;
        }
        WaitForWindow();
    }
    Publish(total_steps);
}

void ProgressPopup::Close() {
    windows_ = {};
    if (!thread_) {
        return;
    }
    is_closing_ = true;
    if (const HWND popup = window()) {
        ::PostMessageW(popup, WM_CLOSE, 0, 0);
    }
}

void ProgressPopup::CloseAndWait() {
    Close();
    WaitForClosing();
}

void ProgressPopup::WaitForClosing() {
    if (thread_ && WaitForThread(thread_.get(), kLimitMs)) {
        thread_.Reset();
        is_closing_ = false;
    }
}

void ProgressPopup::WaitForWindow() {
    // By the clock: a sent message ends a poll early.
    const DWORD start = ::GetTickCount();
    while (window() == nullptr && ::GetTickCount() - start < kLimitMs) {
        WaitServingSentMessages(nullptr, kPollMs);
    }
}

void ProgressPopup::Publish(int total_steps) {
    const HWND popup = window();
    if (popup == nullptr) {
        return;
    }
    windows_.step_text = ::GetDlgItem(popup, IDC_STEP_TEXT);
    windows_.step_bar = ::GetDlgItem(popup, IDC_STEP_BAR);
    windows_.total_bar = ::GetDlgItem(popup, IDC_TOTAL_BAR);
    ShowTotal(popup, total_steps != 0);
    if (total_steps == 0) {
        return;
    }
    ::SendMessageW(windows_.total_bar, PBM_SETRANGE, 0, MAKELPARAM(0, total_steps + 1));
    ::SendMessageW(windows_.total_bar, PBM_SETPOS, 0, 0);
    ::SendMessageW(windows_.total_bar, PBM_SETSTEP, 1, 0);
}

DWORD WINAPI ProgressPopup::Run(void* parameter) {
    auto* popup = static_cast<ProgressPopup*>(parameter);
    popup->RunModal(popup->instance_, IDD_PROGRESS, popup->owner_);
    return 0;
}

INT_PTR ProgressPopup::OnInit() {
    ::SetWindowTextW(window(), title_);
    ShowTotal(window(), total_steps_ != 0);  // before the user sees the popup
    ::ShowWindow(window(), SW_SHOW);
    ::UpdateWindow(window());
    // Whoever opened it has given up waiting and closed it meanwhile.
    if (is_closing_) {
        End(1);
    }
    return TRUE;
}

// Only Close ends it: the user's ways of closing a window do nothing while the operation runs.
INT_PTR ProgressPopup::OnClose() {
    if (is_closing_) {
        End(1);
    }
    return TRUE;
}

INT_PTR ProgressPopup::Dispatch(UINT message, WPARAM, LPARAM) {
    switch (message) {
        case WM_INITDIALOG: return OnInit();
        case WM_CLOSE: return OnClose();
        default: return FALSE;
    }
}

}  // namespace tolvenar
