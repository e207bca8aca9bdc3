// A program for tests of the simulated device: its argument says what it does.
//   exit N            ends with that code
//   beside N          ends with that code beside a thread of its own that never ends
//   wait              stays until it is ended
//   pause N           ends after N milliseconds
//   hand ARGUMENTS    starts itself with these arguments and ends
//   stay ARGUMENTS    the same, and stays with a hidden window
//   start PATH        starts another program without arguments; ends with 0, or with the error
//   box               shows a message box; ends with its answer
//   dialog            shows a dialog with controls of each kind; ends with the button's id
//   slow dialog       the same, and takes its time before it shows it
//   open              asks for a file as the program does; writes the answer to \\chosen.txt
//   find CLASS        ends with 1 when a window of that class is there, else 0
//   mutex NAME        creates it; ends with the last error
//   screen            ends with width * 1000 + height of the screen
//   echo              ends with 0 when the argument came as it was given: "echo  "two blanks" end"
#include "platform/win32.h"

#include <cwchar>

namespace {

constexpr wchar_t kEchoed[] = L"echo  \"two blanks\" end";

bool StartsWith(const wchar_t* text, const wchar_t* prefix) {
    return ::wcsncmp(text, prefix, ::wcslen(prefix)) == 0;
}

int StartOther(const wchar_t* path, wchar_t* arguments = nullptr) {
    PROCESS_INFORMATION started{};
    if (!::CreateProcessW(path, arguments, nullptr, nullptr, FALSE, 0, nullptr, nullptr, nullptr,
                          &started)) {
        return static_cast<int>(::GetLastError());
    }
    ::CloseHandle(started.hThread);
    ::CloseHandle(started.hProcess);
    return 0;
}

enum : WORD { kCheck = 101, kEdit, kList, kTabs, kTree, kPicker, kBar };

void AddTab(HWND tabs, int index, wchar_t* text) {
    TCITEMW item{};
    item.mask = TCIF_TEXT;
    item.pszText = text;
    ::SendMessageW(tabs, TCM_INSERTITEMW, static_cast<WPARAM>(index),
                   reinterpret_cast<LPARAM>(&item));
}

HTREEITEM AddTreeItem(HWND tree, HTREEITEM parent, wchar_t* text) {
    TVINSERTSTRUCTW insert{};
    insert.hParent = parent;
    insert.hInsertAfter = TVI_LAST;
    insert.item.mask = TVIF_TEXT;
    insert.item.pszText = text;
    return reinterpret_cast<HTREEITEM>(
        ::SendMessageW(tree, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert)));
}

HWND AddControl(HWND dialog, const wchar_t* window_class, const wchar_t* text, DWORD style, int y,
                int height, WORD id) {
    return ::CreateWindowExW(0, window_class, text, WS_CHILD | WS_VISIBLE | WS_TABSTOP | style, 8,
                             y, 200, height, dialog,
                             reinterpret_cast<HMENU>(static_cast<ULONG_PTR>(id)),
                             ::GetModuleHandleW(nullptr), nullptr);
}

void FillDialog(HWND dialog) {
    ::SetWindowTextW(dialog, L"Probe");
    AddControl(dialog, L"BUTTON", L"Close it", BS_DEFPUSHBUTTON, 4, 24, IDOK);
    AddControl(dialog, L"BUTTON", L"Check", BS_AUTOCHECKBOX, 32, 20, kCheck);
    AddControl(dialog, L"EDIT", L"first", WS_BORDER, 56, 22, kEdit);
    HWND list = AddControl(dialog, L"LISTBOX", L"", WS_BORDER | LBS_NOTIFY, 82, 50, kList);
    ::SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"State 1"));
    ::SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"State 2"));
    wchar_t pages[][8] = {L"Restore", L"Backup"};
    HWND tabs = AddControl(dialog, WC_TABCONTROLW, L"", 0, 136, 24, kTabs);
    AddTab(tabs, 0, pages[0]);
    AddTab(tabs, 1, pages[1]);
    wchar_t nodes[][8] = {L"Files", L"a.txt"};
    HWND tree = AddControl(dialog, WC_TREEVIEWW, L"", WS_BORDER | TVS_HASLINES, 164, 60, kTree);
    AddTreeItem(tree, AddTreeItem(tree, TVI_ROOT, nodes[0]), nodes[1]);
    AddControl(dialog, DATETIMEPICK_CLASSW, L"", DTS_TIMEFORMAT, 228, 24, kPicker);
    HWND bar = AddControl(dialog, PROGRESS_CLASSW, L"", 0, 256, 16, kBar);
    ::SendMessageW(bar, PBM_SETPOS, 42, 0);
}

LRESULT DrawItem(NMTVCUSTOMDRAW& draw) {
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) {
        return CDRF_NOTIFYITEMDRAW;
    }
    draw.clrText = 0x0000FF;
    return CDRF_NEWFONT;
}

