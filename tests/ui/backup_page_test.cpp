// The Backup page: what it tells of the storage, and the new state's description.
#include "platform/win32.h"

#include "tests/ui/ui_test.h"

namespace {

constexpr int kDescription = 1018, kBackup = 1001, kBrowse = 1012;
constexpr int kStorage = 1103, kLastState = 1105, kFree = 1107;
constexpr int kFileName = 0x480;  // of the open dialog

class BackupPageTest : public tests::UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 0);
        device().PutFile(L"\\My Documents\\a.txt", "hello");
    }
    HWND Handle(int id) {
        return reinterpret_cast<HWND>(AnyControl(id)->at("handle").get<std::uintptr_t>());
    }
    bool TextBecomes(int id, const std::string& text) {
        return Eventually([&] { return Text(id) == text; });
    }
    // As from the keyboard, so that the limit counts.
    void TypeKeys(int count) {
        const HWND edit = Handle(kDescription);
        for (int i = 0; i < count; ++i) {
            ::SendMessageW(edit, WM_CHAR, 'x', 1);
        }
    }
};

TEST_F(BackupPageTest, WithoutAStorageItHasNothingToTell) {
    Open();
    ShowTab("Backup");
    for (const int id : {kStorage, kLastState, kFree}) {
        EXPECT_TRUE(TextBecomes(id, "-")) << id;
    }
    Press(kBackup);
    EXPECT_TRUE(Eventually([&] { return SelectedTab() == "Storage file"; }));
    EXPECT_EQ(0u, BoxCount());
}

TEST_F(BackupPageTest, ABackupRenewsWhatItTells) {
    TakeFirstState();
    Open();
    EXPECT_EQ(0u, Text(kLastState).find("State 1, "));
    const std::string free_before = Text(kFree);
    device().PutFile(L"\\My Documents\\b.txt", std::string(300000, 'b'));
    Press(kBackup);
    EXPECT_TRUE(Eventually([&] { return SelectedTab() == "Restore"; }));
    ShowTab("Backup");
    EXPECT_TRUE(Eventually([&] { return Text(kLastState).find("State 2, ") == 0; }));
    EXPECT_NE(free_before, Text(kFree));
}

TEST_F(BackupPageTest, AnotherStorageRenewsWhatItTells) {
    TakeFirstState();
    Open();
    EXPECT_EQ("Backup", Text(kStorage));
    ShowTab("Storage file");
    Press(kBrowse);
    ASSERT_TRUE(Eventually([&] { return Shows("Choose backup file"); }));
    Type(kFileName, "Home");
    Press(tests::kOk);
    ASSERT_TRUE(Eventually([&] { return BoxIsUp(); }));
    Press(tests::kYes);
    ASSERT_TRUE(Eventually([&] { return Shows("Storage description"); }));
    Press(tests::kOk);
    EXPECT_TRUE(TextBecomes(1019, "Home"));
    ShowTab("Backup");
    EXPECT_TRUE(TextBecomes(kStorage, "Home"));
    EXPECT_EQ("-", Text(kLastState));
    EXPECT_NE("-", Text(kFree));
}

// Another program filled the card meanwhile.
TEST_F(BackupPageTest, AnActivationLooksAtTheCardAgain) {
    TakeFirstState();
    device().Set("card.free", "3145728");
    Open();
    EXPECT_EQ("3.0 Mb", Text(kFree));
    device().Set("card.free", "1048576");
    ::PostMessageW(::FindWindowW(L"Dialog", L"Tolvenar"), WM_ACTIVATE, WA_ACTIVE, 0);
    EXPECT_TRUE(TextBecomes(kFree, "1.0 Mb"));
}

TEST_F(BackupPageTest, TheFreeSpaceIsNeverRoundedUp) {
    TakeFirstState();
    device().Set("card.free", "1048575");
    Open();
    EXPECT_EQ("0.9 Mb", Text(kFree));
}

TEST_F(BackupPageTest, TheWholeDescriptionArrivesInTheState) {
    BackUp();
    device().PutFile(L"\\My Documents\\a.txt", "changed");
    Open();
    TypeKeys(205);
    const std::string all(199, 'x');
    EXPECT_EQ(all, Text(kDescription));
    Press(kBackup);
    EXPECT_TRUE(TextBecomes(1016, all));
}

TEST_F(BackupPageTest, ARefusedReminderKeepsTheDescription) {
    SetDword("Reminders", 4);
    BackUp();
    Open();
    Type(kDescription, "Before the holidays");
    Press(kBackup);
    ExpectReminder(tests::kBackupReminder, tests::kCancel);
    EXPECT_EQ("Before the holidays", Text(kDescription));
    EXPECT_EQ(std::vector<int>{1}, States());
}

}  // namespace
