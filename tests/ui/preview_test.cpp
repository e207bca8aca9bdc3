// The button that shows what a restore of the selected state would change.
#include <algorithm>
#include <functional>

#include "simulator/host/window_thread.h"
#include "tests/support/ui_test.h"

namespace tests {
namespace {

constexpr unsigned kLimitMs = 10000;
constexpr UINT kPreviewWanted = WM_APP + 137;
const std::string kTracedPreview = ", 32905, ";  // the same in the trace
const Box kNotFoundOut = {
    "What a restore would change could not be found out. Close other programs, check that the "
    "storage card is in place, then try again.",
    kWarningBox};

class PreviewTest : public UiTest {
protected:
    // Since the state a file was changed, one is gone and one is new.
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        device().PutFile(L"\\My Documents\\gone.txt", "gone");
        BackUpThenChange();
        device().Remove(L"\\My Documents\\gone.txt");
        device().PutFile(L"\\My Documents\\new.txt", "new");
    }
    void Preview() {
        Press(IDC_PREVIEW);
        EXPECT_SOON(Sees(IDC_PREVIEW_CLOSE));
        EXPECT_TRUE(BecomesIdle());
        EXPECT_TRUE(DialogIsDone());
    }
    void OpenPreview() {
        OpenOn("Restore");
        Preview();
    }
    void ExpectRestoreForm() {
        EXPECT_SOON(Sees(IDC_RESTORE) && Sees(IDC_PREVIEW) && !Sees(IDC_PREVIEW_CLOSE));
        EXPECT_TRUE(BecomesIdle());
    }
    // All items in the order of the tree, as far as they are of files or the root.
    Texts Tree() {
        Texts texts;
        const std::function<void(const sim::windows::TreeItem&)> add = [&](const auto& item) {
            texts.push_back(item.text);
            std::for_each(item.children.begin(), item.children.end(), add);
        };
        const auto tree = sim::windows::Tree(device().sim());
        std::for_each(tree.begin(), tree.end(), add);
        return texts;
    }
    bool TreeHas(const std::string& text) {
        const Texts tree = Tree();
        return std::find(tree.begin(), tree.end(), text) != tree.end();
    }
    std::string SelectedInTree() {
        std::string selected = "none";
        const std::function<void(const sim::windows::TreeItem&)> look = [&](const auto& item) {
            selected = item.selected ? item.text : selected;
            std::for_each(item.children.begin(), item.children.end(), look);
        };
        const auto tree = sim::windows::Tree(device().sim());
        std::for_each(tree.begin(), tree.end(), look);
        return selected;
    }
    void Compare(const std::string& state) {
        ShowTab("Advanced Restore");
        Select(IDC_STATES, state);
        ::SendMessageW(PageOf(IDC_STATES), WM_COMMAND, MAKEWPARAM(IDC_STATES, LBN_DBLCLK), 0);
    }
    void TakeCardOut() {
        device().Remove(kStorageFile);
        device().Remove(kJournalFile);
    }
};

TEST_F(PreviewTest, WhatARestoreWritesBackStandsAsAddedAndWhatItDeletesAsDeleted) {
    OpenPreview();
    EXPECT_EQ("From now to State 1", Text(IDC_PREVIEW_CAPTION));
    const Texts tree = Tree();
    ASSERT_FALSE(tree.empty());
    EXPECT_EQ("From now to State 1", tree[0]);
    for (const char* item : {"a.txt (\xC2\xB1)", "gone.txt (+)", "new.txt (-)"}) {
        EXPECT_TRUE(TreeHas(item)) << item << ::testing::PrintToString(tree);
    }
    EXPECT_EQ("Restore adds 1, changes 1, deletes 1.", Text(IDC_PREVIEW_COUNTS));
    EXPECT_EQ("Needs 1 KB on the device, less than a minute.", Text(IDC_PREVIEW_NEEDS));
    for (const int id : {IDC_APPLY_CHANGES, IDC_TAKE_BACK_CHANGES, IDC_SHOW, IDC_RESTORE}) {
        EXPECT_FALSE(Sees(id)) << id;
    }
}

TEST_F(PreviewTest, NothingOnTheDeviceOrInTheStorageChanges) {
    OpenOn("Restore");
    const Json before = Ask("dump");
    Preview();
    Press(IDC_PREVIEW_CLOSE);
    ExpectRestoreForm();
    EXPECT_EQ(before, Ask("dump"));
}

TEST_F(PreviewTest, AnEqualDeviceWouldNotChange) {
    BackUp();
    OpenPreview();
    EXPECT_EQ("From now to State 2", Text(IDC_PREVIEW_CAPTION));
    EXPECT_EQ("Nothing would change.", Text(IDC_PREVIEW_COUNTS));
    EXPECT_EQ("", Text(IDC_PREVIEW_NEEDS));
}

TEST_F(PreviewTest, TheKeyboardAloneLeadsThereAndBack) {
    OpenOn("Restore");
    ASSERT_TRUE(MainDialogBecomesActive());
    Keys("alt+w");
    EXPECT_SOON(Sees(IDC_PREVIEW_CLOSE) && TreeHasFocus());
    EXPECT_TRUE(BecomesIdle());
    Keys("n e w");
    EXPECT_SOON_EQ("new.txt (-)", SelectedInTree());
    Keys("f3");
    EXPECT_SOON_EQ("\\My Documents\\new.txt (-)", SelectedInTree());
    Keys("alt+c");
    ExpectRestoreForm();
    EXPECT_TRUE(FocusComesTo(IDC_PREVIEW));
    Keys("enter");
    EXPECT_SOON(Sees(IDC_PREVIEW_CLOSE) && TreeHasFocus());
    EXPECT_TRUE(BecomesIdle());
    Keys("enter");
    ExpectRestoreForm();
}

TEST_F(PreviewTest, TabGoesThroughTreeAndButtons) {
    OpenPreview();
    ASSERT_TRUE(MainDialogBecomesActive());
    ASSERT_SOON(TreeHasFocus());
    for (const int id : {IDC_PREVIEW_CLOSE, IDC_FULL, IDC_PAGE_HELP, IDC_TABS}) {
        ExpectFocus("tab", id);
    }
    Keys("tab");
    EXPECT_SOON(TreeHasFocus());
}

TEST_F(PreviewTest, TheComparedStatesStayWhatTheButtonsActOn) {
    BackUp();
    device().PutFile(kNote, "later");
    Open();
    Compare("State 2");
    const Texts compared = Tree();
    ShowTab("Restore");
    Preview();
    EXPECT_NE(compared, Tree());
    ShowTab("Advanced Restore");
    EXPECT_SOON_EQ(compared, Tree());
    EXPECT_EQ("Differences from State 1 to State 2", Text(IDC_DIFFERENCES_CAPTION));
    Press(IDC_TAKE_BACK_CHANGES);
    RefuseReminder(kRestoredReminder);
    EXPECT_EQ("hello", device().FileBytes(kNote));
}

TEST_F(PreviewTest, AnotherTabHasItsOwnFormAndTheWayBackLeadsToThePreview) {
    OpenPreview();
    const Texts shown = Tree();
    ShowTab("Advanced Restore");
    EXPECT_TRUE(Sees(IDC_APPLY_CHANGES));
    EXPECT_FALSE(Sees(IDC_PREVIEW_CLOSE));
    EXPECT_TRUE(Tree().empty());
    ShowTab("Options");
    ShowTab("Restore");
    EXPECT_TRUE(Sees(IDC_PREVIEW_CLOSE));
    EXPECT_SOON_EQ(shown, Tree());
}

TEST_F(PreviewTest, AnotherViewOfTheTreeIsThatOfThePreviewToo) {
    OpenPreview();
    EXPECT_TRUE(TreeHas("Documents"));
    ShowTab("Options");
    Press(IDC_ADVANCED_TREE);
    EXPECT_SOON_EQ(1u, Dword("AdvancedTreeView"));
    ShowTab("Restore");
    EXPECT_SOON(TreeHas("Registry"));
    EXPECT_FALSE(TreeHas("Documents"));
}

TEST_F(PreviewTest, WithAnotherSelectedStateItIsDropped) {
    BackUp();
    OpenPreview();
    ShowTab("Advanced Restore");
    Select(IDC_STATES, "State 1");
    ShowTab("Restore");
    ExpectRestoreForm();
}

TEST_F(PreviewTest, AnOperationDropsIt) {
    OpenPreview();
    PostBackup();
    ExpectStates({1, 2});
    ExpectRestoreForm();
    EXPECT_EQ("State 2", SelectedItem(IDC_STATES));
}

TEST_F(PreviewTest, BusyAsAnOperationItTakesNothingElse) {
    OpenOn("Restore");
    HoldCall("CeFindFirstDatabaseEx");
    Press(IDC_PREVIEW);
    ASSERT_TRUE(RulesAreUsedUp());
    const HWND page = PageOf(IDC_PREVIEW);
    EXPECT_TRUE(sim::host::AnswerTime(page, kLimitMs, WM_COMMAND, IDC_PREVIEW));
    EXPECT_TRUE(sim::host::AnswerTime(page, kLimitMs, WM_COMMAND, IDC_RESTORE));
    EXPECT_TRUE(sim::host::AnswerTime(MainDialog(), kLimitMs, WM_CLOSE));
    EXPECT_TRUE(Shows("What would change?"));
    LetGo();
    EXPECT_SOON(Sees(IDC_PREVIEW_CLOSE));
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ(1u, Calls("PostMessageW", kTracedPreview));
    EXPECT_EQ(0u, Calls("PostMessageW", kTracedRestore));
}

TEST_F(PreviewTest, AnotherProgramMayAskForItToo) {
    OpenOn("Restore");
    ::PostMessageW(OperationWindow(), kPreviewWanted, 0, IDC_PREVIEW);
    ::PostMessageW(OperationWindow(), kPreviewWanted, 1, IDC_PREVIEW);
    EXPECT_SOON(Sees(IDC_PREVIEW_CLOSE));
    EXPECT_TRUE(BecomesIdle());
    EXPECT_EQ("From now to State 1", Text(IDC_PREVIEW_CAPTION));
}

TEST_F(PreviewTest, WithoutAStateThereIsNothingToRestore) {
    device().Remove(kJournalFile);
    device().PutFile(kJournalFile, "");
    StartProgram();
    ExpectBox(kStatesAreMissing);
    WaitForDialog();
    ShowTab("Restore");
    PressAndExpect(IDC_PREVIEW, kStorageIsEmpty);
    ExpectRestoreForm();
}

TEST_F(PreviewTest, TooLittleMemoryIsToldAsOfARestore) {
    OpenOn("Restore");
    device().Set("memory.free", "1000000");
    device().Set("store.free", "1000000");
    PressAndExpect(IDC_PREVIEW, TooLittleMemory("8.0"));
    ExpectRestoreForm();
}

TEST_F(PreviewTest, ACardThatIsOutIsToldAsOfARestore) {
    OpenOn("Restore");
    TakeCardOut();
    PressAndExpect(IDC_PREVIEW, kJournalUnread);
    EXPECT_TRUE(BecomesIdle());
    EXPECT_TRUE(Items(IDC_STATES).empty());
}

TEST_F(PreviewTest, ACardThatIsPulledMeanwhileIsTold) {
    OpenOn("Restore");
    HoldCall("CeFindFirstDatabaseEx");
    Press(IDC_PREVIEW);
    ASSERT_TRUE(RulesAreUsedUp());
    TakeCardOut();
    LetGo();
    EXPECT_SOON(BoxIsUp());
    EXPECT_TRUE(IsBusy());
    ExpectBox(kNotFoundOut);
    ExpectRestoreForm();
}

TEST_F(PreviewTest, ATreeThatCannotBeBuiltIsTold) {
    OpenOn("Restore");
    device().Fault("CreateFileForMappingW", 1, 1000, 2, ".sav");
    PressAndExpect(IDC_PREVIEW, kNotFoundOut);
    LetGo();
    ExpectRestoreForm();
    Preview();
    device().Fault("CreateFileForMappingW", 1, 1000, 2, ".sav");
    ShowTab("Advanced Restore");
    Select(IDC_TABS, "Restore");
    ExpectBox(kNotFoundOut);
    LetGo();
    ExpectRestoreForm();
}

TEST_F(PreviewTest, WhatTheDeviceLacksIsTold) {
    device().PutFile(kNote, std::string(10485760, 'x'));
    BackUp();
    device().Remove(kNote);
    OpenOn("Restore");
    device().Set("memory.free", "8388608");
    device().Set("store.free", "1048576");
    Preview();
    const std::string needs = "Needs 10.0 MB, 1.0 MB more than is free; about ";
    EXPECT_EQ(needs, Text(IDC_PREVIEW_NEEDS).substr(0, needs.size()));
}

}  // namespace
}  // namespace tests
