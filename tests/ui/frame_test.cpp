// The main dialog: tabs, keys and closing.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

class FrameTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        TakeFirstState();
    }
};

TEST_F(FrameTest, TheTabsStandInTheirOrder) {
    Open();
    EXPECT_EQ((Texts{"Backup", "Restore", "Advanced Restore", "Storage file", "Options", "About"}),
              Items(IDC_TABS));
}

// An index beyond the end appends, so the order of insertion matters.
TEST_F(FrameTest, TheTabsAreInsertedInTheirOwnOrder) {
    Open();
    Texts places;
    for (const Call& call : Traced("SendMessageW")) {
        if (call.Has(", 4873, ")) {  // TCM_DELETEALLITEMS
            places.push_back("none");
        }
        const std::string index = call.Behind(", 4926, ");  // TCM_INSERTITEMW
        if (!index.empty()) {
            places.push_back(index.substr(0, 1));
        }
    }
    EXPECT_EQ((Texts{"none", "1", "2", "0", "3", "4", "5"}), places);
}

TEST_F(FrameTest, AnOpenStorageStartsWithTheBackupPage) {
    Open();
    EXPECT_EQ("Backup", SelectedTab());
    EXPECT_TRUE(FocusComesTo(IDC_NEW_DESCRIPTION));
    EXPECT_SOON(IsActive(kMainTitle));
}

TEST_F(FrameTest, WithoutAStorageTheStorageFilePageIsTheFirst) {
    device().Remove(kStorageFile);
    Open();
    EXPECT_EQ("Storage file", SelectedTab());
    EXPECT_EQ(0u, BoxCount());
    EXPECT_FALSE(device().Exists(kStorageFile));  // an interactive start creates nothing
}

TEST_F(FrameTest, ASelectedTabShowsItsPageAlone) {
    OpenOn("Restore");
    EXPECT_TRUE(Sees(IDC_STATES));
    EXPECT_TRUE(Sees(IDC_RESTORE));
    EXPECT_FALSE(Sees(IDC_NEW_DESCRIPTION));
    ShowTab("Advanced Restore");
    EXPECT_TRUE(Sees(IDC_STATES));
    EXPECT_FALSE(Sees(IDC_RESTORE));
    EXPECT_TRUE(Sees(IDC_APPLY_CHANGES));
    EXPECT_TRUE(Sees(IDC_TAKE_BACK_CHANGES));
    ShowTab("Backup");
    EXPECT_TRUE(Sees(IDC_NEW_DESCRIPTION));
    EXPECT_FALSE(Sees(IDC_STATES));
}

TEST_F(FrameTest, EachPageIsMadeWhenItIsFirstShownAndKept) {
    Open();
    const auto made = [&] { return Calls("CreateDialogIndirectParamW"); };
    EXPECT_EQ(2u, made());                              // the dialog and the page that it shows
    const std::size_t after[] = {4, 4, 5, 6, 7, 7, 7};  // the restore page brings its tree
    for (const std::size_t count : after) {
        Keys("ctrl+tab");
        EXPECT_SOON_EQ(count, made());
    }
}

TEST_F(FrameTest, TheDialogHasItsSizeInTheMiddleOfTheScreen) {
    Open();
    EXPECT_SOON(IsActive(kMainTitle));
    const Window dialog = Top(kMainTitle).value_or(Window{});
    EXPECT_EQ(533, dialog.width);
    EXPECT_EQ(209, dialog.height);
    EXPECT_NEAR(320, dialog.left + 533 / 2, 1);
    EXPECT_NEAR(240, dialog.top + 209 / 2, 1);
}

TEST_F(FrameTest, APageThatCannotBeMadeIsTriedAgain) {
    Open();
    device().Fault("CreateDialogIndirectParamW", 1, 1, 8);
    Keys("ctrl+tab");
    ExpectTab("Restore");
    EXPECT_FALSE(Sees(IDC_NEW_DESCRIPTION));
    EXPECT_FALSE(Sees(IDC_STATES));
    Keys("ctrl+tab");
    EXPECT_SOON(SelectedTab() == "Advanced Restore" && Sees(IDC_STATES));
    Keys("ctrl+shift+tab");
    EXPECT_SOON(SelectedTab() == "Restore" && Sees(IDC_RESTORE));
}

TEST_F(FrameTest, APageThatDoesNotExistIsNotSelected) {
    Open();
    for (const int index : {6, 9, -1}) {
        ::SendMessageW(MainDialog(), kPageSelect, static_cast<WPARAM>(index), 0);
        EXPECT_EQ("Backup", SelectedTab()) << index;
        EXPECT_TRUE(Sees(IDC_NEW_DESCRIPTION)) << index;
    }
}

