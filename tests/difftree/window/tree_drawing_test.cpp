// The difference tree as it stands on the screen.
#include <array>

#include "platform/text.h"
#include "tests/difftree/window/tree_window_fixture.h"

namespace tolvenar {
namespace {

constexpr LONG kBearing = 3;  // a letter's own margin, in pixels

class TreeDrawingTest : public TreeWindowFixture {
protected:
    // Files and folders in every state, and a database.
    static std::vector<FakeObject> Objects() {
        return {{ObjectType::kFile, u"\\plain\\added"},
                {ObjectType::kFile, u"\\plain\\gone", JF_DELETE},
                {ObjectType::kFile, u"\\plain\\changed"},
                {ObjectType::kFile, u"\\plain\\changed", JF_DELETE},
                {ObjectType::kFile, u"\\plain\\" + std::u16string(90, u'w')},
                {ObjectType::kDatabase, u"Notes"},
                {ObjectType::kDatabaseRecord, u"Notes", JF_DELETE, 7}};
    }
    void Show(bool expanded = true) {
        Create();
        build_.advanced_view = true;
        ASSERT_EQ(1, Build(Objects()));
        if (expanded) {
            Expand(u"Files");
            Expand(u"plain");
        }
    }
    HFONT TreeFont() {
        const auto font = reinterpret_cast<HFONT>(Ask(WM_GETFONT));
        return font != nullptr ? font : static_cast<HFONT>(::GetStockObject(SYSTEM_FONT));
    }
    static HFONT BoldFont() {
        const HDC screen = ::GetDC(nullptr);
        LOGFONTW font{};
        font.lfHeight = -(9 * ::GetDeviceCaps(screen, LOGPIXELSY) / 72);
        ::ReleaseDC(nullptr, screen);
        font.lfWeight = 700;
        font.lfCharSet = DEFAULT_CHARSET;
        wcscpy(font.lfFaceName, L"Tahoma");
        return ::CreateFontIndirectW(&font);
    }
    static LONG Width(HFONT font, const std::u16string& text) {
        const HDC screen = ::GetDC(nullptr);
        const HGDIOBJ previous = ::SelectObject(screen, font);
        SIZE size{};
        ::GetTextExtentExPointW(screen, Wide(text.c_str()), static_cast<int>(text.size()), 0,
                                nullptr, nullptr, &size);
        ::SelectObject(screen, previous);
        ::ReleaseDC(nullptr, screen);
        return size.cx;
    }
    // By its width: the display may draw a normal font narrower than it measures it.
    void ExpectBold(const std::u16string& text, COLORREF colour, bool is_bold) {
        const ColourSpan span = Columns(Screen(), RowOnScreen(text, true), colour);
        const LONG drawn = span.last - span.first + 1;
        const HFONT bold = BoldFont();
        const LONG bold_width = Width(bold, text);
        ::DeleteObject(bold);
        EXPECT_EQ(is_bold, drawn + kBearing >= bold_width) << drawn << " of " << bold_width;
        EXPECT_GE(is_bold ? bold_width : Width(TreeFont(), text), drawn);
    }
    // Where the counts of a caption at this depth begin.
    LONG CountsStart(const std::u16string& caption, LONG depth, HFONT font) {
        SCROLLINFO scroll{};
        scroll.cbSize = sizeof scroll;
        scroll.fMask = SIF_POS;
        ::GetScrollInfo(window_.tree_view(), SB_HORZ, &scroll);
        return (static_cast<LONG>(Ask(TVM_GETINDENT)) + 1) * (depth + 1) - scroll.nPos +
               Width(font, caption);
    }
    // The parts of a count text, each in its colour and no other colour in its place.
    void ExpectCounts(const std::u16string& caption, LONG depth, HFONT font,
                      const std::array<std::u16string, 3>& parts) {
        const sim::windows::Picture picture = Screen();
        const RECT row = RowOnScreen(caption);
        LONG x = CountsStart(caption, depth, font) + Width(font, u" ");
        const std::array<COLORREF, 3> colours = {kBlue, kGrey, kRed};
        for (std::size_t i = 0; i < parts.size(); ++i) {
            const ColourSpan span = Columns(picture, row, colours[i]);
            const LONG end = x + Width(font, parts[i]);
            EXPECT_LE(x, span.first) << i;
            EXPECT_GE(x + kBearing, span.first) << i;
            EXPECT_GE(end, span.last) << i;
            EXPECT_LE(end - 2 * kBearing, span.last) << i;
            x = end;
        }
    }
    COLORREF Background(const std::u16string& text) {
        const RECT place = RowOnScreen(text, true);
        const sim::windows::Picture picture = Screen();
        // A column between the focus rectangle and the first letter.
        for (const int color : {COLOR_HIGHLIGHT, COLOR_INACTIVECAPTIONTEXT, COLOR_WINDOW}) {
            const RECT edge = {place.left + 1, place.top + 2, place.left + 2, place.bottom - 2};
            if (Columns(picture, edge, ::GetSysColor(color)).pixels > 8) {
                return ::GetSysColor(color);
            }
        }
        return 0xFFFFFFFF;
    }
    bool HasText(const std::u16string& text, int color) {
        return Columns(Screen(), RowOnScreen(text, true), ::GetSysColor(color)).pixels > 10;
    }
};

TEST_F(TreeDrawingTest, CaptionsHaveTheColoursOfTheirStates) {
    Show();
    const struct {
        const char16_t* text;
        COLORREF colour;
    } kRows[] = {{u"added (+)", kBlue},
                 {u"gone (-)", kRed},
                 {u"changed (\u00B1)", kGrey},
                 {u"plain", kBlack}};
    const sim::windows::Picture picture = Screen();
    for (const auto& row : kRows) {
        const RECT place = RowOnScreen(row.text, true);
        for (const COLORREF colour : {kBlue, kRed, kGrey, kBlack}) {
            EXPECT_EQ(colour == row.colour, Columns(picture, place, colour).pixels > 10)
                << std::string(row.text, row.text + 4) << " " << colour;
        }
    }
}

TEST_F(TreeDrawingTest, OnlyChangedItemsAreBold) {
    Show();
    ExpectBold(u"added (+)", kBlue, true);
    ExpectBold(u"gone (-)", kRed, true);
    ExpectBold(u"changed (\u00B1)", kGrey, true);
    ExpectBold(u"plain", kBlack, false);
}

// The control leaves a caption the room that its own font needs, which is the page's.
TEST_F(TreeDrawingTest, ABoldCaptionHasRoomForTheFontThatDrawsIt) {
    const std::u16string text = u"Quarterly report of the year (draft) (+)";
    const HFONT bold = BoldFont();
    LOGFONTW font{};
    ::GetObjectW(bold, sizeof font, &font);
    font.lfWeight = FW_NORMAL;
    const HFONT font_of_page = ::CreateFontIndirectW(&font);
    ::SendMessageW(parent_, WM_SETFONT, reinterpret_cast<WPARAM>(font_of_page), FALSE);
    Create();
    build_.advanced_view = true;
    ASSERT_EQ(1, Build({{ObjectType::kFile, u"\\Quarterly report of the year (draft)"}}));
    Expand(u"Files");
    const RECT room = RowOnScreen(text, true);
    EXPECT_LE(Width(bold, text), room.right - room.left);
    EXPECT_EQ(font_of_page, TreeFont());
    window_.DestroyTreeWindowClass();
    ::DeleteObject(font_of_page);
    ::DeleteObject(bold);
}

TEST_F(TreeDrawingTest, TheSelectedItemOfTheFocusedTreeIsHighlighted) {
    Show();
    Choose(u"added (+)");
    ::SetFocus(window_.tree_view());
    EXPECT_EQ(::GetSysColor(COLOR_HIGHLIGHT), Background(u"added (+)"));
    EXPECT_TRUE(HasText(u"added (+)", COLOR_HIGHLIGHTTEXT));
    EXPECT_EQ(0, Columns(u"added (+)", kBlue).pixels);
    EXPECT_EQ(::GetSysColor(COLOR_WINDOW), Background(u"gone (-)"));
}

// The pair looks swapped: text in the colour of a caption on that of its text.
TEST_F(TreeDrawingTest, WithoutTheFocusItHasTheColoursOfAnInactiveCaption) {
    Show();
    Choose(u"added (+)");
    ::SetFocus(parent_);
    EXPECT_EQ(::GetSysColor(COLOR_INACTIVECAPTIONTEXT), Background(u"added (+)"));
    EXPECT_TRUE(HasText(u"added (+)", COLOR_INACTIVECAPTION));
    EXPECT_EQ(0, Columns(u"added (+)", kBlue).pixels);
}

TEST_F(TreeDrawingTest, CountsStandBehindTheCaptionEachInItsColour) {
    Show();
    ExpectCounts(u"Files", 1, TreeFont(), {u"(+2;", u"\u00B11;", u"-1)"});
    ExpectCounts(u"Differences", 0, TreeFont(), {u"(+3;", u"\u00B11;", u"-2)"});
}

// The caption is blue too, so that the counts' end is looked at.
TEST_F(TreeDrawingTest, CountsOfABoldGroupFollowItsBoldCaption) {
    Show(false);
    Expand(u"Databases");
    const HFONT bold = BoldFont();
    const LONG start = CountsStart(u"Other", 2, bold);
    const LONG grey = start + Width(bold, u" (+1;");
    EXPECT_NEAR(grey, Columns(u"Other", kGrey).first, kBearing);
    EXPECT_NEAR(grey + Width(bold, u"\u00B10;-1)"), Columns(u"Other", kRed).last, 2 * kBearing);
    ::DeleteObject(bold);
}

TEST_F(TreeDrawingTest, ACategoryWithoutChangesCountsNone) {
    Show();
    ExpectCounts(u"Applications", 1, TreeFont(), {u"(+0;", u"\u00B10;", u"-0)"});
}

TEST_F(TreeDrawingTest, NodesWithoutAMarkHaveNoCounts) {
    Show();
    for (const COLORREF colour : {kBlue, kRed, kGrey}) {
        EXPECT_EQ(0, Columns(u"plain", colour).pixels);
    }
    for (const COLORREF colour : {kRed, kGrey}) {
        EXPECT_EQ(0, Columns(u"added (+)", colour).pixels);
    }
}

TEST_F(TreeDrawingTest, CountsMoveWithTheCaptionsWhenScrolledSideways) {
    Show();
    const ColourSpan before = Columns(u"Differences", kRed);
    for (int i = 0; i < 2; ++i) {
        Ask(WM_HSCROLL, SB_LINERIGHT);
    }
    SCROLLINFO scroll{};
    scroll.cbSize = sizeof scroll;
    scroll.fMask = SIF_POS;
    ::GetScrollInfo(window_.tree_view(), SB_HORZ, &scroll);
    ASSERT_LT(0, scroll.nPos);
    for (const bool drawn_anew : {false, true}) {
        if (drawn_anew) {
            ::InvalidateRect(window_.tree_view(), nullptr, TRUE);
        }
        const ColourSpan after = Columns(u"Differences", kRed);
        EXPECT_EQ(before.first - scroll.nPos, after.first);
        EXPECT_EQ(before.pixels, after.pixels);
    }
    ExpectCounts(u"Differences", 0, TreeFont(), {u"(+3;", u"\u00B11;", u"-2)"});
}

// What a user expands is drawn at once, with the counts of the rows that moved.
TEST_F(TreeDrawingTest, ExpandingDrawsTheCountsAnew) {
    Show(false);
    Choose(u"Databases");
    Screen();
    const long before = device().Calls("ExtTextOutW");
    Ask(WM_KEYDOWN, VK_RIGHT);
    const long drawn = device().Calls("ExtTextOutW") - before;
    EXPECT_EQ(3 * 6, drawn);  // the root, four categories and the group that came
    ExpectCounts(u"Registry", 1, TreeFont(), {u"(+0;", u"\u00B10;", u"-0)"});
    ExpectCounts(u"Files", 1, TreeFont(), {u"(+2;", u"\u00B11;", u"-1)"});
    EXPECT_EQ(drawn, device().Calls("ExtTextOutW") - before);
}

TEST_F(TreeDrawingTest, ABuildIsDrawnOnceAtItsEnd) {
    Create();
    build_.advanced_view = true;
    ASSERT_EQ(1, Build(Objects()));
    EXPECT_EQ(0, device().Calls("ExtTextOutW"));
    Screen();
    EXPECT_EQ(3 * 5, device().Calls("ExtTextOutW"));
    Screen();  // nothing changed
    EXPECT_EQ(3 * 5, device().Calls("ExtTextOutW"));
    ASSERT_EQ(1, Build(Objects()));
    Screen();
    EXPECT_EQ(2 * 3 * 5, device().Calls("ExtTextOutW"));
}

TEST_F(TreeDrawingTest, CountsWithoutColoursHaveThatOfTheText) {
    build_.options = kTreeCounts;
    Show(false);
    for (const COLORREF colour : {kBlue, kRed, kGrey}) {
        EXPECT_EQ(0, Columns(u"Files", colour).pixels);
    }
    const HFONT font = TreeFont();
    const LONG end = CountsStart(u"Files", 1, font) + Width(font, u" (+2;\u00B11;-1)");
    EXPECT_NEAR(end, Columns(u"Files", kBlack).last, 2 * kBearing);
}

TEST_F(TreeDrawingTest, ColoursWithoutCountsDrawNone) {
    build_.options = kTreeColours;
    Show();
    EXPECT_EQ(0, Columns(u"Files", kBlue).pixels);
    EXPECT_LT(10, Columns(u"added", kBlue).pixels);
    EXPECT_EQ(0, device().Calls("ExtTextOutW"));
}

TEST_F(TreeDrawingTest, WithoutABoldFontEverythingIsNormal) {
    window_.DestroyTreeWindowClass();
    device().Fault("CreateFontIndirectW", 1, 1, 8);
    ASSERT_TRUE(window_.RegisterTreeWindowClass(::GetModuleHandleW(nullptr)));
    build_.options = kTreeColours | kTreeCounts;
    Show();
    ExpectBold(u"added", kBlue, false);
    ExpectCounts(u"Files", 1, TreeFont(), {u"(+2;", u"\u00B11;", u"-1)"});
}

TEST_F(TreeDrawingTest, CountsStandInTheMiddleOfTheirRow) {
    Show();
    Ask(TVM_SETITEMHEIGHT, 40);
    const RECT row = RowOnScreen(u"Differences");
    const LONG middle = (row.top + row.bottom) / 2;
    const sim::windows::Picture picture = Screen();
    const RECT above = {row.left, row.top, row.right, middle - 8};
    const RECT inside = {row.left, middle - 8, row.right, middle + 8};
    const RECT below = {row.left, middle + 8, row.right, row.bottom};
    EXPECT_EQ(0, Columns(picture, above, kRed).pixels);
    EXPECT_LT(10, Columns(picture, inside, kRed).pixels);
    EXPECT_EQ(0, Columns(picture, below, kRed).pixels);
}

TEST_F(TreeDrawingTest, CountsStayInsideALowRow) {
    Show();
    Ask(TVM_SETITEMHEIGHT, 8);
    const sim::windows::Picture picture = Screen();
    for (const COLORREF colour : {kBlue, kRed, kGrey}) {
        EXPECT_EQ(0, Columns(picture, RowOnScreen(u"plain"), colour).pixels) << colour;
    }
}

TEST_F(TreeDrawingTest, CountsAreClippedToTheirRow) {
    Create(90);
    build_.advanced_view = true;
    ASSERT_EQ(1, Build(Objects()));
    const sim::windows::Picture picture = Screen();
    RECT row = RowOnScreen(u"Differences");
    EXPECT_EQ(0, Columns(picture, row, kRed).pixels);
    row.left = row.right;
    row.right = kWidth;
    for (const COLORREF colour : {kBlue, kRed, kGrey}) {
        EXPECT_EQ(0, Columns(picture, row, colour).pixels);
    }
}

TEST_F(TreeDrawingTest, AnItemWithoutARecordIsDrawnAsTheControlDoes) {
    Show(false);
    wchar_t text[] = L"stranger";
    TVINSERTSTRUCTW insertion{};
    insertion.hParent = Find(u"Differences");
    insertion.hInsertAfter = TVI_LAST;
    insertion.item.mask = TVIF_TEXT;
    insertion.item.pszText = text;
    Ask(TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insertion));
    Screen();
    const long before = device().Calls("ExtTextOutW");
    ::InvalidateRect(window_.tree_view(), nullptr, TRUE);
    Screen();
    EXPECT_EQ(3 * 5, device().Calls("ExtTextOutW") - before);
    wchar_t shown[20] = L"";
    TVITEMW item{};
    item.mask = TVIF_TEXT | TVIF_PARAM;
    item.hItem = Next(TVGN_LASTVISIBLE, nullptr);
    item.pszText = shown;
    item.cchTextMax = 20;
    Ask(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    EXPECT_EQ(std::wstring(text), shown);
    EXPECT_EQ(0, item.lParam);
    window_.Clear();
}

TEST_F(TreeDrawingTest, TheCallersStylesAreDrawn) {
    build_.styles.added = {RGB(0, 128, 0), false};
    Show();
    ExpectBold(u"added (+)", RGB(0, 128, 0), false);
    EXPECT_LT(10, Columns(u"Files", RGB(0, 128, 0)).pixels);
    EXPECT_EQ(0, Columns(u"Files", kBlue).pixels);
}

}  // namespace
}  // namespace tolvenar
