// A tree view control as the model of the difference tree fills it.
#pragma once

#include "platform/win32.h"

#include "difftree/model/tree_control.h"

namespace tolvenar {

class TreeView final : public TreeControl {
public:
    explicit TreeView(HWND tree_view) : tree_view_(tree_view) {}

    void DeleteAllItems() override;
    TreeItem InsertItem(TreeItem parent, const ItemContent& content) override;
    void SetButton(TreeItem item, bool has_button) override;
    void Expand(TreeItem item) override;
    void ShowRoot(TreeItem root) override;
    void FoldCase(char16_t* text, std::size_t units) override;

private:
    HWND tree_view_;
};

// The item that has a relation (TVGN_*) to `item`; null for none.
HTREEITEM RelatedItem(HWND tree_view, UINT relation, HTREEITEM item);
inline HTREEITEM SelectedItem(HWND tree_view) {
    return RelatedItem(tree_view, TVGN_CARET, nullptr);
}
// The record behind an item; null for no item.
const NodeRecord* NodeOf(HWND tree_view, HTREEITEM item);

}  // namespace tolvenar
