// Letters that are typed in the difference tree, and F3.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

class TreeSearchTest : public UiTest {
protected:
    // The tree of the second state has, among the documents and by full name among the rest,
    // "a.txt", "Plan one.doc" and "Plan two.doc".
    void SetUp() override {
        UiTest::SetUp();
        BackUpThenChange();
        device().PutFile(L"\\My Documents\\Plan one.doc", "1");
        device().PutFile(L"\\My Documents\\Plan two.doc", "2");
        BackUp();
        OpenOn("Advanced Restore");
        ::SendMessageW(PageOf(IDC_STATES), WM_COMMAND, MAKEWPARAM(IDC_STATES, LBN_DBLCLK), 0);
    }
    void FocusTree() {
        ASSERT_TRUE(MainDialogBecomesActive());
        ExpectFocus("alt+s", IDC_STATES);
        Keys("tab tab");
        ASSERT_SOON(TreeHasFocus());
    }
    static std::string SelectedIn(const sim::windows::TreeItem& item) {
        if (item.selected) {
            return item.text;
        }
        std::string found;
        for (const auto& child : item.children) {
            found = found.empty() ? SelectedIn(child) : found;
        }
        return found;
    }
    std::string SelectedInTree() {
        const auto tree = sim::windows::Tree(device().sim());
        return tree.empty() ? "no tree" : SelectedIn(tree[0]);
    }
};

TEST_F(TreeSearchTest, LettersSelectTheNextItemThatContainsThemAlsoInAClosedBranch) {
    FocusTree();
    Keys("l a n");
    EXPECT_SOON_EQ("Plan one.doc (+)", SelectedInTree());
}

TEST_F(TreeSearchTest, FurtherLettersGoOnWithTheWord) {
    FocusTree();
    Keys("l a n space t");
    EXPECT_SOON_EQ("Plan two.doc (+)", SelectedInTree());
}

TEST_F(TreeSearchTest, F3GoesOnAndBeginsAnewBehindTheLast) {
    FocusTree();
    Keys("t w o");
    EXPECT_SOON_EQ("Plan two.doc (+)", SelectedInTree());
    Keys("f3");
    EXPECT_SOON_EQ("\\My Documents\\Plan two.doc (+)", SelectedInTree());
    Keys("f3");
    EXPECT_SOON_EQ("Plan two.doc (+)", SelectedInTree());
}

TEST_F(TreeSearchTest, WhatNoItemContainsSelectsNothingElse) {
    FocusTree();
    Keys("t w o");
    EXPECT_SOON_EQ("Plan two.doc (+)", SelectedInTree());
    Keys("q");
    EXPECT_TRUE(DialogIsDone());
    EXPECT_EQ("Plan two.doc (+)", SelectedInTree());
    Keys("f3");
    EXPECT_TRUE(DialogIsDone());
    EXPECT_EQ("Plan two.doc (+)", SelectedInTree());
}

TEST_F(TreeSearchTest, F3WithoutASearchAndWithoutATreeDoesNothing) {
    FocusTree();
    const std::string before = SelectedInTree();
    Keys("f3");
    EXPECT_TRUE(DialogIsDone());
    EXPECT_EQ(before, SelectedInTree());
    ShowTab("Restore");
    Keys("f3");
    EXPECT_TRUE(DialogIsDone());
    EXPECT_TRUE(ProgramRuns());
}

TEST_F(TreeSearchTest, AltVShowsOneKindAndTheButtonsActOnAll) {
    EXPECT_TRUE(MainDialogBecomesActive());
    Keys("alt+v");
    EXPECT_SOON(IsActive("Show"));
    Keys("c");
    EXPECT_SOON_EQ("Shows 2 of 6; + and -- act on all.", Text(IDC_DIFFERENCES_HINT));
    EXPECT_TRUE(MainDialogBecomesActive());
    const auto tree = sim::windows::Tree(device().sim());
    ASSERT_EQ(1u, tree.size());
    ASSERT_EQ(4u, tree[0].children.size());
    EXPECT_EQ(1u, tree[0].children[1].children.size());
    Press(IDC_SHOW);
    EXPECT_SOON(IsActive("Show"));
    Keys("esc");
    EXPECT_SOON(!Shows("Show"));
    EXPECT_EQ("Shows 2 of 6; + and -- act on all.", Text(IDC_DIFFERENCES_HINT));
    SetDword("Reminders", 2);
    Press(IDC_TAKE_BACK_CHANGES);
    RefuseReminder(kRestoredReminder);
    EXPECT_EQ("hello", device().FileBytes(kNote));
    EXPECT_FALSE(device().Exists(L"\\My Documents\\Plan one.doc"));
}

TEST_F(TreeSearchTest, F3AndAltVWorkFromTheTabs) {
    FocusTree();
    Keys("l a n");
    EXPECT_SOON_EQ("Plan one.doc (+)", SelectedInTree());
    ExpectFocus("alt+s", IDC_STATES);
    ExpectFocus("shift+tab", IDC_TABS);
    Keys("f3");
    EXPECT_SOON_EQ("Plan two.doc (+)", SelectedInTree());
    Keys("alt+v");
    EXPECT_SOON(IsActive("Show"));
}

TEST_F(TreeSearchTest, AllIsShownAgainOnRequestAndByTheNextComparison) {
    Press(IDC_SHOW);
    Press(IDC_SHOW_DELETED);
    EXPECT_SOON_EQ("Shows 0 of 6; + and -- act on all.", Text(IDC_DIFFERENCES_HINT));
    Press(IDC_SHOW);
    Press(IDC_SHOW_ALL);
    EXPECT_SOON_EQ("+ applies the changes of State 2, -- takes them back.",
                   Text(IDC_DIFFERENCES_HINT));
    Press(IDC_SHOW);
    Press(IDC_SHOW_ADDED);
    EXPECT_SOON_EQ("Shows 4 of 6; + and -- act on all.", Text(IDC_DIFFERENCES_HINT));
    ::SendMessageW(PageOf(IDC_STATES), WM_COMMAND, MAKEWPARAM(IDC_STATES, LBN_DBLCLK), 0);
    EXPECT_EQ("+ applies the changes of State 2, -- takes them back.", Text(IDC_DIFFERENCES_HINT));
}

}  // namespace
}  // namespace tests
