// The difference tree in a real tree view, on the device's screen.
#include "difftree/tree_window.h"

#include <functional>
#include <gtest/gtest.h>

#include "platform/text.h"
#include "res/resource.h"
#include "simulator/gate/counters.h"
#include "simulator/windows/screenshot.h"
#include "tests/support/device_test.h"
#include "tests/support/fake_tree.h"

namespace tolvenar {
namespace {

constexpr int kWidth = 400;
constexpr int kHeight = 200;
constexpr COLORREF kBlue = RGB(0, 0, 255);
constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kGrey = RGB(128, 128, 128);

struct ShownItem {
    HTREEITEM handle;
    std::u16string text;
    bool is_bold;
    int buttons;
    const NodeRecord* record;
};

std::vector<FakeObject> SomeObjects() {
    FakeObject directory{ObjectType::kRegistryValue, u"Software\\Apps\\Acme Notes\u00FFInstlDir"};
    directory.value = u"\\Program Files\\Notes";
    return {
        {ObjectType::kFile, u"\\leaf.txt", JF_DELETE},
        {ObjectType::kFile, u"\\My Documents\\a.doc"},
        {ObjectType::kFile, u"\\my documents\\A.DOC", JF_DELETE},
        {ObjectType::kFile, u"\\\u041F\u0430\u043F\u043A\u0430\\x"},
        {ObjectType::kFile, u"\\\u041F\u0410\u041F\u041A\u0410\\y"},
        directory,
        {ObjectType::kRegistryValue, u"Software\\Apps\\Acme Notes\u00FFInstl"},
        {ObjectType::kRegistryKey, u"Software\\Gone", JF_DELETE},
        {ObjectType::kDatabase, u"Contacts Database"},
        {ObjectType::kDatabaseRecord, u"Contacts Database", JF_ADD, 5, 0, {{0x4013001F, u"Ann"}}},
        {ObjectType::kDatabaseRecord, u"Notes", JF_DELETE, 77}};
}

class TreeWindowTest : public tests::DeviceTest {
protected:
    void SetUp() override {
        parent_ = ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, kWidth, kHeight,
                                    nullptr, nullptr, nullptr, nullptr);
        ASSERT_NE(nullptr, parent_);
        ASSERT_TRUE(window_.RegisterTreeWindowClass(::GetModuleHandleW(nullptr)));
    }
    void TearDown() override {
        window_.DestroyTreeWindowClass();
        ::DestroyWindow(parent_);
        Pump();
        DeviceTest::TearDown();
    }
    void Create() {
        const RECT place{0, 0, kWidth, kHeight};
        ASSERT_NE(nullptr, window_.CreateTreeDialog(parent_, &place));
    }
    int Build(const std::vector<FakeObject>& objects) {
        FakeEnumerator enumerator(objects);
        return window_.BuildDifferenceTree(enumerator, build_);
    }
    static void Pump() {
        MSG message;
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            ::DispatchMessageW(&message);
        }
    }
    LRESULT Ask(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) {
        return ::SendMessageW(window_.tree_view(), message, wparam, lparam);
    }
    HTREEITEM Next(WPARAM relation, HTREEITEM item) {
        return reinterpret_cast<HTREEITEM>(
            Ask(TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(item)));
    }
    ShownItem Item(HTREEITEM handle) {
        wchar_t text[kCaptionUnitsOfTest] = L"";
        TVITEMW item{};
        item.mask = TVIF_TEXT | TVIF_STATE | TVIF_CHILDREN | TVIF_PARAM;
        item.hItem = handle;
        item.stateMask = TVIS_BOLD;
        item.pszText = text;
        item.cchTextMax = kCaptionUnitsOfTest;
        EXPECT_TRUE(Ask(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)));
        return {handle, Utf16(text), (item.state & TVIS_BOLD) != 0, item.cChildren,
                reinterpret_cast<const NodeRecord*>(item.lParam)};
    }
    void AddItems(HTREEITEM first, std::vector<ShownItem>& items) {
        for (HTREEITEM item = first; item != nullptr; item = Next(TVGN_NEXT, item)) {
            items.push_back(Item(item));
            AddItems(Next(TVGN_CHILD, item), items);
        }
    }
    std::vector<ShownItem> Items() {
        std::vector<ShownItem> items;
        AddItems(Next(TVGN_ROOT, nullptr), items);
        return items;
    }
    HTREEITEM Find(const std::u16string& text) {
        for (const ShownItem& item : Items()) {
            if (item.text == text) {
                return item.handle;
            }
        }
        ADD_FAILURE() << "no such item";
        return nullptr;
    }
    void Expand(const std::u16string& text) {
        Ask(TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(Find(text)));
    }

    // An item's row of the tree on the screen, as wide as the tree.
    RECT RowOnScreen(const std::u16string& text) {
        RECT row{};
        *reinterpret_cast<HTREEITEM*>(&row) = Find(text);
        EXPECT_TRUE(Ask(TVM_GETITEMRECT, FALSE, reinterpret_cast<LPARAM>(&row)));
        POINT corner{row.left, row.top};
        ::ClientToScreen(window_.tree_view(), &corner);
        return {corner.x, corner.y, corner.x + row.right - row.left,
                corner.y + row.bottom - row.top};
    }
    sim::windows::Picture Screen() {
        Pump();
        ::UpdateWindow(window_.tree_view());
        Pump();
        return sim::windows::TakeScreenshot(device().sim());
    }
    static COLORREF Pixel(const sim::windows::Picture& picture, LONG x, LONG y) {
        const std::uint8_t* at =
            &picture
                 .rgb[(static_cast<std::size_t>(y) * picture.width + static_cast<std::size_t>(x)) *
                      3];
        return RGB(at[0], at[1], at[2]);
    }
    // Columns of a row in which a color stands, from the left edge of the row; -1 for none.
    struct Span {
        LONG first;
        LONG last;
        int pixels;
    };
    static Span Columns(const sim::windows::Picture& picture, const RECT& row, COLORREF color) {
        Span span{-1, -1, 0};
        for (LONG x = row.left; x < row.right; ++x) {
            for (LONG y = row.top; y < row.bottom; ++y) {
                if (Pixel(picture, x, y) == color) {
                    span.first = span.first < 0 ? x - row.left : span.first;
                    span.last = x - row.left;
                    ++span.pixels;
                }
            }
        }
        return span;
    }

    static constexpr int kCaptionUnitsOfTest = 300;
    HWND parent_ = nullptr;
    TreeWindow window_;
    TreeBuild build_{};
};

