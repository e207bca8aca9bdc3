// Names and messages by which the program's windows, threads and copies talk to one another.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

constexpr wchar_t kMainWindowClass[] = L"TolvenarClass";
constexpr wchar_t kOperationWindowClass[] = L"TolvenarOperationClass";
constexpr wchar_t kOperationWindowTitle[] = L"Operations";
constexpr wchar_t kDialogClass[] = L"Dialog";  // the system's class of dialogs
constexpr wchar_t kMutexName[] = L"TolvenarMutexObject";

constexpr UINT WM_PAGE_SELECT = WM_APP + 103;  // to the main dialog; wParam: page index
constexpr UINT WM_QUERYBUSY = WM_APP + 220;    // to the operation window; answers operationBusy

}  // namespace tolvenar
