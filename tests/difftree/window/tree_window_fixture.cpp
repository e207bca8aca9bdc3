#include "tests/difftree/window/tree_window_fixture.h"

#include "platform/text.h"
#include "tests/difftree/window/counted_memory.h"

namespace tolvenar {
namespace {

constexpr int kTextUnits = 300;

COLORREF Pixel(const sim::windows::Picture& picture, LONG x, LONG y) {
    const std::size_t place =
        static_cast<std::size_t>(y) * picture.width + static_cast<std::size_t>(x);
    const std::uint8_t* at = &picture.rgb[place * 3];
    return RGB(at[0], at[1], at[2]);
}

}  // namespace

void TreeWindowFixture::SetUp() {
    parent_ = ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, kWidth, kHeight,
                                nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(nullptr, parent_);
    ASSERT_TRUE(window_.RegisterTreeWindowClass(::GetModuleHandleW(nullptr)));
}

void TreeWindowFixture::TearDown() {
    window_.DestroyTreeWindowClass();
    ::DestroyWindow(parent_);
    Pump();
    DeviceTest::TearDown();
}

void TreeWindowFixture::Create(int width) {
    const RECT place{0, 0, width, kHeight};
    ASSERT_NE(nullptr, window_.CreateTreeDialog(parent_, &place));
}

int TreeWindowFixture::Build(const std::vector<FakeObject>& objects, int end) {
    FakeEnumerator enumerator(objects, end);
    const tests::MemoryCount count;
    return window_.BuildDifferenceTree(enumerator, build_) ? 1 : 0;
}

void TreeWindowFixture::Pump() {
    MSG message;
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        ::DispatchMessageW(&message);
    }
}

LRESULT TreeWindowFixture::Ask(UINT message, WPARAM wparam, LPARAM lparam) {
    return ::SendMessageW(window_.tree_view(), message, wparam, lparam);
}

HTREEITEM TreeWindowFixture::Next(WPARAM relation, HTREEITEM item) {
    return reinterpret_cast<HTREEITEM>(
        Ask(TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(item)));
}

ShownItem TreeWindowFixture::Item(HTREEITEM handle) {
    wchar_t text[kTextUnits] = L"";
    TVITEMW item{};
    item.mask = TVIF_TEXT | TVIF_STATE | TVIF_CHILDREN | TVIF_PARAM;
    item.hItem = handle;
    item.stateMask = TVIS_BOLD;
    item.pszText = text;
    item.cchTextMax = kTextUnits;
    EXPECT_TRUE(Ask(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)));
    return {handle, Utf16(text), (item.state & TVIS_BOLD) != 0, item.cChildren,
            reinterpret_cast<const NodeRecord*>(item.lParam)};
}

void TreeWindowFixture::AddItems(HTREEITEM first, std::vector<ShownItem>& items) {
    for (HTREEITEM item = first; item != nullptr; item = Next(TVGN_NEXT, item)) {
        items.push_back(Item(item));
        AddItems(Next(TVGN_CHILD, item), items);
    }
}

std::vector<ShownItem> TreeWindowFixture::Items() {
    std::vector<ShownItem> items;
    AddItems(Next(TVGN_ROOT, nullptr), items);
    return items;
}

HTREEITEM TreeWindowFixture::Find(const std::u16string& text) {
    for (const ShownItem& item : Items()) {
        if (item.text == text) {
            return item.handle;
        }
    }
    ADD_FAILURE() << "no such item";
    return nullptr;
}

void TreeWindowFixture::Expand(const std::u16string& text) {
    Ask(TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(Find(text)));
}

void TreeWindowFixture::Choose(const std::u16string& text) {
    Ask(TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(Find(text)));
}

RECT TreeWindowFixture::RowOnScreen(const std::u16string& text, bool text_alone) {
    RECT row{};
    *reinterpret_cast<HTREEITEM*>(&row) = Find(text);
    EXPECT_TRUE(Ask(TVM_GETITEMRECT, text_alone ? TRUE : FALSE, reinterpret_cast<LPARAM>(&row)));
    POINT corner{row.left, row.top};
    ::ClientToScreen(window_.tree_view(), &corner);
    return {corner.x, corner.y, corner.x + row.right - row.left, corner.y + row.bottom - row.top};
}

sim::windows::Picture TreeWindowFixture::Screen() {
    Pump();
    ::UpdateWindow(window_.tree_view());
    Pump();
    return sim::windows::TakeScreenshot(device().sim());
}

ColourSpan TreeWindowFixture::Columns(const sim::windows::Picture& picture, const RECT& row,
                                      COLORREF colour) {
    ColourSpan span{-1, -1, 0};
    for (LONG x = row.left; x < row.right; ++x) {
        for (LONG y = row.top; y < row.bottom; ++y) {
            if (Pixel(picture, x, y) == colour) {
                span.first = span.first < 0 ? x - row.left : span.first;
                span.last = x - row.left;
                ++span.pixels;
            }
        }
    }
    return span;
}

}  // namespace tolvenar