INT_PTR CALLBACK ProbeProc(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_INITDIALOG:
            ::Sleep(static_cast<DWORD>(lparam));
            FillDialog(dialog);
            return TRUE;
        case WM_COMMAND:
            // The list's choice shows in the edit control, so that a test sees the notification.
            if (LOWORD(wparam) == kList && HIWORD(wparam) == LBN_SELCHANGE) {
                ::SetDlgItemTextW(dialog, kEdit, L"chosen");
            }
            if (LOWORD(wparam) == IDOK || LOWORD(wparam) == IDCANCEL) {
                ::EndDialog(dialog, LOWORD(wparam));
            }
            return TRUE;
        case WM_NOTIFY: {
            auto& draw = *reinterpret_cast<NMTVCUSTOMDRAW*>(lparam);
            if (wparam != kTree || draw.nmcd.hdr.code != static_cast<UINT>(NM_CUSTOMDRAW)) {
                return FALSE;
            }
            ::SetWindowLongW(dialog, DWL_MSGRESULT, DrawItem(draw));
            return TRUE;
        }
        default: return FALSE;
    }
}

// A template of no more than a head: the controls are made by hand.
int ShowDialog(HINSTANCE instance, DWORD delay_ms) {
    INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_TREEVIEW_CLASSES | ICC_TAB_CLASSES |
                                                        ICC_PROGRESS_CLASS | ICC_DATE_CLASSES};
    ::InitCommonControlsEx(&classes);
    struct {
        DLGTEMPLATE head;
        WORD menu, window_class, title;
    } dialog = {{WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_VISIBLE | DS_SETFOREGROUND | DS_CENTER, 0,
                 0, 10, 10, 150, 160},
                0,
                0,
                0};
    return static_cast<int>(::DialogBoxIndirectParamW(instance, &dialog.head, nullptr, ProbeProc,
                                                      static_cast<LPARAM>(delay_ms)));
}

int AskForFile() {
    wchar_t file[MAX_PATH] = L"Home";
    OPENFILENAMEW data{};
    data.lStructSize = sizeof data;
    data.lpstrFilter = L"Backup Files (*.jrn)\0*.jrn\0All files (*.*)\0*.*\0";
    data.nFilterIndex = 1;
    data.lpstrFile = file;
    data.nMaxFile = 256;
    data.lpstrInitialDir = L"\\Storage Card\\Backups";
    data.lpstrTitle = L"Choose backup file";
    data.Flags = OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_CREATEPROMPT;
    data.lpstrDefExt = L"jrn";
    if (!::GetOpenFileNameW(&data)) {
        return static_cast<int>(::CommDlgExtendedError());
    }
    HANDLE out = ::CreateFileW(L"\\chosen.txt", GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                               FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    ::WriteFile(out, file, static_cast<DWORD>(::wcslen(file) * sizeof file[0]), &written, nullptr);
    ::CloseHandle(out);
    return 1000 + data.nFileOffset;
}

int MakeMutex(const wchar_t* name) {
    ::SetLastError(0);
    ::CreateMutexW(nullptr, FALSE, name);
    return static_cast<int>(::GetLastError());
}

int Stay() {
    ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    MSG message;
    while (::GetMessageW(&message, nullptr, 0, 0)) {
        ::DispatchMessageW(&message);
    }
    return 0;
}

DWORD WINAPI SleepForEver(void*) {
    ::Sleep(INFINITE);
    return 0;
}

int EndBesideAThread(int code) {
    ::CloseHandle(::CreateThread(nullptr, 0, SleepForEver, nullptr, 0, nullptr));
    return code;
}

int WorkArea() {
    RECT area{};
    ::SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
    return area.left != 0 || area.top != 0 ? 0 : area.right * 1000 + area.bottom;
}

int ScreenSize() {
    return ::GetSystemMetrics(SM_CXSCREEN) * 1000 + ::GetSystemMetrics(SM_CYSCREEN);
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPWSTR arguments, int) {
    if (StartsWith(arguments, L"exit ")) {
        return static_cast<int>(wcstol(arguments + 5, nullptr, 10));
    }
    if (StartsWith(arguments, L"beside ")) {
        return EndBesideAThread(static_cast<int>(wcstol(arguments + 7, nullptr, 10)));
    }
    if (StartsWith(arguments, L"start ")) {
        return StartOther(arguments + 6);
    }
    if (StartsWith(arguments, L"pause ")) {
        ::Sleep(static_cast<DWORD>(wcstol(arguments + 6, nullptr, 10)));
        return 0;
    }
    if (StartsWith(arguments, L"hand ") || StartsWith(arguments, L"stay ")) {
        const int error = StartOther(L"\\Windows\\probe.exe", arguments + 5);
        return arguments[0] == L'h' ? error : Stay();
    }
    if (::wcscmp(arguments, L"dialog") == 0) {
        return ShowDialog(instance, 0);
    }
    if (::wcscmp(arguments, L"slow dialog") == 0) {
        return ShowDialog(instance, 300);
    }
    if (::wcscmp(arguments, L"box") == 0) {
        return ::MessageBoxW(nullptr, L"Shall it?", L"Probe box", MB_YESNO | MB_SETFOREGROUND);
    }
    if (::wcscmp(arguments, L"open") == 0) {
        return AskForFile();
    }
    if (StartsWith(arguments, L"find ")) {
        return ::FindWindowW(arguments + 5, nullptr) != nullptr ? 1 : 0;
    }
    if (StartsWith(arguments, L"mutex ")) {
        return MakeMutex(arguments + 6);
    }
    if (::wcscmp(arguments, L"work area") == 0) {
        return WorkArea();
    }
    if (::wcscmp(arguments, L"screen") == 0) {
        return ScreenSize();
    }
    if (StartsWith(arguments, L"echo")) {
        return ::wcscmp(arguments, kEchoed) == 0 ? 0 : 1;
    }
    ::Sleep(INFINITE);
    return 0;
}
