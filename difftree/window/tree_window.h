// The window of the difference tree: a child dialog with a control of a class of its own, which
// receives what the tree view in it reports, draws the items and frees their records.
#pragma once

#include "platform/win32.h"

#include "difftree/model/difference_tree.h"
#include "difftree/window/tree_painter.h"
#include "platform/dialog.h"
#include "platform/unique_resource.h"

namespace tolvenar {

// Who hears which node the user selects; null for none.
class TreeListener {
public:
    virtual void OnNodeSelected(const NodeRecord* node) = 0;

protected:
    ~TreeListener() = default;
};

class TreeWindow final : private Dialog {
public:
    ~TreeWindow() { DestroyTreeWindowClass(); }

    // Registers the class, makes the bold font and loads the texts. False when there is no class:
    // the page then has no tree.
    bool RegisterTreeWindowClass(HINSTANCE instance);
    // May be null.
    void SetListener(TreeListener* listener) { listener_ = listener; }
    // Makes the child dialog, at `rectangle` of the parent's client area when one is given. Null
    // when it or its tree view cannot be made.
    HWND CreateTreeDialog(HWND parent, const RECT* rectangle);
    // Destroys the dialog and the class and deletes the font. Allowed at any time.
    void DestroyTreeWindowClass();

    // Fills the tree. False when there is no tree, the enumerator aborted or memory was short.
    bool BuildDifferenceTree(DifferenceEnumerator& enumerator, const TreeBuild& build);
    // Deletes every item.
    void Clear();

    HWND host() const { return window(); }  // null when there is none
    HWND tree_view() const { return tree_view_.get(); }

private:
    INT_PTR Dispatch(UINT message, WPARAM wparam, LPARAM lparam) override;
    static LRESULT OnParentMessage(TreeWindow& window, HWND parent, UINT message, WPARAM wparam,
                                   LPARAM lparam);
    INT_PTR OnInit();
    INT_PTR OnHostDestroyed();
    void CreateTreeView(HWND parent);
    void FocusTree();
    LRESULT OnNotify(LPARAM lparam);
    void OnSelected(const NMTREEVIEWW& change) const;
    void LoadTexts();

    HINSTANCE instance_ = nullptr;
    bool is_registered_ = false;
    UniqueWindow tree_view_;
    TreePainter painter_;
    TreeTexts texts_{};
    TreeListener* listener_ = nullptr;
};

}  // namespace tolvenar
