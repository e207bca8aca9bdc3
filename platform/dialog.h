// A dialog of a template whose messages are methods of an object.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

class Dialog {
public:
    Dialog() = default;
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;

    // Null before the dialog's WM_INITDIALOG and from its WM_DESTROY on. Other threads may ask.
    HWND window() const { return window_; }

protected:
    ~Dialog() = default;

    // Answers a message as a dialog procedure does.
    virtual INT_PTR Dispatch(UINT message, WPARAM wparam, LPARAM lparam) = 0;

    // Shows the dialog until End; what End was given, or what the platform answers to a dialog that
    // cannot be made.
    INT_PTR RunModal(HINSTANCE instance, int template_id, HWND owner);
    void End(INT_PTR result) { ::EndDialog(window_, result); }

    // False when the dialog cannot be made.
    bool CreateModeless(HINSTANCE instance, int template_id, HWND parent);
    // Destroys the window, if there is one.
    void Destroy();

    // Answers the message that is handled; TRUE for the dialog manager.
    INT_PTR Answer(LRESULT result);
    HWND Control(int id) const { return ::GetDlgItem(window_, id); }

private:
    static INT_PTR CALLBACK Procedure(HWND, UINT, WPARAM, LPARAM);

    HWND volatile window_ = nullptr;
};

}  // namespace tolvenar
