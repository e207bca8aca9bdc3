// Draws the items of the difference tree in the colours of their states, and the counts after the
// captions of categories and groups.
#pragma once

#include "platform/win32.h"

#include "difftree/model/difference_tree.h"
#include "platform/unique_resource.h"

namespace tolvenar {

class TreePainter {
public:
    // 9 points for the screen's resolution.
    void CreateBoldFont();
    void DeleteBoldFont();
    // The tree view to draw in, or null when it is gone.
    void Attach(HWND tree_view);
    void UseBuild(const TreeBuild& build);
    HWND tree_view() const { return tree_view_; }

    // The answer to the tree view's custom draw notification.
    LRESULT OnCustomDraw(NMTVCUSTOMDRAW& draw);
    // Puts the font that came first back into the drawing context of a window that goes.
    void RestoreFont(HWND window);

private:
    LRESULT OnItemPrePaint(NMTVCUSTOMDRAW& draw);
    LRESULT OnItemPostPaint(const NMTVCUSTOMDRAW& draw) const;
    bool IsBold(const NodeRecord& node) const;
    void DrawCounts(HDC dc, const NodeRecord& node, const RECT& item) const;

    HWND tree_view_ = nullptr;
    int indent_ = 0;                   // pixels between two depths
    UniqueGdiObject bold_font_;        // none: nothing is drawn bold
    HGDIOBJ previous_font_ = nullptr;  // of the drawing context before the bold font came first
    std::uint32_t options_ = 0;        // of the build that is shown
    NodeStyles styles_ = kDefaultStyles;
};

}  // namespace tolvenar
