#include "app/pages/description_dialog.h"

#include "platform/text.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

// Behind any text: the caret goes to the end.
constexpr WPARAM kEndOfText = 1000;
// The last unit of the description's place in the header is its terminator.
constexpr int kDescriptionLimit = kMaxDescriptionUnits - 1;

}  // namespace

bool DescriptionDialog::AskDescription(const char16_t* proposed,
                                       char16_t (&answer)[kMaxDescriptionUnits],
                                       std::size_t& units) {
    proposed_ = proposed;
    answer_ = answer;
    units_ = 0;
    is_confirmed_ = false;
    ::DialogBoxParamW(app_.instance, MAKEINTRESOURCEW(IDD_DESCRIPTION), app_.main_dialog,
                      DialogProcedure, reinterpret_cast<LPARAM>(this));
    units = units_;
    return is_confirmed_;
}

INT_PTR DescriptionDialog::OnInit(HWND window) {
    const HWND edit = ::GetDlgItem(window, IDC_DESCRIPTION_TEXT);
    ::SendMessageW(edit, EM_LIMITTEXT, kDescriptionLimit, 0);
    ::SetWindowTextW(edit, Wide(proposed_));
    ::SendMessageW(edit, EM_SETSEL, kEndOfText, static_cast<LPARAM>(kEndOfText));
    ::SendMessageW(edit, EM_SCROLLCARET, 0, 0);
    ::SetFocus(edit);
    ::ShowWindow(window, SW_SHOW);
    return FALSE;
}

INT_PTR DescriptionDialog::OnCommand(HWND window, int id) {
    if (id != IDOK && id != IDCANCEL) {
        return FALSE;
    }
    if (id == IDOK) {
        units_ = ::GetDlgItemTextW(window, IDC_DESCRIPTION_TEXT, Wide(answer_),
                                   static_cast<int>(kMaxDescriptionUnits));
        is_confirmed_ = true;
    }
    ::EndDialog(window, id);
    return TRUE;
}

INT_PTR CALLBACK DescriptionDialog::DialogProcedure(HWND window, UINT message, WPARAM wparam,
                                                    LPARAM lparam) {
    if (message == WM_INITDIALOG) {
        ::SetWindowLongW(window, DWL_USER, lparam);
    }
    auto* dialog = reinterpret_cast<DescriptionDialog*>(::GetWindowLongW(window, DWL_USER));
    if (dialog == nullptr) {
        return FALSE;
    }
    switch (message) {
        case WM_INITDIALOG: return dialog->OnInit(window);
        case WM_COMMAND: return dialog->OnCommand(window, LOWORD(wparam));
        default: return FALSE;
    }
}

}  // namespace tolvenar
