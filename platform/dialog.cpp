#include "platform/dialog.h"

#include "platform/window_object.h"

namespace tolvenar {

INT_PTR Dialog::RunModal(HINSTANCE instance, int template_id, HWND owner) {
    return ::DialogBoxParamW(instance, MAKEINTRESOURCEW(template_id), owner, Procedure,
                             reinterpret_cast<LPARAM>(this));
}

bool Dialog::CreateModeless(HINSTANCE instance, int template_id, HWND parent) {
    ::CreateDialogParamW(instance, MAKEINTRESOURCEW(template_id), parent, Procedure,
                         reinterpret_cast<LPARAM>(this));
    return window_ != nullptr;
}

void Dialog::Destroy() {
    if (window_ != nullptr) {
        ::DestroyWindow(window_);
    }
}

INT_PTR Dialog::Answer(LRESULT result) {
    ::SetWindowLongW(window_, DWL_MSGRESULT, result);
    return TRUE;
}

// Messages come before WM_INITDIALOG and, from the children, behind WM_DESTROY: the object gets
// neither.
INT_PTR CALLBACK Dialog::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    auto* dialog = ObjectOf<Dialog>(window, DWL_USER);
    if (message == WM_INITDIALOG) {
        // Once is enough: what comes later is of another program.
        if (dialog != nullptr) {
            return FALSE;
        }
        dialog = reinterpret_cast<Dialog*>(lparam);
        KeepObject(window, DWL_USER, dialog);
        dialog->window_ = window;
    }
    if (dialog == nullptr) {
        return FALSE;
    }
    const INT_PTR answer = dialog->Dispatch(message, wparam, lparam);
    if (message == WM_DESTROY) {
        KeepObject(window, DWL_USER, nullptr);
        dialog->window_ = nullptr;
    }
    return answer;
}

}  // namespace tolvenar
