#include "difftree/window/tree_view.h"

#include "platform/text.h"

namespace tolvenar {

HTREEITEM RelatedItem(HWND tree_view, UINT relation, HTREEITEM item) {
    return reinterpret_cast<HTREEITEM>(
        ::SendMessageW(tree_view, TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(item)));
}

const NodeRecord* NodeOf(HWND tree_view, HTREEITEM item) {
    TVITEMW asked{};
    asked.mask = TVIF_PARAM;
    asked.hItem = item;
    const bool is_known =
        ::SendMessageW(tree_view, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&asked)) != 0;
    return is_known ? reinterpret_cast<const NodeRecord*>(asked.lParam) : nullptr;
}

void TreeView::DeleteAllItems() {
    ::SendMessageW(tree_view_, TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
}

TreeItem TreeView::InsertItem(TreeItem parent, const ItemContent& content) {
    TVINSERTSTRUCTW insertion{};
    insertion.hParent = parent == nullptr ? TVI_ROOT : static_cast<HTREEITEM>(parent);
    insertion.hInsertAfter = TVI_LAST;
    TVITEMW& item = insertion.item;
    item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_CHILDREN | TVIF_STATE;
    item.pszText = const_cast<wchar_t*>(Wide(content.text));  // copied by the control
    item.lParam = reinterpret_cast<LPARAM>(content.record);
    item.cChildren = content.has_button ? 1 : 0;
    item.stateMask = TVIS_BOLD;
    item.state = content.is_bold ? TVIS_BOLD : 0;
    return reinterpret_cast<TreeItem>(
        ::SendMessageW(tree_view_, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insertion)));
}

void TreeView::SetButton(TreeItem item, bool has_button) {
    TVITEMW change{};
    change.mask = TVIF_CHILDREN;
    change.hItem = static_cast<HTREEITEM>(item);
    change.cChildren = has_button ? 1 : 0;
    ::SendMessageW(tree_view_, TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&change));
}

void TreeView::Expand(TreeItem item) {
    ::SendMessageW(tree_view_, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(item));
}

void TreeView::ShowRoot(TreeItem root) {
    Expand(root);
    ::SendMessageW(tree_view_, TVM_SELECTITEM, TVGN_FIRSTVISIBLE, reinterpret_cast<LPARAM>(root));
}

void TreeView::FoldCase(char16_t* text, std::size_t units) {
    ::CharLowerBuffW(Wide(text), static_cast<DWORD>(units));
}

}  // namespace tolvenar
