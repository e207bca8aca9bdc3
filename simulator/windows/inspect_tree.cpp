#include "simulator/windows/inspect_tree.h"

#include <algorithm>
#include <commctrl.h>

#include "simulator/store/utf8.h"

namespace sim::windows {
namespace {

constexpr int kMaxItemUnits = 512;

HTREEITEM Next(HWND tree, UINT relation, HTREEITEM from) {
    return reinterpret_cast<HTREEITEM>(
        Ask(tree, TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(from)));
}

struct RawItem {
    TVITEMW item{};
    wchar_t text[kMaxItemUnits] = L"";
};

void Read(HWND tree, HTREEITEM handle, RawItem& raw) {
    raw.item.mask = TVIF_TEXT | TVIF_STATE | TVIF_IMAGE | TVIF_PARAM | TVIF_HANDLE;
    raw.item.hItem = handle;
    raw.item.stateMask = 0xFFFFFFFF;
    raw.item.pszText = raw.text;
    raw.item.cchTextMax = kMaxItemUnits;
    Ask(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&raw.item));
}

std::string TextOf(HWND tree, HTREEITEM handle) {
    RawItem raw;
    Read(tree, handle, raw);
    return Utf8(raw.item.pszText);
}

COLORREF ViewColor(HWND tree, UINT message, int system_color) {
    const auto color = static_cast<COLORREF>(Ask(tree, message));
    return color == CLR_NONE || color == CLR_DEFAULT ? ::GetSysColor(system_color) : color;
}

// Asks the parent how it would draw items, on a device context that is drawn nowhere.
class CustomDraw {
public:
    explicit CustomDraw(HWND tree) : tree_(tree), dc_(::CreateCompatibleDC(nullptr)) {
        font_ = reinterpret_cast<HGDIOBJ>(Ask(tree, WM_GETFONT));
        previous_ =
            font_ != nullptr ? ::SelectObject(dc_, font_) : ::GetCurrentObject(dc_, OBJ_FONT);
        per_item_ = (Notify(CDDS_PREPAINT, nullptr) & CDRF_NOTIFYITEMDRAW) != 0;
    }
    ~CustomDraw() {
        ::SelectObject(dc_, previous_);
        ::DeleteDC(dc_);
    }
    CustomDraw(const CustomDraw&) = delete;
    CustomDraw& operator=(const CustomDraw&) = delete;

    void Fill(const RawItem& raw, TreeItem& out) {
        draw_.clrText = ViewColor(tree_, TVM_GETTEXTCOLOR, COLOR_WINDOWTEXT);
        draw_.clrTextBk = ViewColor(tree_, TVM_GETBKCOLOR, COLOR_WINDOW);
        if (font_ != nullptr) {
            ::SelectObject(dc_, font_);
        }
        if (per_item_) {
            Notify(CDDS_ITEMPREPAINT, &raw.item);
        }
        LOGFONTW font{};
        ::GetObjectW(::GetCurrentObject(dc_, OBJ_FONT), sizeof font, &font);
        out.text_color = draw_.clrText;
        out.back_color = draw_.clrTextBk;
        out.bold = font.lfWeight >= FW_BOLD;
    }

private:
    LRESULT Notify(DWORD stage, const TVITEMW* item) {
        draw_.nmcd.hdr = {tree_, static_cast<UINT_PTR>(::GetDlgCtrlID(tree_)),
                          static_cast<UINT>(NM_CUSTOMDRAW)};
        draw_.nmcd.dwDrawStage = stage;
        draw_.nmcd.hdc = dc_;
        if (item != nullptr) {
            draw_.nmcd.dwItemSpec = reinterpret_cast<DWORD_PTR>(item->hItem);
            draw_.nmcd.lItemlParam = item->lParam;
            draw_.nmcd.uItemState = (item->state & TVIS_SELECTED) != 0 ? CDIS_SELECTED : 0;
        }
        return Ask(::GetParent(tree_), WM_NOTIFY, draw_.nmcd.hdr.idFrom,
                   reinterpret_cast<LPARAM>(&draw_));
    }

    HWND tree_;
    HDC dc_;
    HGDIOBJ font_;
    HGDIOBJ previous_;
    NMTVCUSTOMDRAW draw_{};
    bool per_item_;
};

std::vector<TreeItem> ItemsFrom(HWND tree, HTREEITEM first, CustomDraw& draw) {
    std::vector<TreeItem> items;
    for (HTREEITEM at = first; at != nullptr; at = Next(tree, TVGN_NEXT, at)) {
        RawItem raw;
        Read(tree, at, raw);
        TreeItem item;
        item.text = Utf8(raw.item.pszText);
        item.state = raw.item.state;
        item.expanded = (raw.item.state & TVIS_EXPANDED) != 0;
        item.selected = (raw.item.state & TVIS_SELECTED) != 0;
        item.image = raw.item.iImage;
        draw.Fill(raw, item);
        item.children = ItemsFrom(tree, Next(tree, TVGN_CHILD, at), draw);
        items.push_back(std::move(item));
    }
    return items;
}

}  // namespace

std::vector<TreeItem> TreeItems(HWND tree) {
    CustomDraw draw(tree);
    return ItemsFrom(tree, Next(tree, TVGN_ROOT, nullptr), draw);
}

void* FindTreeItem(HWND tree, const std::string& path) {
    HTREEITEM at = nullptr;
    for (std::size_t begin = 0; begin <= path.size();) {
        const std::size_t end = std::min(path.find('|', begin), path.size());
        const std::string name = path.substr(begin, end - begin);
        at = at == nullptr ? Next(tree, TVGN_ROOT, nullptr) : Next(tree, TVGN_CHILD, at);
        while (at != nullptr && TextOf(tree, at) != name) {
            at = Next(tree, TVGN_NEXT, at);
        }
        if (at == nullptr) {
            return nullptr;
        }
        begin = end + 1;
    }
    return at;
}

bool SelectTreeItem(HWND tree, const std::string& path) {
    void* item = FindTreeItem(tree, path);
    return item != nullptr &&
           Ask(tree, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(item)) != 0;
}

}  // namespace sim::windows
