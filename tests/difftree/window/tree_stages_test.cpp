// What the tree's parent answers to each stage of drawing an item, and the font that it gives back.
#include <cstddef>
#include <cstring>
#include <sstream>
#include <utility>

#include "tests/difftree/window/tree_window_fixture.h"

namespace tolvenar {
namespace {

class TreeStagesTest : public TreeWindowFixture {
protected:
    void Show() {
        Create();
        build_.advanced_view = true;
        ASSERT_EQ(1, Build({{ObjectType::kFile, u"\\plain\\added"},
                            {ObjectType::kDatabase, u"Notes"},
                            {ObjectType::kDatabaseRecord, u"Notes", JF_DELETE, 7}}));
    }
    LPARAM RecordOf(const std::u16string& text) {
        TVITEMW item{};
        item.mask = TVIF_PARAM;
        item.hItem = Find(text);
        Ask(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        return item.lParam;
    }
    // A drawing of an item in a row that begins 7 pixels from the left.
    NMTVCUSTOMDRAW Drawing(DWORD stage, LPARAM record) {
        const HWND tree = window_.tree_view();
        NMTVCUSTOMDRAW draw{};
        draw.nmcd.hdr = {tree, 0, static_cast<UINT>(NM_CUSTOMDRAW)};
        draw.nmcd.dwDrawStage = stage;
        draw.nmcd.rc = {7, 0, kWidth, 16};
        draw.nmcd.lItemlParam = record;
        return draw;
    }
    // What the parent answers; the context comes with a font, and the font that it is left with is
    // kept.
    LRESULT Answer(NMTVCUSTOMDRAW& draw, HGDIOBJ font = ::GetStockObject(SYSTEM_FONT)) {
        const HWND tree = window_.tree_view();
        draw.nmcd.hdc = ::GetDC(tree);
        const HGDIOBJ previous = ::SelectObject(draw.nmcd.hdc, font);
        const LRESULT answer =
            ::SendMessageW(::GetParent(tree), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&draw));
        font_left_ = ::SelectObject(draw.nmcd.hdc, previous);
        ::ReleaseDC(tree, draw.nmcd.hdc);
        return answer;
    }
    // To a stage of drawing the item of this text.
    LRESULT AnswerTo(DWORD stage, const std::u16string& text) {
        NMTVCUSTOMDRAW draw = Drawing(stage, RecordOf(text));
        return Answer(draw);
    }
    // The colours of an item, text before background.
    std::pair<COLORREF, COLORREF> ColoursOf(const std::u16string& text, UINT state) {
        NMTVCUSTOMDRAW draw = Drawing(CDDS_ITEMPREPAINT, RecordOf(text));
        draw.nmcd.uItemState = state;
        draw.clrText = draw.clrTextBk = RGB(1, 2, 3);
        Answer(draw);
        return {draw.clrText, draw.clrTextBk};
    }
    static std::pair<COLORREF, COLORREF> Colours(int text, int background) {
        return {::GetSysColor(text), ::GetSysColor(background)};
    }
    std::string Traced(const char* function) {
        return device().Command(std::string("trace show ") + function);
    }
    long Selections() { return device().Calls("SelectObject"); }

