#include "difftree/window/tree_window.h"

#include "difftree/window/tree_view.h"
#include "platform/notification.h"
#include "platform/text.h"
#include "platform/window_object.h"
#include "res/resource.h"

namespace tolvenar {
namespace {

constexpr wchar_t kClassName[] = L"CustomParentTreeWindowClass";
constexpr int kObjectPlace = 0;  // in a window of that class
constexpr DWORD kTreeStyle = WS_CHILD | WS_VISIBLE | WS_BORDER | WS_TABSTOP | TVS_HASBUTTONS |
                             TVS_HASLINES | TVS_LINESATROOT | TVS_SHOWSELALWAYS |
                             TVS_DISABLEDRAGDROP;
static_assert(kTreeStyle == 0x50810037);

struct TextRow {
    TreeText TreeTexts::*text;
    UINT id;
};
constexpr TextRow kTexts[] = {
    {&TreeTexts::root, IDS_DIFFERENCES},
    {&TreeTexts::applications, IDS_APPLICATIONS},
    {&TreeTexts::documents, IDS_DOCUMENTS},
    {&TreeTexts::databases, IDS_DATABASES},
    {&TreeTexts::registry, IDS_REGISTRY},
    {&TreeTexts::files, IDS_FILES},
    {&TreeTexts::other, IDS_OTHER},
    {&TreeTexts::outlook_data, IDS_OUTLOOK_DATA},
    {&TreeTexts::other_databases, IDS_OTHER_DATABASES},
    {&TreeTexts::unknown_title, IDS_UNKNOWN},
    {&TreeTexts::documents_prefix, IDS_DOCUMENTS_FOLDER},
    {&TreeTexts::no_subject, IDS_NO_SUBJECT},
};

void LoadText(HINSTANCE instance, UINT id, TreeText& text) {
    if (::LoadStringW(instance, id, Wide(text), kTreeTextUnits) == 0) {
        text[0] = 0;
    }
}

// The part of the screen that the shell leaves to programs; without that shell, the parent's room.
RECT WorkArea(HWND host) {
    const HWND desktop = ::FindWindowW(L"DesktopExplorerWindow", nullptr);
    RECT area{};
    ::GetClientRect(desktop != nullptr ? desktop : ::GetParent(host), &area);
    return area;
}

void FillClientArea(HWND window, LPARAM size) {
    ::MoveWindow(window, 0, 0, LOWORD(size), HIWORD(size), TRUE);
}

// Holds back drawing while the items change.
class DrawingPause {
public:
    explicit DrawingPause(HWND window) : window_(window) {
        ::SendMessageW(window_, WM_SETREDRAW, FALSE, 0);
    }
    ~DrawingPause() {
        ::SendMessageW(window_, WM_SETREDRAW, TRUE, 0);
        ::InvalidateRect(window_, nullptr, TRUE);
    }
    DrawingPause(const DrawingPause&) = delete;
    DrawingPause& operator=(const DrawingPause&) = delete;

private:
    HWND window_;
};

}  // namespace

bool TreeWindow::RegisterTreeWindowClass(HINSTANCE instance) {
    instance_ = instance;
    WNDCLASSW window_class{};
    window_class.lpfnWndProc = WindowProcedure<kObjectPlace, TreeWindow, OnParentMessage>;
    window_class.cbWndExtra = sizeof(LONG);
    window_class.hInstance = instance;
    window_class.lpszClassName = kClassName;
    is_registered_ = ::RegisterClassW(&window_class) != 0;
    if (is_registered_) {
        painter_.CreateBoldFont();
        LoadTexts();
    }
    return is_registered_;
}

void TreeWindow::LoadTexts() {
    for (const TextRow& row : kTexts) {
        LoadText(instance_, row.id, texts_.*row.text);
    }
    for (UINT i = 0; i < 4; ++i) {
        LoadText(instance_, IDS_CONTACTS_DATABASE + i, texts_.database_names[i]);
        LoadText(instance_, IDS_CONTACTS + i, texts_.database_titles[i]);
    }
}

HWND TreeWindow::CreateTreeDialog(HWND parent, const RECT* rectangle) {
    if (!is_registered_ || host() != nullptr) {
        return host();
    }
    if (CreateModeless(instance_, IDD_TREE_HOST, parent) && !tree_view_) {
        Destroy();
    }
    if (host() != nullptr && rectangle != nullptr) {
        ::MoveWindow(host(), rectangle->left, rectangle->top, rectangle->right - rectangle->left,
                     rectangle->bottom - rectangle->top, TRUE);
    }
    return host();
}

void TreeWindow::DestroyTreeWindowClass() {
    Destroy();
    painter_.DeleteBoldFont();
    if (is_registered_) {
        ::UnregisterClassW(kClassName, instance_);
        is_registered_ = false;
    }
}

bool TreeWindow::BuildDifferenceTree(DifferenceEnumerator& enumerator, const TreeBuild& build) {
    if (tree_view() == nullptr) {
        return false;
    }
    painter_.UseBuild(build);
    const DrawingPause pause(tree_view());
    TreeView control(tree_view());
    return tolvenar::BuildDifferenceTree(control, texts_, enumerator, build) != 0;
}

void TreeWindow::Clear() {
    if (tree_view() != nullptr) {
        const DrawingPause pause(tree_view());
        TreeView(tree_view()).DeleteAllItems();
    }
}

INT_PTR TreeWindow::Dispatch(UINT message, WPARAM, LPARAM lparam) {
    switch (message) {
        case WM_INITDIALOG: return OnInit();
        case WM_SIZE: FillClientArea(Control(IDC_TREE_PARENT), lparam); return TRUE;
        case WM_SETFOCUS: FocusTree(); return TRUE;
        case WM_CLOSE: Destroy(); return TRUE;
        case WM_DESTROY: return OnHostDestroyed();
        default: return FALSE;
    }
}

// The focus stays where it is: FALSE.
INT_PTR TreeWindow::OnInit() {
    const RECT area = WorkArea(host());
    ::MoveWindow(host(), 0, 0, area.right, area.bottom, FALSE);
    ::ShowWindow(host(), SW_SHOW);
    const HWND parent = Control(IDC_TREE_PARENT);
    KeepObject(parent, kObjectPlace, this);
    CreateTreeView(parent);
    return FALSE;
}

void TreeWindow::CreateTreeView(HWND parent) {
    RECT area{};
    ::GetClientRect(parent, &area);
    tree_view_.Reset(::CreateWindowExW(0, WC_TREEVIEWW, L"", kTreeStyle, 0, 0, area.right,
                                       area.bottom, parent, nullptr, instance_, nullptr));
    painter_.Attach(tree_view());
    // The page's font: the control leaves as much room for a bold caption as its own font needs,
    // which is then as large as the one that draws it.
    const LRESULT font = ::SendMessageW(::GetParent(host()), WM_GETFONT, 0, 0);
    if (tree_view_ && font != 0) {
        ::SendMessageW(tree_view(), WM_SETFONT, static_cast<WPARAM>(font), FALSE);
    }
}

void TreeWindow::FocusTree() { ::SetFocus(tree_view()); }

INT_PTR TreeWindow::OnHostDestroyed() {
    Clear();
    tree_view_.Reset();
    painter_.Attach(nullptr);
    return TRUE;
}

LRESULT TreeWindow::OnParentMessage(TreeWindow& window, HWND parent, UINT message, WPARAM wparam,
                                    LPARAM lparam) {
    switch (message) {
        case WM_SETFOCUS: window.FocusTree(); return 0;
        case WM_SIZE: FillClientArea(window.tree_view(), lparam); return 0;
        case WM_NOTIFY: return window.OnNotify(lparam);
        case WM_DESTROY: window.painter_.RestoreFont(parent); return 0;
        default: return ::DefWindowProcW(parent, message, wparam, lparam);
    }
}

void TreeWindow::OnSelected(const NMTREEVIEWW& change) const {
    if (listener_ != nullptr) {
        const bool is_item = change.itemNew.hItem != nullptr;
        listener_->OnNodeSelected(
            is_item ? reinterpret_cast<const NodeRecord*>(change.itemNew.lParam) : nullptr);
    }
}

LRESULT TreeWindow::OnNotify(LPARAM lparam) {
    NMHDR* const header = NotificationOf(tree_view(), lparam);
    if (header == nullptr) {
        return 0;
    }
    switch (header->code) {
        case static_cast<UINT>(NM_CUSTOMDRAW):
            return painter_.OnCustomDraw(*reinterpret_cast<NMTVCUSTOMDRAW*>(header));
        case TVN_DELETEITEMW:
            FreeNodeRecord(reinterpret_cast<NodeRecord*>(
                reinterpret_cast<NMTREEVIEWW*>(header)->itemOld.lParam));
            return 0;
        case TVN_SELCHANGEDW: OnSelected(*reinterpret_cast<NMTREEVIEWW*>(header)); return 0;
        // Counts stand outside the items' own rectangles of text.
        case TVN_ITEMEXPANDEDW:
            ::InvalidateRect(tree_view(), nullptr, TRUE);
            ::UpdateWindow(tree_view());
            return 0;
        default: return 0;
    }
}

}  // namespace tolvenar
