// The window of the difference tree on a device's screen, filled with what a test says.
#pragma once

#include "platform/win32.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "difftree/window/tree_window.h"
#include "simulator/windows/screenshot.h"
#include "tests/support/device_test.h"
#include "tests/support/fake_tree.h"

namespace tolvenar {

constexpr COLORREF kBlue = RGB(0, 0, 255);
constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kGrey = RGB(128, 128, 128);
constexpr COLORREF kBlack = RGB(0, 0, 0);

struct ShownItem {
    HTREEITEM handle;
    std::u16string text;
    bool is_bold;
    int buttons;
    const NodeRecord* record;
};

// Columns of a row of the tree in which a colour stands, from the left edge of the row.
struct ColourSpan {
    LONG first;  // -1 for none
    LONG last;
    int pixels;
};

class TreeWindowFixture : public tests::DeviceTest {
protected:
    static constexpr int kWidth = 400;
    static constexpr int kHeight = 200;

    void SetUp() override;
    void TearDown() override;
    void Create(int width = kWidth);
    // What it allocates is counted.
    int Build(const std::vector<FakeObject>& objects, int end = DifferenceEnumerator::kEndOfList);
    static void Pump();

    LRESULT Ask(UINT message, WPARAM wparam = 0, LPARAM lparam = 0);
    HTREEITEM Next(WPARAM relation, HTREEITEM item);
    std::vector<ShownItem> Items();  // in order, children after their parents
    HTREEITEM Find(const std::u16string& text);
    void Expand(const std::u16string& text);
    void Choose(const std::u16string& text);  // selects it

    // An item's row, as wide as the tree, on the screen; or its text alone.
    RECT RowOnScreen(const std::u16string& text, bool text_alone = false);
    sim::windows::Picture Screen();
    static ColourSpan Columns(const sim::windows::Picture& picture, const RECT& row,
                              COLORREF colour);
    ColourSpan Columns(const std::u16string& text, COLORREF colour) {
        return Columns(Screen(), RowOnScreen(text), colour);
    }

    HWND parent_ = nullptr;
    TreeWindow window_;
    TreeBuild build_{};

private:
    ShownItem Item(HTREEITEM handle);
    void AddItems(HTREEITEM first, std::vector<ShownItem>& items);
};

}  // namespace tolvenar
