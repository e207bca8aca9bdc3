#include "app/pages/main_dialog.h"

#include "app/operations/storage_search.h"
#include "app/operations/window_messages.h"
#include "app/pages/help.h"
#include "app/pages/page_table.h"
#include "platform/notification.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr int kTabTextUnits = 26;  // 25 characters and the terminator

// The tabs in the order of their insertion. An index beyond the end appends, so Backup comes to
// stand before the two that were there already.
struct Tab {
    int index;
    const wchar_t* text;
};
constexpr Tab kTabs[] = {
    {kRestorePage, L"Restore"},      {kAdvancedPage, L"Advanced Restore"}, {kBackupPage, L"Backup"},
    {kStoragePage, L"Storage file"}, {kOptionsPage, L"Options"},           {kAboutPage, L"About"},
};

// What the operation thread sends, and whose page answers.
struct PageMessage {
    UINT message;
    int index;
    LRESULT without_page;
};
constexpr PageMessage kPageMessages[] = {
    {WM_TAKE_DESCRIPTION, kBackupPage, 0},       {WM_BACKUP_DONE, kBackupPage, 0},
    {WM_SELECTED_STATE, kRestorePage, kNoState}, {WM_STATES_CHANGED, kRestorePage, 0},
    {WM_RESTORE_ENDED, kRestorePage, 0},         {WM_PREVIEW_ENDED, kRestorePage, 0},
};

const PageMessage* FindPageMessage(UINT message) {
    for (const PageMessage& row : kPageMessages) {
        if (row.message == message) {
            return &row;
        }
    }
    return nullptr;
}

// A copy that came up beside one that would not close has no main window to shut it down.
void CloseMainWindow(Application& app) {
    if (app.main_window != nullptr) {
        ::PostMessageW(app.main_window, WM_CLOSE, 0, 0);
    } else {
        app.is_ending = true;
        ::PostQuitMessage(0);
    }
}

void Click(HWND button) {
    ::SendMessageW(::GetParent(button), WM_COMMAND, MAKEWPARAM(::GetDlgCtrlID(button), BN_CLICKED),
                   reinterpret_cast<LPARAM>(button));
}

DWORD ProcessOf(HWND window) {
    DWORD process = 0;
    ::GetWindowThreadProcessId(window, &process);
    return process;
}

// What was active before: another program's window is not told, or is another process's.
bool IsOfProgram(HWND dialog, LPARAM other) {
    const auto window = reinterpret_cast<HWND>(other);
    return window != nullptr && ProcessOf(window) == ProcessOf(dialog);
}

bool IsPushButton(HWND control) {
    return (::SendMessageW(control, WM_GETDLGCODE, 0, 0) &
            (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON)) != 0;
}

}  // namespace

bool MainDialog::Create() {
    if (!CreateModeless(app_.instance, IDD_MAIN, nullptr)) {
        return false;
    }
    ::ShowWindow(window(), SW_SHOW);
    FocusPage();
    return true;
}

// The control that has the keyboard may have been hidden meanwhile: with its page under another
// window, or with the form of its page. Keys would go nowhere then, and the dialog manager's search
// for an underlined letter, which starts at the control and enters nothing hidden, would never end.
bool MainDialog::TakesMessage(MSG& message) {
    const bool is_key = message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST;
    if (is_key && ::IsChild(window(), message.hwnd) && !::IsWindowVisible(message.hwnd)) {
        FocusPage();
        message.hwnd = ::GetFocus();
    }
    if (is_key && IsOfDialog(message.hwnd) && TakesKey(message)) {
        return true;
    }
    return ::IsDialogMessageW(window(), &message) != FALSE;
}

bool MainDialog::IsOfDialog(HWND control) const {
    return control == window() || ::IsChild(window(), control);
}

// Wherever the focus is: on the tabs, too.
bool MainDialog::TakesKey(const MSG& message) {
    if (message.message == WM_SYSKEYDOWN && message.wParam == VK_RETURN) {
        ToggleFull();
        return true;
    }
    return shown_ != nullptr && shown_->TakesKey(message);
}

// A page that hides what has the keyboard gives it to another control.
void MainDialog::ToggleFull() {
    room_.ToggleFull();
    if (shown_ == nullptr) {
        return;
    }
    shown_->Place(room_.PagePlace());
    if (!::IsWindowVisible(::GetFocus())) {
        FocusPage();
    }
}

void MainDialog::SelectPage(int index) {
    if (index < 0 || index >= kPageCount) {
        return;
    }
    ::SendMessageW(tabs_, TCM_SETCURSEL, static_cast<WPARAM>(index), 0);
    ShowPage(index);
}

