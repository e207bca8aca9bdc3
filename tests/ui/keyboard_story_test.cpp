// One sitting without a stylus: back up, look at the states, restore, set the daily backup, make
// another storage, read the help, close.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

class KeyboardStoryTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        device().PutFile(L"\\My Documents\\letter.txt", "first");
        BackUp();
        device().PutFile(L"\\My Documents\\letter.txt", "second");
    }
    void ExpectShown(const std::string& title) { ASSERT_SOON(Shows(title)) << title; }
    void ExpectGone(const std::string& title) { ASSERT_SOON(!Shows(title)) << title; }
    // No popup comes or goes any more: the keys are the dialog's.
    void ExpectDialogReady() {
        EXPECT_TRUE(BecomesIdle());
        EXPECT_TRUE(DialogIsDone());
        EXPECT_TRUE(MainDialogBecomesActive());
    }
    void BackUpByKeys() {
        EXPECT_TRUE(FocusComesTo(IDC_NEW_DESCRIPTION));
        Keys("t o d a y enter");
        ExpectShown("Reminder");
        Keys("enter");
        ExpectTab("Restore");
        EXPECT_SOON_EQ("today", Text(IDC_STATE_DESCRIPTION));
        ExpectDialogReady();
    }
    void RestoreTheFirstStateByKeys() {
        EXPECT_TRUE(FocusComesTo(IDC_STATES));
        Keys("down");
        EXPECT_SOON_EQ("AutoBackup: External", Text(IDC_STATE_DESCRIPTION));
        Keys("alt+r");
        ExpectShown("Reminder");
        Keys("shift+tab enter");  // Cancel has the focus
        EXPECT_SOON_EQ(kRestoredReminder, Text(IDC_REMINDER_TEXT));
        EXPECT_EQ("first", device().FileBytes(L"\\My Documents\\letter.txt"));
        Keys("esc");
        ExpectGone("Reminder");
        ExpectDialogReady();
    }
    void SetTheDailyBackupByKeys() {
        Keys("ctrl+tab ctrl+tab ctrl+tab");
        ExpectTab("Options");
        EXPECT_TRUE(FocusComesTo(IDC_ON_TIME));
        Keys("space");
        EXPECT_SOON_EQ(1u, Dword("onTime"));
        ExpectFocus("tab", IDC_TIME);
        Keys("right 7 right 3 0 tab");  // the first arrow selects the hour
        EXPECT_SOON_EQ(0x001E0007u, Dword("WakeUpTime"));
    }
    void MakeAnotherStorageByKeys() {
        Keys("ctrl+shift+tab");
        ExpectTab("Storage file");
        Keys("alt+b");
        ExpectShown(kOpenTitle);
        ExpectFocus("tab tab", kOpenName);
        Keys("h o m e enter");
        ASSERT_SOON(BoxIsUp());
        Keys("enter");
        ExpectShown(kDescriptionTitle);
        Keys("tab enter");
        ExpectGone(kDescriptionTitle);
        ExpectTab("Backup");
        EXPECT_TRUE(FocusComesTo(IDC_NEW_DESCRIPTION));
        Keys("ctrl+tab ctrl+tab ctrl+tab");
        ExpectTab("Storage file");
        EXPECT_SOON_EQ("home", Text(IDC_STORAGE_NAME));
        ExpectDialogReady();
    }
    void ReadTheHelpByKeys() {
        Keys("alt+h");
        ExpectShown("Tolvenar Help");
        EXPECT_SOON_EQ(0u, Text(IDC_HELP_TEXT).find("The storage file"));
        Keys("pagedown esc");
        ExpectGone("Tolvenar Help");
        ExpectDialogReady();
    }
};

TEST_F(KeyboardStoryTest, EverythingCanBeDoneWithoutAStylus) {
    Open();
    BackUpByKeys();
    RestoreTheFirstStateByKeys();
    SetTheDailyBackupByKeys();
    MakeAnotherStorageByKeys();
    ReadTheHelpByKeys();
    Keys("ctrl+w");
    ExpectEnd();
    EXPECT_EQ(2u, Ask("notifications").size());
    EXPECT_TRUE(device().Exists(L"\\Storage Card\\Tolvenar\\home.sav"));
}

}  // namespace
}  // namespace tests
