// The difference tree's room on the restore page.
#pragma once

#include "app/operations/application.h"
#include "difftree/window/tree_search.h"
#include "difftree/window/tree_window.h"

namespace tolvenar {

class DifferencePanel {
public:
    // Makes the tree in the place of `place_holder`, a control of the page. Without a tree the page
    // goes on as it is. `listener` hears what the user selects.
    void Create(HINSTANCE instance, HWND place_holder, TreeListener& listener);
    // Before the page goes: the tree's window class goes after its windows.
    void Destroy() { tree_.DestroyTreeWindowClass(); }
    // Shows what the difference list of `engine` holds, below this caption; an empty one leaves the
    // tree its own. With `opens_branches` every item can be seen at once. False when the tree shows
    // less than the list holds, but for items of another kind than `shown_kind` (kShowAll: none is
    // left out).
    bool Build(Engine& engine, bool advanced_view, const wchar_t* caption, bool opens_branches,
               std::uint32_t shown_kind);
    const TreeCounts& counts() const { return counts_; }
    void Clear() { tree_.Clear(); }
    // A character that was typed in the tree looks for an item. False for another window's.
    bool TakesCharacter(const MSG& message);
    // The node of the selected item; null when none is.
    const NodeRecord* SelectedNode() const;
    // Nothing while the page shows no tree.
    void Focus();
    void FindNext() { search_.FindNext(tree_.tree_view()); }
    // Follows the place holder, which was moved, shown or hidden.
    void OnLayout(bool is_shown);

private:
    RECT Place() const;

    HWND place_holder_ = nullptr;
    TreeWindow tree_;
    TreeSearch search_;
    TreeCounts counts_;
};

}  // namespace tolvenar
