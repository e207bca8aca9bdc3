#include "app/pages/tree_filter_dialog.h"

#include "difftree/window/tree_window.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

struct Choice {
    int button;
    std::uint32_t kind;
};
constexpr Choice kChoices[] = {
    {IDC_SHOW_ALL, kShowAll},         {IDC_SHOW_ADDED, kNodeAdded},   {IDC_SHOW_CHANGED, kNodeBoth},
    {IDC_SHOW_DELETED, kNodeDeleted}, {IDC_SHOW_FAILED, kShowFailed},
};

}  // namespace

std::optional<std::uint32_t> TreeFilterDialog::Ask(HINSTANCE instance, HWND owner,
                                                   bool has_failed) {
    chosen_.reset();
    has_failed_ = has_failed;
    RunModal(instance, IDD_TREE_FILTER, owner);
    return chosen_;
}

INT_PTR TreeFilterDialog::OnInit() {
    ::EnableWindow(Control(IDC_SHOW_FAILED), has_failed_);
    ::SetFocus(Control(IDC_SHOW_ALL));
    ::ShowWindow(window(), SW_SHOW);
    return FALSE;
}

INT_PTR TreeFilterDialog::OnCommand(int id) {
    for (const Choice& choice : kChoices) {
        if (choice.button == id) {
            chosen_ = choice.kind;
            End(id);
            return TRUE;
        }
    }
    if (id != IDCANCEL) {
        return FALSE;
    }
    End(id);
    return TRUE;
}

INT_PTR TreeFilterDialog::Dispatch(UINT message, WPARAM wparam, LPARAM) {
    switch (message) {
        case WM_INITDIALOG: return OnInit();
        case WM_COMMAND: return OnCommand(LOWORD(wparam));
        default: return FALSE;
    }
}

}  // namespace tolvenar