    HGDIOBJ font_left_ = nullptr;
};

TEST_F(TreeStagesTest, EachIsAnsweredByItsFlags) {
    Show();
    EXPECT_EQ(0x20, AnswerTo(CDDS_PREPAINT, u"Files"));          // CDRF_NOTIFYITEMDRAW
    EXPECT_EQ(0x10, AnswerTo(CDDS_ITEMPREPAINT, u"Files"));      // CDRF_NOTIFYPOSTPAINT
    EXPECT_EQ(0x12, AnswerTo(CDDS_ITEMPREPAINT, u"added (+)"));  // and CDRF_NEWFONT
    EXPECT_EQ(0, AnswerTo(CDDS_ITEMPOSTPAINT, u"added (+)"));    // no counts
    EXPECT_EQ(0, AnswerTo(CDDS_ITEMPOSTPAINT, u"Files"));        // counts, not in bold
    EXPECT_EQ(0x2, AnswerTo(CDDS_ITEMPOSTPAINT, u"Other"));      // counts in bold
    EXPECT_EQ(0, AnswerTo(CDDS_POSTPAINT, u"Files"));
}

TEST_F(TreeStagesTest, WithoutColoursAndCountsOnlyTheLastStageIsAskedFor) {
    build_.options = 0;
    Show();
    EXPECT_EQ(0x10, AnswerTo(CDDS_ITEMPREPAINT, u"added"));
    EXPECT_EQ(0, AnswerTo(CDDS_ITEMPOSTPAINT, u"Other"));
}

TEST_F(TreeStagesTest, TheBoldFontIsTahomaOfNinePoints) {
    Show();
    AnswerTo(CDDS_ITEMPREPAINT, u"added (+)");
    LOGFONTW font{};
    ASSERT_NE(0, ::GetObjectW(font_left_, sizeof font, &font));
    LOGFONTW expected{};
    const HDC screen = ::GetDC(nullptr);
    expected.lfHeight = -(9 * ::GetDeviceCaps(screen, LOGPIXELSY) / 72);
    ::ReleaseDC(nullptr, screen);
    expected.lfWeight = 700;
    expected.lfCharSet = 1;
    EXPECT_EQ(std::wstring(L"Tahoma"), font.lfFaceName);
    EXPECT_EQ(0, std::memcmp(&expected, &font, offsetof(LOGFONTW, lfFaceName)));
}

TEST_F(TreeStagesTest, ColoursFollowFocusSelectionAndState) {
    Show();
    ::SetFocus(window_.tree_view());
    EXPECT_EQ(Colours(COLOR_HIGHLIGHTTEXT, COLOR_HIGHLIGHT),
              ColoursOf(u"added (+)", CDIS_FOCUS | CDIS_SELECTED));
    EXPECT_EQ(Colours(COLOR_HIGHLIGHTTEXT, COLOR_HIGHLIGHT), ColoursOf(u"added (+)", CDIS_FOCUS));
    EXPECT_EQ(Colours(COLOR_INACTIVECAPTION, COLOR_INACTIVECAPTIONTEXT),
              ColoursOf(u"added (+)", CDIS_SELECTED));
    EXPECT_EQ(std::make_pair(kBlue, ::GetSysColor(COLOR_WINDOW)), ColoursOf(u"added (+)", 0));
    EXPECT_EQ(std::make_pair(kBlack, ::GetSysColor(COLOR_WINDOW)), ColoursOf(u"plain", 0));
    ::SetFocus(parent_);
    EXPECT_EQ(Colours(COLOR_INACTIVECAPTION, COLOR_INACTIVECAPTIONTEXT),
              ColoursOf(u"plain", CDIS_FOCUS | CDIS_SELECTED));
    EXPECT_EQ(std::make_pair(kBlack, ::GetSysColor(COLOR_WINDOW)), ColoursOf(u"plain", CDIS_FOCUS));
}

TEST_F(TreeStagesTest, WithoutColoursTheControlsOwnAreLeft) {
    build_.options = kTreeCounts;
    Show();
    EXPECT_EQ(std::make_pair(RGB(1, 2, 3), RGB(1, 2, 3)), ColoursOf(u"added", CDIS_SELECTED));
}

// Both are null for an item of another's making.
TEST_F(TreeStagesTest, WithoutARecordOrACaptionNothingIsDrawn) {
    Show();
    NodeRecord nameless{};
    nameless.group_mark = 1;
    device().Command("trace on");
    for (const LPARAM record : {LPARAM{0}, reinterpret_cast<LPARAM>(&nameless)}) {
        NMTVCUSTOMDRAW draw = Drawing(CDDS_ITEMPOSTPAINT, record);
        EXPECT_EQ(0, Answer(draw));
    }
    EXPECT_EQ("[]", Traced("ExtTextOutW"));
    NMTVCUSTOMDRAW draw = Drawing(CDDS_ITEMPREPAINT, 0);
    EXPECT_EQ(0x10, Answer(draw));
}

// Of the row's left edge, the indent and the width of the caption.
TEST_F(TreeStagesTest, CountsAreDrawnAtTheirPlaceTransparentAndClipped) {
    Show();
    const HWND tree = window_.tree_view();
    NMTVCUSTOMDRAW draw = Drawing(CDDS_ITEMPOSTPAINT, RecordOf(u"Files"));
    const auto font = reinterpret_cast<HGDIOBJ>(Ask(WM_GETFONT));
    const HDC dc = ::GetDC(tree);
    const HGDIOBJ previous =
        ::SelectObject(dc, font != nullptr ? font : ::GetStockObject(SYSTEM_FONT));
    SIZE caption{};
    SIZE first{};
    ::GetTextExtentExPointW(dc, L"Files", 5, 0, nullptr, nullptr, &caption);
    ::GetTextExtentExPointW(dc, L" (+1;", 5, 0, nullptr, nullptr, &first);
    ::SelectObject(dc, previous);
    ::ReleaseDC(tree, dc);
    const long x = 2 * (static_cast<long>(Ask(TVM_GETINDENT)) + 1) + 7 + caption.cx;
    const std::string y = std::to_string((16 - caption.cy) / 2);
    device().Command("trace on");
    Answer(draw);
    const std::string texts = Traced("ExtTextOutW");
    // The place, ETO_CLIPPED.
    EXPECT_NE(std::string::npos, texts.find(", " + std::to_string(x) + ", " + y + ", 4, "))
        << texts;
    EXPECT_NE(std::string::npos,
              texts.find(", " + std::to_string(x + first.cx) + ", " + y + ", 4, "))
        << texts;
    EXPECT_NE(std::string::npos, Traced("SetBkMode").find(", 1\""));  // TRANSPARENT
}

TEST_F(TreeStagesTest, TheFirstFontIsRemembered) {
    Show();
    NMTVCUSTOMDRAW draw = Drawing(CDDS_ITEMPREPAINT, RecordOf(u"added (+)"));
    Answer(draw, ::GetStockObject(DEFAULT_GUI_FONT));
    Answer(draw, ::GetStockObject(SYSTEM_FONT));
    device().Command("trace on");
    ::DestroyWindow(window_.host());
    std::ostringstream first;
    first << ", 0x" << std::hex
          << reinterpret_cast<std::uintptr_t>(::GetStockObject(DEFAULT_GUI_FONT)) << '"';
    EXPECT_NE(std::string::npos, Traced("SelectObject").find(first.str()));
}

TEST_F(TreeStagesTest, TheFontFromBeforeTheBoldOneComesBackOnceWhenTheWindowGoes) {
    for (const bool has_bold : {false, true, false}) {
        Show();
        if (has_bold) {
            AnswerTo(CDDS_ITEMPREPAINT, u"added (+)");
        }
        const long before = Selections();
        ::DestroyWindow(window_.host());
        EXPECT_EQ(has_bold ? 1 : 0, Selections() - before);
    }
}

}  // namespace
}  // namespace tolvenar
