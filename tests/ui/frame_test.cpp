// The main dialog: tabs, keys and closing.
#include "platform/win32.h"

#include "tests/ui/ui_test.h"

namespace {

using Texts = std::vector<std::string>;

constexpr UINT kPageSelect = WM_APP + 103;

class FrameTest : public tests::UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        TakeFirstState();
    }
    bool TabBecomes(const std::string& name) {
        return Eventually([&] { return SelectedTab() == name; });
    }
};

TEST_F(FrameTest, TheTabsStandInTheirOrder) {
    Open();
    EXPECT_EQ((Texts{"Backup", "Restore", "Advanced Restore", "Storage file", "Options", "About"}),
              Items(1000));
}

// An index beyond the end appends, so the order of insertion matters.
TEST_F(FrameTest, TheTabsAreInsertedInTheirOwnOrder) {
    Open();
    const nlohmann::json sent = Ask("trace show SendMessageW");
    Texts places;
    for (const auto& line : sent) {
        const std::string arguments = line["arguments"];
        if (arguments.find(", 4873, ") != std::string::npos) {  // TCM_DELETEALLITEMS
            places.push_back("none");
        }
        const std::size_t at = arguments.find(", 4926, ");  // TCM_INSERTITEMW
        if (at != std::string::npos) {
            places.push_back(arguments.substr(at + 8, 1));
        }
    }
    EXPECT_EQ((Texts{"none", "1", "2", "0", "3", "4", "5"}), places);
}

TEST_F(FrameTest, AnOpenStorageStartsWithTheBackupPage) {
    Open();
    EXPECT_EQ("Backup", SelectedTab());
    EXPECT_TRUE(Sees(1018));
    EXPECT_TRUE(Control(1018)->at("focused"));
    EXPECT_TRUE(Top("Tolvenar")->at("active"));
}

TEST_F(FrameTest, WithoutAStorageTheStorageFilePageIsTheFirst) {
    device().Remove(tests::kStorageFile);
    Open();
    EXPECT_EQ("Storage file", SelectedTab());
    EXPECT_EQ(0u, BoxCount());
    EXPECT_FALSE(device().Exists(tests::kStorageFile));  // an interactive start creates nothing
}

TEST_F(FrameTest, ASelectedTabShowsItsPageAlone) {
    Open();
    ShowTab("Restore");
    EXPECT_TRUE(Sees(1014));
    EXPECT_TRUE(Sees(1002));
    EXPECT_FALSE(Sees(1018));
    ShowTab("Advanced Restore");
    EXPECT_TRUE(Sees(1014));
    EXPECT_FALSE(Sees(1002));
    EXPECT_TRUE(Sees(1037));
    EXPECT_TRUE(Sees(1038));
    ShowTab("Backup");
    EXPECT_TRUE(Sees(1018));
    EXPECT_FALSE(Sees(1014));
}

TEST_F(FrameTest, EachPageIsMadeWhenItIsFirstShownAndKept) {
    Open();
    const auto made = [&] { return Calls("CreateDialogIndirectParamW"); };
    EXPECT_EQ(2u, made());                              // the dialog and the page that it shows
    const std::size_t after[] = {4, 4, 5, 6, 7, 7, 7};  // the restore page brings its tree
    for (const std::size_t count : after) {
        Keys("ctrl+tab");
        EXPECT_TRUE(Eventually([&] { return made() == count; })) << made();
    }
}

TEST_F(FrameTest, TheDialogHasItsSizeInTheMiddleOfTheScreen) {
    Open();
    const nlohmann::json dialog = *Top("Tolvenar");
    EXPECT_EQ(533, dialog["width"]);
    EXPECT_EQ(209, dialog["height"]);
    EXPECT_NEAR(320, dialog["left"].get<int>() + 533 / 2, 1);
    EXPECT_NEAR(240, dialog["top"].get<int>() + 209 / 2, 1);
    EXPECT_TRUE(dialog["active"]);
}

TEST_F(FrameTest, APageThatCannotBeMadeIsTriedAgain) {
    Open();
    device().Fault("CreateDialogIndirectParamW", 1, 1, 8);
    Keys("ctrl+tab");
    EXPECT_TRUE(TabBecomes("Restore"));
    EXPECT_FALSE(Sees(1018));
    EXPECT_FALSE(Sees(1014));
    Keys("ctrl+tab");
    EXPECT_TRUE(Eventually([&] { return SelectedTab() == "Advanced Restore" && Sees(1014); }));
    Keys("ctrl+shift+tab");
    EXPECT_TRUE(Eventually([&] { return SelectedTab() == "Restore" && Sees(1002); }));
}

TEST_F(FrameTest, APageThatDoesNotExistIsNotSelected) {
    Open();
    for (const int index : {6, 9, -1}) {
        ::SendMessageW(::FindWindowW(L"Dialog", L"Tolvenar"), kPageSelect,
                       static_cast<WPARAM>(index), 0);
        EXPECT_EQ("Backup", SelectedTab()) << index;
        EXPECT_TRUE(Sees(1018)) << index;
    }
}

TEST_F(FrameTest, APostedPageIsSelected) {
    Open();
    ::PostMessageW(::FindWindowW(L"Dialog", L"Tolvenar"), kPageSelect, 2, 0);
    EXPECT_TRUE(TabBecomes("Advanced Restore"));
    EXPECT_TRUE(Eventually([&] { return Sees(1037); }));
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
        Open();
        ShowTab(name);
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
    Open();
    ShowTab("Restore");
    const HWND dialog = ::FindWindowW(L"Dialog", L"Tolvenar");
    const HWND tabs = ::GetDlgItem(dialog, 1000);
    const HWND list = Handle(1014);
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
    ExpectBox(tests::kPlainBox, "Storage file is not compatible with your device.");
    EXPECT_TRUE(TabBecomes("Storage file"));
    EXPECT_EQ(1u, BoxCount());
}

TEST_F(FrameTest, AStorageOfALaterVersionIsToldOnce) {
    std::string storage = device().FileBytes(tests::kStorageFile);
    storage[216] = 0;  // the format's revision
    device().PutFile(tests::kStorageFile, storage);
    StartProgram();
    ExpectBox(tests::kPlainBox,
              "This Storage File is not compatible with the Tolvenar version,\nplease use earlier "
              "Tolvenar version.");
    EXPECT_TRUE(TabBecomes("Storage file"));
}

TEST_F(FrameTest, AJournalThatCannotBeReadStartsNoProgram) {
    device().Fault("CreateFileW", 1, 1000, 5, ".jrn, 3221225472");
    StartProgram();
    ExpectEnd();
    EXPECT_EQ("[]", device().Faults());
    EXPECT_EQ(0u, BoxCount());
}

TEST_F(FrameTest, AnUnknownCommandLineStartsTheDialog) {
    Open("something else");
    EXPECT_EQ("Backup", SelectedTab());
}

TEST_F(FrameTest, ASecondStartBringsTheFirstForward) {
    Open();
    EXPECT_EQ(1, Run(""));
    EXPECT_TRUE(ProgramRuns());
    EXPECT_TRUE(Top("Tolvenar")->at("active"));
}

TEST_F(FrameTest, AnExternalBackupTakesOverAnIdleCopy) {
    Open();
    device().PutFile(L"\\My Documents\\a.txt", "new");
    EXPECT_EQ(0, BackUp());
    EXPECT_FALSE(ProgramRuns());
    EXPECT_EQ((std::vector<int>{1, 2}), States());
}

}  // namespace
