// Draws the items of the difference tree in the colours of their states, and the counts after the
// captions of categories and groups.
#pragma once

#include "platform/win32.h"

#include <commctrl.h>

#include "difftree/difference_tree.h"
#include "platform/unique_resource.h"

namespace tolvenar {

using UniqueFont = UniqueResource<HFONT, ::DeleteObject>;

struct TreePainter {
    HWND tree_view = nullptr;
    int indent = 0;                   // pixels between two depths
    UniqueFont bold_font;             // none: nothing is drawn bold
    HGDIOBJ previous_font = nullptr;  // of the drawing context, before the bold font came first
    std::uint32_t options = 0;        // of the build that is shown
    NodeStyles styles = kDefaultStyles;

    // 9 points for the screen's resolution.
    void CreateBoldFont();
    // The answer to the tree view's custom draw notification.
    LRESULT OnCustomDraw(NMTVCUSTOMDRAW& draw);

private:
    LRESULT OnItemPrePaint(NMTVCUSTOMDRAW& draw);
    LRESULT OnItemPostPaint(const NMTVCUSTOMDRAW& draw);
};

}  // namespace tolvenar