void MainDialog::StorageChanged() {
    for (const std::unique_ptr<Page>& page : pages_) {
        if (page) {
            page->OnStorageChanged();
        }
    }
}

INT_PTR MainDialog::OnInit() {
    app_.main_dialog = window();
    tabs_ = Control(IDC_TABS);
    room_.Attach(window(), tabs_);
    const int first = app_.storageStatus == StorageStatus::kNone ? kStoragePage : kBackupPage;
    InsertTabs(first);
    room_.PlaceTabs();
    ShowPage(first);
    // No focus yet: a window that is activated before it is seen keeps the look of an inactive one.
    return FALSE;
}

void MainDialog::InsertTabs(int selected) {
    ::SendMessageW(tabs_, TCM_DELETEALLITEMS, 0, 0);
    for (const Tab& tab : kTabs) {
        wchar_t text[kTabTextUnits] = L"";
        ::wcsncpy(text, tab.text, kTabTextUnits - 1);
        TCITEMW item{};
        item.mask = TCIF_TEXT | TCIF_PARAM;
        item.pszText = text;
        item.lParam = tab.index;
        ::SendMessageW(tabs_, TCM_INSERTITEMW, static_cast<WPARAM>(tab.index),
                       reinterpret_cast<LPARAM>(&item));
    }
    ::SendMessageW(tabs_, TCM_SETCURSEL, static_cast<WPARAM>(selected), 0);
}

Page* MainDialog::PageAt(int index) {
    if (index < 0 || index >= kPageCount) {
        return nullptr;
    }
    const int owner = OwnerOfPage(index);
    std::unique_ptr<Page>& page = pages_[owner];
    if (!page) {
        page = MakePage(owner, app_, *this);
    }
    return page && page->Create(window()) ? page.get() : nullptr;
}

bool MainDialog::FocusIsInPage() const {
    const HWND focus = ::GetFocus();
    return focus != nullptr && ::IsChild(window(), focus) && focus != tabs_;
}

// The keyboard goes where it was: on the tabs, or into the page.
void MainDialog::ShowPage(int index) {
    Page* page = PageAt(index);
    const bool focus_in_page = FocusIsInPage();
    if (shown_ != nullptr && shown_ != page) {
        shown_->Hide();
    }
    shown_ = page;
    shown_index_ = index;
    if (page == nullptr) {
        return;
    }
    page->Show(index, room_.PagePlace());
    if (focus_in_page) {
        FocusPage();
    }
}

void MainDialog::FocusPage() {
    const HWND first =
        shown_ != nullptr ? ::GetNextDlgTabItem(shown_->window(), nullptr, FALSE) : nullptr;
    ::SetFocus(first != nullptr ? first : tabs_);
}

void MainDialog::StepPage(int direction) {
    const auto current = static_cast<int>(::SendMessageW(tabs_, TCM_GETCURSEL, 0, 0));
    const auto count = static_cast<int>(::SendMessageW(tabs_, TCM_GETITEMCOUNT, 0, 0));
    if (current < 0 || count <= 0) {
        return;
    }
    SelectPage((current + direction + count) % count);
}

// The dialog manager knows the buttons of this dialog only, not those of a page within it.
void MainDialog::PressEnter() {
    if (shown_ == nullptr) {
        return;
    }
    const HWND focus = ::GetFocus();
    if (::IsChild(shown_->window(), focus)) {
        if (IsPushButton(focus)) {
            Click(focus);
            return;
        }
        if (shown_->OnEnter(focus)) {
            return;
        }
    }
    const HWND button = ::GetDlgItem(shown_->window(), shown_->DefaultButton());
    if (button != nullptr && ::IsWindowEnabled(button) && ::IsWindowVisible(button)) {
        Click(button);
    }
}

void MainDialog::ApplyNow() {
    for (const std::unique_ptr<Page>& page : pages_) {
        if (page) {
            page->ApplyNow();
        }
    }
}

INT_PTR MainDialog::OnNotify(LPARAM lparam) {
    const NMHDR* const header = NotificationOf(tabs_, lparam);
    if (header == nullptr || header->code != static_cast<UINT>(TCN_SELCHANGE)) {
        return FALSE;
    }
    TCITEMW item{};
    item.mask = TCIF_PARAM;
    const LRESULT selected = ::SendMessageW(tabs_, TCM_GETCURSEL, 0, 0);
    if (::SendMessageW(tabs_, TCM_GETITEMW, static_cast<WPARAM>(selected),
                       reinterpret_cast<LPARAM>(&item))) {
        ShowPage(static_cast<int>(item.lParam));
    }
    return TRUE;
}