TEST_F(FrameTest, APostedPageIsSelected) {
    Open();
    ::PostMessageW(MainDialog(), kPageSelect, kAdvancedTab, 0);
    ExpectTab("Advanced Restore");
    EXPECT_TRUE(Sees(IDC_APPLY_CHANGES));
}

class CloseTest : public FrameTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(CloseTest, EndsTheProgram) {
    Open();
    Keys(GetParam());
    ExpectEnd();
    EXPECT_EQ(1u, AgentStarts());
}

INSTANTIATE_TEST_SUITE_P(Keys, CloseTest, ::testing::Values("alt+x", "ctrl+w", "ctrl+q", "alt+f4"));

TEST_F(FrameTest, TheProgramClosesFromEveryPage) {
    for (const char* name : {"Restore", "Advanced Restore", "Storage file", "Options", "About"}) {
        OpenOn(name);
        Keys("alt+x");
        ExpectEnd();
        EXPECT_EQ(1u, AgentStarts()) << name;
    }
}

// It reads its settings again then. The page's message is the one of WM_APP + 300.
TEST_F(FrameTest, AnActivationReachesTheOptionsPageWithItsParameters) {
    Open();
    ::SendMessageW(MainDialog(), WM_ACTIVATE, WA_CLICKACTIVE, 0x1234);
    EXPECT_EQ(0u, Calls("SendMessageW", ", 33068, "));
    ShowTab("Options");
    ::SendMessageW(MainDialog(), WM_ACTIVATE, WA_CLICKACTIVE, 0x1234);
    EXPECT_EQ(1u, Calls("SendMessageW", ", 33068, 2, 4660"));
    ::SendMessageW(MainDialog(), WM_ACTIVATE, WA_INACTIVE, 0x1234);
    EXPECT_EQ(1u, Calls("SendMessageW", ", 33068, 0, 4660"));
}

TEST_F(FrameTest, ASizeMessageLaysTabsAndPageOutAgain) {
    OpenOn("Restore");
    const HWND dialog = MainDialog();
    const HWND tabs = ::GetDlgItem(dialog, IDC_TABS);
    const HWND list = Handle(IDC_STATES);
    const HWND windows[] = {tabs, ::GetParent(list), list};
    RECT before[3];
    for (int i = 0; i < 3; ++i) {
        ::GetWindowRect(windows[i], &before[i]);
    }
    for (const HWND window : windows) {
        ::SetWindowPos(window, nullptr, 3, 5, 70, 90, SWP_NOZORDER | SWP_NOACTIVATE);
    }
    ::SendMessageW(dialog, WM_SIZE, 0, 0);
    for (int i = 0; i < 3; ++i) {
        RECT after;
        ::GetWindowRect(windows[i], &after);
        EXPECT_TRUE(::EqualRect(&before[i], &after)) << i;
    }
}

TEST_F(FrameTest, TheCloseBoxEndsTheProgram) {
    Open();
    PressCloseBox();
    ExpectEnd();
    EXPECT_EQ(1u, AgentStarts());
}

TEST_F(FrameTest, AStorageOfAnotherDeviceIsToldOnce) {
    device().Set("processor", "9999");
    StartProgram();
    ExpectBox(kOtherDevice);
    ExpectTab("Storage file");
    EXPECT_EQ(1u, BoxCount());
}

TEST_F(FrameTest, AStorageOfALaterVersionIsToldOnce) {
    std::string storage = device().FileBytes(kStorageFile);
    storage[216] = 0;  // the format's revision
    device().PutFile(kStorageFile, storage);
    StartProgram();
    ExpectBox(kOtherVersion);
    ExpectTab("Storage file");
}

TEST_F(FrameTest, AJournalThatCannotBeReadStartsNoProgram) {
    device().Fault("CreateFileW", 1, 1000, 5, ".jrn, 3221225472");
    StartProgram();
    ExpectBox(UnreadableJournal("\\Storage Card\\Tolvenar\\Backup.jrn"));
    ExpectEnd();
}

TEST_F(FrameTest, AnUnknownCommandLineStartsTheDialog) {
    Open("something else");
    EXPECT_EQ("Backup", SelectedTab());
}

TEST_F(FrameTest, ASecondStartBringsTheFirstForward) {
    Open();
    EXPECT_EQ(1, Run(""));
    EXPECT_TRUE(ProgramRuns());
    EXPECT_SOON(IsActive(kMainTitle));
}

TEST_F(FrameTest, AnExternalBackupTakesOverAnIdleCopy) {
    Open();
    device().PutFile(kNote, "new");
    EXPECT_EQ(0, BackUp());
    EXPECT_FALSE(ProgramRuns());
    EXPECT_EQ((Numbers{1, 2}), States());
}

}  // namespace
}  // namespace tests
