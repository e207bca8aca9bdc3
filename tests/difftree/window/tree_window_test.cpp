// The difference tree in a real tree view, item by item, and what it owns.
#include <functional>

#include "simulator/gate/counters.h"
#include "tests/difftree/window/counted_memory.h"
#include "tests/difftree/window/tree_window_fixture.h"

namespace tolvenar {
namespace {

using tests::MemoryCount;

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

class TreeWindowTest : public TreeWindowFixture {
protected:
    long Gauge(sim::Gauge which) {
        return sim::CountersByProcess(device().sim()).back().gauge(which);
    }
    std::vector<long> Held() {
        Pump();
        return {Gauge(sim::Gauge::kHandles), Gauge(sim::Gauge::kWindows),
                Gauge(sim::Gauge::kGdiObjects), MemoryCount::Blocks()};
    }
    // Each item's record and the record's caption.
    void ExpectOwned(const char* what) {
        long bytes = 0;
        const std::vector<ShownItem> items = Items();
        for (const ShownItem& item : items) {
            const std::u16string caption = item.record->caption;
            bytes += static_cast<long>(sizeof(NodeRecord) + (caption.size() + 1) * 2);
        }
        EXPECT_EQ(2 * static_cast<long>(items.size()), MemoryCount::Blocks()) << what;
        EXPECT_EQ(bytes, MemoryCount::Bytes()) << what;
    }
    void ExpectNothingOwned() {
        EXPECT_EQ(0, MemoryCount::Blocks());
        EXPECT_EQ(0, MemoryCount::Bytes());
    }
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

TEST_F(TreeWindowTest, AHundredBuildsLeaveNothingBehind) {
    Create();
    for (int i = 0; i < 100; ++i) {
        build_.advanced_view = i % 2 == 0;
        const bool aborts = i % 3 == 0;
        ASSERT_EQ(aborts ? 0 : 1, Build(SomeObjects(), aborts ? DifferenceEnumerator::kAbort
                                                              : DifferenceEnumerator::kEnd));
        ExpectOwned(aborts ? "aborted" : "whole");
    }
    window_.Clear();
    ExpectNothingOwned();
}

TEST_F(TreeWindowTest, RecordsGoWithTheWindow) {
    for (const bool by_parent : {false, true}) {
        Create();
        ASSERT_EQ(1, Build(SomeObjects()));
        if (by_parent) {
            ::DestroyWindow(parent_);
            EXPECT_EQ(nullptr, window_.host());
        } else {
            ::SendMessageW(window_.host(), WM_CLOSE, 0, 0);
        }
        EXPECT_EQ(nullptr, window_.tree_view());
        ExpectNothingOwned();
    }
    EXPECT_EQ(0, Build(SomeObjects()));  // no tree
}

TEST_F(TreeWindowTest, AControlThatIsFullKeepsWhatItHas) {
    Create();
    build_.advanced_view = true;
    for (int n = 1; n <= 12; ++n) {
        device().Fault("SendMessageW", n, 1000, 8, ", 4402, ");  // TVM_INSERTITEMW
        EXPECT_EQ(0, Build(SomeObjects()));
        device().EndFaults();
        EXPECT_EQ(n - 1, Ask(TVM_GETCOUNT));
        ExpectOwned("a part");
    }
}

TEST_F(TreeWindowTest, ClassAndFontComeAndGoWithoutLeaks) {
    const std::vector<long> before = Held();
    for (int i = 0; i < 30; ++i) {
        window_.DestroyTreeWindowClass();
        window_.DestroyTreeWindowClass();  // allowed
        ASSERT_TRUE(window_.RegisterTreeWindowClass(::GetModuleHandleW(nullptr)));
        Create();
        ASSERT_EQ(1, Build(SomeObjects()));
        window_.DestroyTreeWindowClass();
        ExpectNothingOwned();
        ASSERT_TRUE(window_.RegisterTreeWindowClass(::GetModuleHandleW(nullptr)));
    }
    EXPECT_EQ(before, Held());
}

TEST_F(TreeWindowTest, TheClassIsGoneAfterwards) {
    WNDCLASSW found{};
    const HINSTANCE instance = ::GetModuleHandleW(nullptr);
    EXPECT_TRUE(::GetClassInfoW(instance, L"CustomParentTreeWindowClass", &found));
    EXPECT_EQ(4, found.cbWndExtra);
    EXPECT_EQ(0u, found.style);
    EXPECT_EQ(nullptr, found.hbrBackground);
    EXPECT_EQ(nullptr, found.hCursor);
    EXPECT_EQ(nullptr, found.hIcon);
    Create();
    window_.DestroyTreeWindowClass();
    EXPECT_FALSE(::GetClassInfoW(instance, L"CustomParentTreeWindowClass", &found));
}

TEST_F(TreeWindowTest, TheTreeViewHasItsStylesAndFillsItsParent) {
    Create();
    const HWND tree = window_.tree_view();
    EXPECT_EQ(0x50810037, ::GetWindowLongW(tree, GWL_STYLE) & ~(WS_HSCROLL | WS_VSCROLL));
    RECT host{};
    RECT area{};
    ::GetClientRect(window_.host(), &host);
    EXPECT_EQ(kWidth, host.right);
    EXPECT_EQ(kHeight, host.bottom);
    ::MoveWindow(window_.host(), 0, 0, 300, 100, TRUE);
    ::GetWindowRect(tree, &area);
    EXPECT_EQ(300, area.right - area.left);
    EXPECT_EQ(100, area.bottom - area.top);
    ::SetFocus(window_.host());
    EXPECT_EQ(tree, ::GetFocus());
    ::SetFocus(::GetParent(tree));
    EXPECT_EQ(tree, ::GetFocus());
}

TEST_F(TreeWindowTest, WithoutATreeViewNoHostIsLeft) {
    const std::vector<long> before = Held();
    device().Fault("CreateWindowExW", 1, 1, 8, "SysTreeView32");
    const RECT place{0, 0, kWidth, kHeight};
    EXPECT_EQ(nullptr, window_.CreateTreeDialog(parent_, &place));
    device().EndFaults();
    EXPECT_EQ(nullptr, window_.host());
    EXPECT_EQ(nullptr, ::GetWindow(parent_, GW_CHILD));
    EXPECT_EQ(before, Held());
    EXPECT_EQ(0, Build(SomeObjects()));
    Create();  // it may be tried again
    EXPECT_EQ(1, Build(SomeObjects()));
}

TEST_F(TreeWindowTest, WithoutAClassThereIsNoTree) {
    window_.DestroyTreeWindowClass();
    device().Fault("RegisterClassW", 1, 1, 8);
    EXPECT_FALSE(window_.RegisterTreeWindowClass(::GetModuleHandleW(nullptr)));
    EXPECT_EQ(nullptr, window_.CreateTreeDialog(parent_, nullptr));
    window_.Clear();
    EXPECT_EQ(0, Build(SomeObjects()));
}

TEST_F(TreeWindowTest, WithoutARectangleItHasTheRoomOfTheShellsDesktop) {
    ASSERT_NE(nullptr, window_.CreateTreeDialog(parent_, nullptr));
    RECT desktop{};
    RECT host{};
    ::GetClientRect(::FindWindowW(L"DesktopExplorerWindow", nullptr), &desktop);
    ::GetWindowRect(window_.host(), &host);
    EXPECT_EQ(desktop.right, host.right - host.left);
    EXPECT_EQ(desktop.bottom, host.bottom - host.top);
}

TEST_F(TreeWindowTest, WithoutThatDesktopItHasTheRoomOfItsParent) {
    device().Fault("FindWindowW", 1, 1, 2, "DesktopExplorerWindow");
    ASSERT_NE(nullptr, window_.CreateTreeDialog(parent_, nullptr));
    RECT host{};
    ::GetWindowRect(window_.host(), &host);
    EXPECT_EQ(kWidth, host.right - host.left);
    EXPECT_EQ(kHeight, host.bottom - host.top);
}

TEST_F(TreeWindowTest, ABuildShowsItsRootAtTheTop) {
    Create();
    device().Command("trace on");
    ASSERT_EQ(1, Build(SomeObjects()));
    const std::string root = std::to_string(reinterpret_cast<LPARAM>(Next(TVGN_ROOT, nullptr)));
    // TVM_SELECTITEM with TVGN_FIRSTVISIBLE.
    EXPECT_NE(std::string::npos,
              device().Command("trace show SendMessageW").find(", 4363, 5, " + root + '"'));
}

}  // namespace
}  // namespace tolvenar