INT_PTR MainDialog::OnCommand(WPARAM wparam, LPARAM lparam) {
    switch (LOWORD(wparam)) {
        case IDOK: PressEnter(); return TRUE;
        case IDCANCEL: return TRUE;
        case IDM_HELP_PAGE: ShowHelp(app_, shown_index_); return TRUE;
        case IDM_NEXT_PAGE: StepPage(1); return TRUE;
        case IDM_PREVIOUS_PAGE: StepPage(-1); return TRUE;
        case IDM_CLOSE:
        case IDM_QUIT: return OnClose();
        default: break;
    }
    // Enter on a button that the dialog manager takes for the default one arrives here.
    const auto control = reinterpret_cast<HWND>(lparam);
    if (shown_ != nullptr && ::IsChild(shown_->window(), control)) {
        ::SendMessageW(::GetParent(control), WM_COMMAND, wparam, lparam);
    }
    return TRUE;
}

// Some systems send it for Alt+H, too, which is the page's help already.
INT_PTR MainDialog::OnHelp() {
    if (::GetKeyState(VK_MENU) >= 0) {
        ShowHelp(app_, kGeneralHelp);
    }
    return TRUE;
}

INT_PTR MainDialog::OnSize() {
    room_.PlaceTabs();
    if (shown_ != nullptr) {
        shown_->Place(room_.PagePlace());
    }
    return TRUE;
}

// The dialog manager goes on with the message: it brings the focus back.
INT_PTR MainDialog::OnActivate(WPARAM wparam, LPARAM lparam) {
    if (shown_ != nullptr && LOWORD(wparam) != WA_INACTIVE) {
        shown_->OnActivated();
        if (app_.storageStatus != StorageStatus::kOpen && !IsOfProgram(window(), lparam)) {
            // When the activation is over: a popup may come up.
            ::PostMessageW(window(), WM_LOOK_FOR_STORAGE, 0, 0);
        }
    }
    if (pages_[kOptionsPage]) {
        ::SendMessageW(pages_[kOptionsPage]->window(), WM_DIALOG_ACTIVATED, wparam, lparam);
    }
    return FALSE;
}

// Under a box of this program the dialog is disabled.
INT_PTR MainDialog::OnLookForStorage() {
    if (::IsWindowEnabled(window()) &&
        LookForStorage(app_, SearchReason::kActivated) != SearchResult::kNothing) {
        StorageChanged();
    }
    return TRUE;
}

INT_PTR MainDialog::OnApplyNow() {
    ApplyNow();
    for (const std::unique_ptr<Page>& page : pages_) {
        if (page) {
            page->OnTakenOver();
        }
    }
    return TRUE;
}

INT_PTR MainDialog::OnClose() {
    if (app_.gate.IsOccupied()) {
        return TRUE;
    }
    ApplyNow();
    CloseMainWindow(app_);
    Destroy();
    return TRUE;
}

INT_PTR MainDialog::OnDestroy() {
    shown_ = nullptr;
    app_.main_dialog = nullptr;
    return TRUE;
}

// Messages of this program's other windows and threads.
INT_PTR MainDialog::OnRequest(UINT message, WPARAM wparam, LPARAM lparam) {
    const PageMessage* row = FindPageMessage(message);
    if (row == nullptr) {
        return FALSE;
    }
    const std::unique_ptr<Page>& page = pages_[row->index];
    const LRESULT result = page && page->window() != nullptr
                               ? ::SendMessageW(page->window(), message, wparam, lparam)
                               : row->without_page;
    // Keeping the selection means that the states are the same.
    if (message == WM_STATES_CHANGED && wparam == 0 && pages_[kBackupPage]) {
        pages_[kBackupPage]->OnStorageChanged();
    }
    return Answer(result);
}

INT_PTR MainDialog::Dispatch(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_INITDIALOG: return OnInit();
        case WM_NOTIFY: return OnNotify(lparam);
        case WM_COMMAND: return OnCommand(wparam, lparam);
        case WM_SIZE: return OnSize();
        case WM_ACTIVATE: return OnActivate(wparam, lparam);
        case WM_HELP: return OnHelp();
        case WM_CLOSE: return OnClose();
        case WM_DESTROY: return OnDestroy();
        case WM_PAGE_SELECT: SelectPage(static_cast<int>(wparam)); return TRUE;
        case WM_APPLY_NOW: return OnApplyNow();
        case WM_LOOK_FOR_STORAGE: return OnLookForStorage();
        default: return OnRequest(message, wparam, lparam);
    }
}

}  // namespace tolvenar
