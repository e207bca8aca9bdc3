// Names and messages by which the program's windows, threads and copies talk to one another.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

constexpr wchar_t kMainWindowClass[] = L"TolvenarClass";
constexpr wchar_t kOperationWindowClass[] = L"TolvenarOperationClass";
constexpr wchar_t kOperationWindowTitle[] = L"Operations";
constexpr wchar_t kDialogClass[] = L"Dialog";  // the system's class of dialogs
constexpr wchar_t kMutexName[] = L"TolvenarMutexObject";

// Indices of the tabs, from the left.
enum PageIndex {
    kBackupPage = 0,
    kRestorePage = 1,
    kAdvancedPage = 2,
    kStoragePage = 3,
    kOptionsPage = 4,
    kAboutPage = 5,
    kPageCount = 6,
};

// To the operation window. wParam: 1 to go on, 0 when the user refused.
constexpr UINT WM_OPCONFIRMED_RESTORED = WM_APP + 122;
constexpr UINT WM_OPCONFIRMED_BACKUP = WM_APP + 124;
constexpr UINT WM_OPCONFIRMED_RESTORE = WM_APP + 128;  // lParam: the button that asked
constexpr UINT WM_PREVIEW_WANTED = WM_APP + 137;       // wParam 1; lParam: the button that asked
constexpr UINT WM_QUERYBUSY = WM_APP + 220;            // answers whether an operation runs

// To the main dialog.
constexpr UINT WM_PAGE_SELECT = WM_APP + 103;  // wParam: PageIndex
// Sent by the main window that shuts the program down: what a page still holds is to be applied.
constexpr UINT WM_APPLY_NOW = WM_APP + 130;
// Posted by the main dialog to itself: no storage is open, and the user may have put the card in.
constexpr UINT WM_LOOK_FOR_STORAGE = WM_APP + 136;

// Sent to the main dialog by the operation thread, since pages, lists and tree belong to the main
// thread.
constexpr UINT WM_TAKE_DESCRIPTION = WM_APP + 131;  // to Application::wanted_description
constexpr UINT WM_BACKUP_DONE = WM_APP + 132;       // a state was written
constexpr UINT WM_STATES_CHANGED = WM_APP + 133;    // wParam: 1 to keep the selected state
constexpr UINT WM_SELECTED_STATE = WM_APP + 134;    // answers its number, or kNoState of a request
// wParam: 1 when items are left over; lParam: the text about what no box tells, or 0.
constexpr UINT WM_RESTORE_ENDED = WM_APP + 135;
// wParam: 1 when Application::preview holds what a restore would change, 0 when that holds no more.
constexpr UINT WM_PREVIEW_ENDED = WM_APP + 138;

// To the options page: the main dialog's WM_ACTIVATE, with the same parameters.
constexpr UINT WM_DIALOG_ACTIVATED = WM_APP + 300;

}  // namespace tolvenar
