// One sitting without a stylus: back up, look at the states, restore, set the daily backup, make
// another storage, read the help, close.
#include "tests/ui/ui_test.h"

namespace {

class KeyboardStoryTest : public tests::UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        device().PutFile(L"\\My Documents\\letter.txt", "first");
        BackUp();
        device().PutFile(L"\\My Documents\\letter.txt", "second");
    }
    bool TabBecomes(const std::string& name) {
        return Eventually([&] { return SelectedTab() == name; });
    }
    void ExpectShown(const std::string& title) {
        ASSERT_TRUE(Eventually([&] { return Shows(title); })) << title;
    }
    void ExpectGone(const std::string& title) {
        ASSERT_TRUE(Eventually([&] { return !Shows(title); })) << title;
    }
    // No popup comes or goes any more: the keys are the dialog's.
    void ExpectDialogReady() {
        EXPECT_TRUE(BecomesIdle());
        EXPECT_TRUE(DialogIsDone());
        EXPECT_TRUE(MainDialogBecomesActive());
    }
    bool DescriptionBecomes(const std::string& text) {
        return Eventually([&] { return Text(1016) == text; });
    }

    void BackUpByKeys() {
        EXPECT_TRUE(FocusComesTo(1018));
        Keys("t o d a y enter");
        ExpectShown("Reminder");
        Keys("enter");
        EXPECT_TRUE(TabBecomes("Restore"));
        EXPECT_TRUE(DescriptionBecomes("today"));
        ExpectDialogReady();
    }
    void RestoreTheFirstStateByKeys() {
        EXPECT_TRUE(FocusComesTo(1014));
        Keys("down");
        EXPECT_TRUE(DescriptionBecomes("AutoBackup: External"));
        Keys("alt+r");
        ExpectShown("Reminder");
        Keys("shift+tab enter");  // Cancel has the focus
        EXPECT_TRUE(Eventually([&] { return Text(1032) == tests::kRestoredReminder; }));
        EXPECT_EQ("first", device().FileBytes(L"\\My Documents\\letter.txt"));
        Keys("esc");
        ExpectGone("Reminder");
        ExpectDialogReady();
    }
    void SetTheDailyBackupByKeys() {
        Keys("ctrl+tab ctrl+tab ctrl+tab");
        EXPECT_TRUE(TabBecomes("Options"));
        EXPECT_TRUE(FocusComesTo(1060));
        Keys("space");
        EXPECT_TRUE(Eventually([&] { return Dword("onTime") == 1u; }));
        Keys("tab");
        EXPECT_TRUE(FocusComesTo(1062));
        Keys("right 7 right 3 0 tab");  // the first arrow selects the hour
        EXPECT_TRUE(Eventually([&] { return Dword("WakeUpTime") == 0x001E0007u; }));
    }
    void MakeAnotherStorageByKeys() {
        Keys("ctrl+shift+tab");
        EXPECT_TRUE(TabBecomes("Storage file"));
        Keys("alt+b");
        ExpectShown("Choose backup file");
        Keys("tab tab");
        EXPECT_TRUE(FocusComesTo(0x480));
        Keys("h o m e enter");
        ASSERT_TRUE(Eventually([&] { return BoxIsUp(); }));
        Keys("enter");
        ExpectShown("Storage description");
        Keys("tab enter");
        ExpectGone("Storage description");
        EXPECT_TRUE(Eventually([&] { return Text(1019) == "home"; }));
        ExpectDialogReady();
    }
    void ReadTheHelpByKeys() {
        Keys("alt+h");
        ExpectShown("Tolvenar Help");
        EXPECT_EQ(0u, Text(1152).find("The storage file"));
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
