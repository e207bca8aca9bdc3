#include "app/pages/page.h"

#include "app/operations/messages.h"
#include "app/operations/storage_search.h"
#include "app/operations/window_messages.h"
#include "res/resource.h"

namespace tolvenar {

bool Page::Create(HWND main_dialog) {
    return window() != nullptr || CreateModeless(app_.instance, template_id_, main_dialog);
}

void Page::Show(int index, const RECT& place) {
    OnShow(index);
    Place(place);
    ::ShowWindow(window(), SW_SHOW);
}

void Page::Place(const RECT& place) {
    ::SetWindowPos(window(), HWND_TOP, place.left, place.top, place.right - place.left,
                   place.bottom - place.top, SWP_NOACTIVATE);
    LayOut();
}

void Page::LayOut() {
    ApplyLayout(window(), ChooseLayout(window(), Layouts()));
    OnLayout();
}

void Page::Hide() {
    ::ShowWindow(window(), SW_HIDE);
    OnHide();
}

bool Page::Refuses(Wish wish) {
    Refusal refusal = WhyRefused(app_, wish);
    if (refusal == Refusal::kNoStorage) {
        refusal = LookAgain(wish);
    }
    if (refusal == Refusal::kNoInstallation) {
        ShowInstallationMissing(app_.main_dialog);
    }
    return refusal != Refusal::kNone;
}

// The card may be in again. What the user saw must be what the wish is about: another storage is
// shown first.
Refusal Page::LookAgain(Wish wish) {
    const SearchResult found = LookForStorage(app_, SearchReason::kButton);
    if (found == SearchResult::kNothing) {
        frame_.SelectPage(kStoragePage);
        return Refusal::kNoStorage;
    }
    frame_.StorageChanged();
    return found == SearchResult::kSame && wish == Wish::kBackUp ? Refusal::kNone
                                                                 : Refusal::kNoStorage;
}

// Every page has a button for its help: there may be no keyboard.
INT_PTR Page::OnPageCommand(WPARAM wparam) {
    if (LOWORD(wparam) == IDC_PAGE_HELP && HIWORD(wparam) == BN_CLICKED) {
        ::SendMessageW(::GetParent(window()), WM_COMMAND, IDM_HELP_PAGE, 0);
        return TRUE;
    }
    return OnCommand(LOWORD(wparam), HIWORD(wparam)) ? TRUE : FALSE;
}

// Tab in an edit control of several lines asks its own dialog for the next control, which knows
// this page only; the round goes on through the tabs.
INT_PTR Page::OnNextControl(WPARAM wparam, LPARAM lparam) {
    ::SendMessageW(::GetParent(window()), WM_NEXTDLGCTL, wparam, lparam);
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
        case WM_COMMAND: return OnPageCommand(wparam);
        case WM_NEXTDLGCTL: return OnNextControl(wparam, lparam);
        case DM_GETDEFID: return OnDefaultButton();
        // Escape in an edit control of several lines closes its dialog otherwise.
        case WM_CLOSE: ApplyNow(); return TRUE;
        default: return OnMessage(message, wparam, lparam);
    }
}

}  // namespace tolvenar
