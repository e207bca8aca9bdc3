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

}  // namespace tolvenar
