#include "app/pages/description_dialog.h"

#include "platform/layout.h"
#include "platform/text.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

// Behind any text: the caret goes to the end.
constexpr WPARAM kEndOfText = 1000;
// The last unit of the description's place in the header is its terminator.
constexpr int kDescriptionLimit = kMaxDescriptionUnits - 1;

constexpr ControlPlace kHigh[] = {
    {IDC_DESCRIPTION_LABEL, {4, 4, 125, 9}, kWidens},
    {IDC_DESCRIPTION_TEXT, {4, 14, 125, 80}, kGrows},
    {IDC_DESCRIPTION_CANCEL_HINT, {4, 96, 125, 16}, kWidensOnBottom},
    {IDOK, {4, 114, 60, 16}, {0, 100, 50, 100}},
    {IDCANCEL, {69, 114, 60, 16}, {50, 100, 100, 100}},
};
constexpr ControlPlace kLow[] = {
    {IDC_DESCRIPTION_LABEL, {4, 4, 171, 9}, kWidens},
    {IDC_DESCRIPTION_TEXT, {4, 14, 171, 56}, kGrows},
    {IDC_DESCRIPTION_CANCEL_HINT, {4, 72, 171, 9}, kWidensOnBottom},
    {IDOK, {4, 83, 84, 16}, {0, 100, 50, 100}},
    {IDCANCEL, {92, 83, 83, 16}, {50, 100, 100, 100}},
};
constexpr Layout kSmallScreens[] = {LayoutOf(133, 132, kHigh), LayoutOf(179, 100, kLow)};

}  // namespace

bool DescriptionDialog::AskDescription(const char16_t* proposed,
                                       char16_t (&answer)[kMaxDescriptionUnits],
                                       std::size_t& units) {
    proposed_ = proposed;
    answer_ = answer;
    units_ = 0;
    is_confirmed_ = false;
    RunModal(app_.instance, IDD_DESCRIPTION, app_.main_dialog);
    units = units_;
    return is_confirmed_;
}

INT_PTR DescriptionDialog::OnInit() {
    FitToWorkArea(window(), kSmallScreens);
    const HWND edit = Control(IDC_DESCRIPTION_TEXT);
    ::SendMessageW(edit, EM_LIMITTEXT, kDescriptionLimit, 0);
    ::SetWindowTextW(edit, Wide(proposed_));
    ::SendMessageW(edit, EM_SETSEL, kEndOfText, static_cast<LPARAM>(kEndOfText));
    ::SendMessageW(edit, EM_SCROLLCARET, 0, 0);
    ::SetFocus(edit);
    ::ShowWindow(window(), SW_SHOW);
    return FALSE;
}

INT_PTR DescriptionDialog::OnCommand(int id) {
    if (id != IDOK && id != IDCANCEL) {
        return FALSE;
    }
    if (id == IDOK) {
        units_ = ::GetDlgItemTextW(window(), IDC_DESCRIPTION_TEXT, Wide(answer_),
                                   static_cast<int>(kMaxDescriptionUnits));
        is_confirmed_ = true;
    }
    End(id);
    return TRUE;
}

INT_PTR DescriptionDialog::Dispatch(UINT message, WPARAM wparam, LPARAM) {
    switch (message) {
        case WM_INITDIALOG: return OnInit();
        case WM_COMMAND: return OnCommand(LOWORD(wparam));
        default: return FALSE;
    }
}

}  // namespace tolvenar
