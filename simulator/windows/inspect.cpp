#include "simulator/windows/inspect.h"

#include <algorithm>
#include <commctrl.h>
#include <cstdio>
#include <iterator>
#include <set>

#include "simulator/store/utf8.h"
#include "simulator/windows/inspect_tree.h"

namespace sim::windows {
namespace {

constexpr UINT kAskTimeoutMs = 3000;
constexpr int kMaxItemUnits = 512;

// The host's edit controls keep their text themselves.
bool KeepsItsText(const std::string& class_name) {
    return class_name == "Edit" || class_name == "ComboBox";
}

std::string AskText(HWND window) {
    const auto length = static_cast<std::size_t>(Ask(window, WM_GETTEXTLENGTH));
    std::wstring text(length + 1, L'\0');
    const LRESULT got = Ask(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(&text[0]));
    text.resize(static_cast<std::size_t>(got));
    return Utf8(text);
}

// As the window system knows it: a thread that works, or waits, is not asked. Nor is one that is
// ready, since the answers of many windows take their time.
std::string CaptionOf(HWND window) {
    wchar_t text[kMaxItemUnits] = L"";
    ::InternalGetWindowText(window, text, kMaxItemUnits);
    return Utf8(text);
}

std::string PickedTime(HWND picker) {
    SYSTEMTIME time{};
    if (Ask(picker, DTM_GETSYSTEMTIME, 0, reinterpret_cast<LPARAM>(&time)) != GDT_VALID) {
        return {};
    }
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", time.wYear, time.wMonth,
                  time.wDay, time.wHour, time.wMinute, time.wSecond);
    return text;
}

bool PickTime(HWND picker, const std::string& text) {
    SYSTEMTIME time{};
    int hour = 0;
    int minute = 0;
    if (std::sscanf(text.c_str(), "%d:%d", &hour, &minute) != 2 ||
        Ask(picker, DTM_GETSYSTEMTIME, 0, reinterpret_cast<LPARAM>(&time)) != GDT_VALID) {
        return false;
    }
    time.wHour = static_cast<WORD>(hour);
    time.wMinute = static_cast<WORD>(minute);
    if (!Ask(picker, DTM_SETSYSTEMTIME, GDT_VALID, reinterpret_cast<LPARAM>(&time))) {
        return false;
    }
    NMDATETIMECHANGE change{};  // the control tells its parent only of a user's own change
    change.nmhdr = {picker, static_cast<UINT_PTR>(::GetDlgCtrlID(picker)),
                    static_cast<UINT>(DTN_DATETIMECHANGE)};
    change.dwFlags = GDT_VALID;
    change.st = time;
    Ask(::GetParent(picker), WM_NOTIFY, change.nmhdr.idFrom, reinterpret_cast<LPARAM>(&change));
    return true;
}

// How each kind of control tells its items.
struct ListKind {
    const char* class_name;
    UINT count;
    UINT selected;
    UINT length;
    UINT text;
    UINT select;
    WORD notification;
};
constexpr ListKind kListKinds[] = {
    {"ListBox", LB_GETCOUNT, LB_GETCURSEL, LB_GETTEXTLEN, LB_GETTEXT, LB_SETCURSEL, LBN_SELCHANGE},
    {"ComboBox", CB_GETCOUNT, CB_GETCURSEL, CB_GETLBTEXTLEN, CB_GETLBTEXT, CB_SETCURSEL,
     CBN_SELCHANGE},
};

const ListKind* ListKindOf(const std::string& class_name) {
    for (const ListKind& kind : kListKinds) {
        if (class_name == kind.class_name) {
            return &kind;
        }
    }
    return nullptr;
}

void DescribeList(HWND control, const ListKind& kind, Window& out) {
    const LRESULT count = Ask(control, kind.count);
    for (LRESULT i = 0; i < count; ++i) {
        const auto index = static_cast<WPARAM>(i);
        std::wstring text(static_cast<std::size_t>(Ask(control, kind.length, index)) + 1, L'\0');
        Ask(control, kind.text, index, reinterpret_cast<LPARAM>(&text[0]));
        text.pop_back();
        out.items.push_back(Utf8(text));
    }
    out.selected = static_cast<int>(Ask(control, kind.selected));
}

// `item` is the control's own structure, which `text_message` fills.
template <typename Item>
void DescribeItems(HWND control, UINT count_message, UINT text_message, Item item, Window& out) {
    const int count = static_cast<int>(Ask(control, count_message));
    for (int i = 0; i < count; ++i) {
        wchar_t text[kMaxItemUnits] = L"";
        item.pszText = text;
        item.cchTextMax = kMaxItemUnits;
        Ask(control, text_message, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
        out.items.push_back(Utf8(text));
    }
}

void DescribeTabs(HWND control, Window& out) {
    TCITEMW item{};
    item.mask = TCIF_TEXT;
    DescribeItems(control, TCM_GETITEMCOUNT, TCM_GETITEMW, item, out);
    out.selected = static_cast<int>(Ask(control, TCM_GETCURSEL));
    for (std::size_t i = 0; i < out.items.size(); ++i) {
        RECT place{};
        Ask(control, TCM_GETITEMRECT, i, reinterpret_cast<LPARAM>(&place));
        out.places.push_back({out.left + static_cast<int>(place.left),
                              out.top + static_cast<int>(place.top),
                              static_cast<int>(place.right - place.left),
                              static_cast<int>(place.bottom - place.top)});
    }
}

void DescribeListView(HWND control, Window& out) {
    DescribeItems(control, LVM_GETITEMCOUNT, LVM_GETITEMTEXTW, LVITEMW{}, out);
    out.selected =
        static_cast<int>(Ask(control, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

bool HasCheckState(HWND button) {
    const LONG kind = ::GetWindowLongW(button, GWL_STYLE) & BS_TYPEMASK;
    return kind == BS_CHECKBOX || kind == BS_AUTOCHECKBOX || kind == BS_3STATE ||
           kind == BS_AUTO3STATE || kind == BS_RADIOBUTTON || kind == BS_AUTORADIOBUTTON;
}

void DescribeKind(HWND window, Window& out) {
    if (const ListKind* kind = ListKindOf(out.class_name)) {
        DescribeList(window, *kind, out);
    }
    if (out.class_name == "SysTabControl32") {
        DescribeTabs(window, out);
    }
    if (out.class_name == "SysListView32") {
        DescribeListView(window, out);
    }
    if (out.class_name == "SysDateTimePick32") {
        out.text = PickedTime(window);
    }
    if (out.class_name == "msctls_progress32") {
        out.position = static_cast<int>(Ask(window, PBM_GETPOS));
    }
    if (out.class_name == "Button" && HasCheckState(window)) {
        out.check = static_cast<int>(Ask(window, BM_GETCHECK));
    }
}

struct Screen {
    HWND active;
    HWND focus;
};

Screen ReadScreen() {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    HWND active = ::GetForegroundWindow();
    ::GetGUIThreadInfo(::GetWindowThreadProcessId(active, nullptr), &info);
    return {active, info.hwndFocus};
}

Window DescribeOne(HWND window, const Screen& screen) {
    Window out;
    DWORD pid = 0;
    ::GetWindowThreadProcessId(window, &pid);
    const bool child = (::GetWindowLongW(window, GWL_STYLE) & WS_CHILD) != 0;
    RECT rect{};
    ::GetWindowRect(window, &rect);
    out.handle = HandleToULong(window);
    out.parent = child ? HandleToULong(::GetParent(window)) : 0;
    out.pid = pid;
    out.id = child ? ::GetDlgCtrlID(window) : 0;
    out.class_name = ClassOf(window);
    out.text = child && KeepsItsText(out.class_name) ? AskText(window) : CaptionOf(window);
    out.left = rect.left;
    out.top = rect.top;
    out.width = rect.right - rect.left;
    out.height = rect.bottom - rect.top;
    out.enabled = ::IsWindowEnabled(window) != 0;
    out.visible = ::IsWindowVisible(window) != 0;
    out.focused = window == screen.focus;
    out.active = window == screen.active;
    DescribeKind(window, out);
    return out;
}

BOOL CALLBACK CollectChild(HWND window, LPARAM param) {
    reinterpret_cast<std::vector<HWND>*>(param)->push_back(window);
    return TRUE;
}

// `top` first, each window before what stands in it. A window with controls answers before: what
// its thread had begun is then on the screen as a whole.
std::vector<HWND> WindowsOf(HWND top) {
    if (::GetWindow(top, GW_CHILD) != nullptr) {
        Ask(top, WM_NULL);
    }
    std::vector<HWND> windows = {top};
    ::EnumChildWindows(top, CollectChild, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

std::vector<Window> DescribeEach(const std::vector<HWND>& windows) {
    const Screen screen = ReadScreen();
    std::vector<Window> out;
    for (HWND window : windows) {
        out.push_back(DescribeOne(window, screen));
    }
    return out;
}

int IndexOf(const std::vector<std::string>& items, const std::string& item) {
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i] == item) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

bool SelectInList(HWND control, const ListKind& kind, int index) {
    Ask(control, kind.select, static_cast<WPARAM>(index));
    const auto id = static_cast<WORD>(::GetDlgCtrlID(control));
    ::PostMessageW(::GetParent(control), WM_COMMAND, MAKEWPARAM(id, kind.notification),
                   reinterpret_cast<LPARAM>(control));
    return true;
}

bool SelectInListView(HWND control, int index) {
    LVITEMW item{};
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    item.state = item.stateMask;
    return Ask(control, LVM_SETITEMSTATE, static_cast<WPARAM>(index),
               reinterpret_cast<LPARAM>(&item)) != 0;
}

}  // namespace

std::string ClassOf(HWND window) {
    wchar_t name[128] = L"";
    ::GetClassNameW(window, name, 128);
    return Utf8(name);
}

LRESULT Ask(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    DWORD_PTR result = 0;
    const bool answered = ::SendMessageTimeoutW(window, message, wparam, lparam, SMTO_NORMAL,
                                                kAskTimeoutMs, &result) != 0;
    return answered ? static_cast<LRESULT>(result) : 0;
}

std::vector<Window> Describe(HWND top) { return DescribeEach(WindowsOf(top)); }

std::vector<Window> DescribeVisible(HWND top) {
    std::vector<HWND> windows = WindowsOf(top);
    windows.erase(std::remove_if(windows.begin(), windows.end(),
                                 [](HWND window) { return !::IsWindowVisible(window); }),
                  windows.end());
    return DescribeEach(windows);
}

std::vector<Window> DescribeTop(HWND top) { return DescribeEach({top}); }

std::vector<Window> DescribeControls(HWND top, int id) {
    const std::vector<HWND> windows = WindowsOf(top);
    std::set<HWND> wanted;
    for (HWND window : windows) {
        if (window == top || ::GetDlgCtrlID(window) != id) {
            continue;
        }
        for (HWND at = window; at != nullptr && wanted.insert(at).second && at != top;) {
            at = ::GetParent(at);
        }
    }
    std::vector<HWND> described;
    std::copy_if(windows.begin(), windows.end(), std::back_inserter(described),
                 [&](HWND window) { return wanted.count(window) != 0; });
    return DescribeEach(described);
}

bool SetControlText(HWND control, const std::string& text) {
    if (ClassOf(control) == "SysDateTimePick32") {
        return PickTime(control, text);
    }
    const std::wstring wide = Wide(text);
    return Ask(control, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(wide.c_str())) != 0;
}

bool SelectItem(HWND control, const std::string& item) {
    Window window;
    window.class_name = ClassOf(control);
    if (window.class_name == "SysTreeView32") {
        return SelectTreeItem(control, item);
    }
    DescribeKind(control, window);
    const int index = IndexOf(window.items, item);
    if (index < 0) {
        return false;
    }
    if (const ListKind* kind = ListKindOf(window.class_name)) {
        return SelectInList(control, *kind, index);
    }
    if (window.class_name == "SysListView32") {
        return SelectInListView(control, index);
    }
    Ask(control, TCM_SETCURFOCUS, static_cast<WPARAM>(index));
    return true;
}

}  // namespace sim::windows