TEST_F(TreeWindowTest, TheTreeViewHoldsWhatTheModelSays) {
    Create();
    for (const bool advanced : {false, true}) {
        build_.advanced_view = advanced;
        ASSERT_EQ(1, Build(SomeObjects()));
        FakeTree expected;
        FakeEnumerator enumerator(SomeObjects());
        ASSERT_EQ(1, BuildDifferenceTree(expected, EnglishTexts(), enumerator, build_));
        std::vector<std::pair<const FakeItem*, std::size_t>> model;
        const std::function<void(const FakeItem&, std::size_t)> add = [&](const FakeItem& item,
                                                                          std::size_t depth) {
            model.emplace_back(&item, depth);
            for (const FakeItem* child : item.children) {
                add(*child, depth + 1);
            }
        };
        add(*expected.root(), 0);

        const std::vector<ShownItem> items = Items();
        ASSERT_EQ(model.size(), items.size());
        for (std::size_t i = 0; i < items.size(); ++i) {
            const FakeItem& wanted = *model[i].first;
            EXPECT_EQ(wanted.text, items[i].text);
            EXPECT_EQ(wanted.is_bold, items[i].is_bold) << i;
            EXPECT_EQ(wanted.has_button ? 1 : 0, items[i].buttons) << i;
            EXPECT_EQ(model[i].second, items[i].record->depth) << i;
            EXPECT_EQ(items[i].handle, static_cast<HTREEITEM>(items[i].record->item));
            EXPECT_EQ(wanted.record->group_mark, items[i].record->group_mark);
            EXPECT_EQ(wanted.record->added, items[i].record->added);
        }
    }
}

}  // namespace
}  // namespace tolvenar
