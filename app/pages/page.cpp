#include "app/pages/page.h"

#include "app/operations/window_messages.h"

namespace tolvenar {

bool Page::Create(HWND main_dialog) {
    if (window_ != nullptr) {
        return true;
    }
    ::CreateDialogParamW(app_.instance, MAKEINTRESOURCEW(template_id_), main_dialog,
                         DialogProcedure, reinterpret_cast<LPARAM>(this));
    return window_ != nullptr;
}

void Page::Show(int index, const RECT& place) {
    ::SetWindowPos(window_, HWND_TOP, place.left, place.top, place.right - place.left,
                   place.bottom - place.top, SWP_NOACTIVATE);
    OnShow(index);
    OnLayout();
    ::ShowWindow(window_, SW_SHOW);
}

void Page::Hide() {
    ::ShowWindow(window_, SW_HIDE);
    OnHide();
}

INT_PTR Page::Answer(LRESULT result) {
    ::SetWindowLongW(window_, DWL_MSGRESULT, result);
    return TRUE;
}

// Tab in an edit control of several lines asks its own dialog for the next control, which knows
// this page only; the round goes on through the tabs.
INT_PTR Page::OnNextControl(WPARAM wparam, LPARAM lparam) {
    ::SendMessageW(::GetParent(window_), WM_NEXTDLGCTL, wparam, lparam);
    return TRUE;
}

// Enter in such a control presses this button, seen or not.
INT_PTR Page::OnDefaultButton() {
    const int id = DefaultButton();
    return Answer(id != 0 ? MAKELRESULT(id, DC_HASDEFID) : 0);
}

INT_PTR Page::Dispatch(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_INITDIALOG: OnInit(); return TRUE;
        case WM_COMMAND: return OnCommand(LOWORD(wparam), HIWORD(wparam)) ? TRUE : FALSE;
        case WM_NEXTDLGCTL: return OnNextControl(wparam, lparam);
        case DM_GETDEFID: return OnDefaultButton();
        // Escape in an edit control of several lines closes its dialog otherwise.
        case WM_CLOSE: ApplyNow(); return TRUE;
        case WM_NCDESTROY: window_ = nullptr; return FALSE;
        default: return OnMessage(message, wparam, lparam);
    }
}

INT_PTR CALLBACK Page::DialogProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        ::SetWindowLongW(window, DWL_USER, lparam);
        reinterpret_cast<Page*>(lparam)->window_ = window;
    }
    auto* page = reinterpret_cast<Page*>(::GetWindowLongW(window, DWL_USER));
    return page != nullptr ? page->Dispatch(message, wparam, lparam) : FALSE;
}

}  // namespace tolvenar
