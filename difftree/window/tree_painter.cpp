#include "difftree/window/tree_painter.h"

#include <string_view>

#include "platform/text.h"
#include "platform/window_dc.h"
#include "snapshot/text/text_buffer.h"

namespace tolvenar {
namespace {

constexpr int kBoldPoints = 9;
constexpr int kPointsPerInch = 72;
constexpr LONG kBoldWeight = 700;

const NodeRecord* NodeOf(const NMTVCUSTOMDRAW& draw) {
    return reinterpret_cast<const NodeRecord*>(draw.nmcd.lItemlParam);
}

int HorizontalScroll(HWND window) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_POS;
    return ::GetScrollInfo(window, SB_HORZ, &info) ? info.nPos : 0;
}

SIZE Measure(HDC dc, std::u16string_view text) {
    SIZE size{};
    ::GetTextExtentExPointW(dc, Wide(text.data()), static_cast<int>(text.size()), 0, nullptr,
                            nullptr, &size);
    return size;
}

// Draws texts one after the other, transparent, inside an item's rectangle.
class CountWriter {
public:
    CountWriter(HDC dc, const RECT& item, int x, int height)
        : dc_(dc), item_(item), x_(x), y_((item.top + item.bottom - height) / 2) {}

    void Draw(const char16_t* before, std::uint32_t count, char16_t behind) {
        TextBuffer<16> text;
        text.Append(before).AppendUnsigned(count).AppendUnit(behind);
        ::ExtTextOutW(dc_, x_, y_, ETO_CLIPPED, &item_, Wide(text.text()),
                      static_cast<UINT>(text.length()), nullptr);
        x_ += Measure(dc_, {text.text(), text.length()}).cx;
    }

private:
    HDC dc_;
    const RECT& item_;
    int x_;
    int y_;
};

}  // namespace

void TreePainter::CreateBoldFont() {
    const WindowDc screen(nullptr);
    LOGFONTW font{};
    font.lfHeight = -(kBoldPoints * ::GetDeviceCaps(screen.get(), LOGPIXELSY) / kPointsPerInch);
    font.lfWeight = kBoldWeight;
    font.lfCharSet = DEFAULT_CHARSET;
    ::wsprintfW(font.lfFaceName, L"Tahoma");
    bold_font_.Reset(::CreateFontIndirectW(&font));
}

void TreePainter::DeleteBoldFont() { bold_font_.Reset(); }

void TreePainter::Attach(HWND tree_view) {
    tree_view_ = tree_view;
    indent_ =
        tree_view == nullptr ? 0 : static_cast<int>(::SendMessageW(tree_view, TVM_GETINDENT, 0, 0));
}

void TreePainter::UseBuild(const TreeBuild& build) {
    options_ = build.options;
    styles_ = build.styles;
}

void TreePainter::RestoreFont(HWND window) {
    if (previous_font_ != nullptr) {
        const WindowDc dc(window);
        ::SelectObject(dc.get(), previous_font_);
        previous_font_ = nullptr;
    }
}

bool TreePainter::IsBold(const NodeRecord& node) const {
    return bold_font_ && StyleOf(styles_, node.flags).is_bold;
}

LRESULT TreePainter::OnCustomDraw(NMTVCUSTOMDRAW& draw) {
    switch (draw.nmcd.dwDrawStage) {
        case CDDS_PREPAINT: return CDRF_NOTIFYITEMDRAW;
        case CDDS_ITEMPREPAINT: return OnItemPrePaint(draw);
        case CDDS_ITEMPOSTPAINT: return OnItemPostPaint(draw);
        default: return CDRF_DODEFAULT;
    }
}

LRESULT TreePainter::OnItemPrePaint(NMTVCUSTOMDRAW& draw) {
    const NodeRecord* const node = NodeOf(draw);
    if (node == nullptr || (options_ & kTreeColours) == 0) {
        return CDRF_NOTIFYPOSTPAINT;
    }
    // The selected item always has the focus flag, also while another window has the focus.
    const UINT state = draw.nmcd.uItemState;
    if ((state & CDIS_FOCUS) != 0 && ::GetFocus() == tree_view_) {
        draw.clrText = ::GetSysColor(COLOR_HIGHLIGHTTEXT);
        draw.clrTextBk = ::GetSysColor(COLOR_HIGHLIGHT);
    } else if ((state & CDIS_SELECTED) != 0) {
        draw.clrText = ::GetSysColor(COLOR_INACTIVECAPTION);
        draw.clrTextBk = ::GetSysColor(COLOR_INACTIVECAPTIONTEXT);
    } else {
        draw.clrText = StyleOf(styles_, node->flags).colour;
        draw.clrTextBk = ::GetSysColor(COLOR_WINDOW);
    }
    if (!IsBold(*node)) {
        return CDRF_NOTIFYPOSTPAINT;
    }
    const HGDIOBJ previous = ::SelectObject(draw.nmcd.hdc, bold_font_.get());
    if (previous_font_ == nullptr) {
        previous_font_ = previous;
    }
    return CDRF_NEWFONT | CDRF_NOTIFYPOSTPAINT;
}

LRESULT TreePainter::OnItemPostPaint(const NMTVCUSTOMDRAW& draw) const {
    const NodeRecord* const node = NodeOf(draw);
    if (node == nullptr || node->caption == nullptr || node->group_mark == 0 ||
        (options_ & kTreeCounts) == 0) {
        return CDRF_DODEFAULT;
    }
    // The context comes with a font that is neither the tree's nor the bold one.
    const HDC dc = draw.nmcd.hdc;
    const bool is_bold = IsBold(*node);
    HGDIOBJ font = bold_font_.get();
    if (!is_bold) {
        font = reinterpret_cast<HGDIOBJ>(::SendMessageW(tree_view_, WM_GETFONT, 0, 0));
    }
    const HGDIOBJ previous =
        ::SelectObject(dc, font != nullptr ? font : ::GetStockObject(SYSTEM_FONT));
    DrawCounts(dc, *node, draw.nmcd.rc);
    ::SelectObject(dc, previous);
    return is_bold ? CDRF_NEWFONT : CDRF_DODEFAULT;
}

void TreePainter::DrawCounts(HDC dc, const NodeRecord& node, const RECT& item) const {
    const SIZE caption = Measure(dc, node.caption);
    const int x = (indent_ + 1) * (static_cast<int>(node.depth) + 1) -
                  HorizontalScroll(tree_view_) + item.left + caption.cx;
    const bool has_colours = (options_ & kTreeColours) != 0;
    const int mode = ::SetBkMode(dc, TRANSPARENT);
    const COLORREF colour = ::GetTextColor(dc);
    CountWriter writer(dc, item, x, caption.cy);
    struct Part {
        const char16_t* before;
        std::uint32_t count;
        char16_t behind;
        COLORREF colour;
    };
    const Part parts[] = {
        {u" (+", node.added, u';', styles_.added.colour},
        {u"\u00B1", node.both, u';', styles_.both.colour},
        {u"-", node.deleted, u')', styles_.deleted.colour},
    };
    for (const Part& part : parts) {
        if (has_colours) {
            ::SetTextColor(dc, part.colour);
        }
        writer.Draw(part.before, part.count, part.behind);
    }
    ::SetTextColor(dc, colour);
    ::SetBkMode(dc, mode);
}

}  // namespace tolvenar
