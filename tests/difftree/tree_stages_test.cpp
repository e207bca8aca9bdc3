// What the tree's parent answers to each stage of drawing an item, and the font that it gives back.
#include "simulator/gate/counters.h"
#include "tests/difftree/tree_window_fixture.h"

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
    // What the parent answers to a stage of drawing the item of this text.
    LRESULT AnswerTo(DWORD stage, const std::u16string& text) {
        const HWND tree = window_.tree_view();
        TVITEMW item{};
        item.mask = TVIF_PARAM;
        item.hItem = Find(text);
        Ask(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
        const HDC dc = ::GetDC(tree);
        const HGDIOBJ font = ::SelectObject(dc, ::GetStockObject(SYSTEM_FONT));
        NMTVCUSTOMDRAW draw{};
        draw.nmcd.hdr = {tree, 0, static_cast<UINT>(NM_CUSTOMDRAW)};
        draw.nmcd.dwDrawStage = stage;
        draw.nmcd.hdc = dc;
        draw.nmcd.rc = {0, 0, kWidth, 16};
        draw.nmcd.lItemlParam = item.lParam;
        const LRESULT answer =
            ::SendMessageW(::GetParent(tree), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&draw));
        ::SelectObject(dc, font);
        ::ReleaseDC(tree, dc);
        return answer;
    }
    long Selections() { return sim::TotalCalls(device().sim())["SelectObject"]; }
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

TEST_F(TreeStagesTest, TheFontFromBeforeTheBoldOneComesBackOnceWhenTheWindowGoes) {
    for (const bool has_bold : {false, true}) {
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
