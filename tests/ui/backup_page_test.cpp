// The Backup page: what it tells of the storage, and the new state's description.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

const std::string kCardFile = "\\Storage Card\\Tolvenar\\Backup.sav";

class BackupPageTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 0);
        device().PutFile(kNote, "hello");
    }
    void ExpectText(int id, const std::string& text) { EXPECT_SOON_EQ(text, Text(id)) << id; }
    void ExpectEffect(const std::string& text) { ExpectText(IDC_BACKUP_EFFECT, text); }
    // As from the keyboard, so that the limit counts.
    void TypeKeys(int count) {
        const HWND edit = Handle(IDC_NEW_DESCRIPTION);
        for (int i = 0; i < count; ++i) {
            ::SendMessageW(edit, WM_CHAR, 'x', 1);
        }
    }
};

TEST_F(BackupPageTest, WithoutAStorageItHasNothingToTell) {
    OpenOn("Backup");
    for (const int id : {IDC_BACKUP_STORAGE, IDC_LAST_STATE, IDC_CARD_FREE}) {
        ExpectText(id, "-");
    }
    ExpectEffect("Back up needs a storage file: it leads to the page that chooses one.");
    Press(IDC_BACKUP);
    ExpectTab("Storage file");
    EXPECT_EQ(0u, BoxCount());
}

TEST_F(BackupPageTest, ItSaysWhichStateTheButtonMakes) {
    TakeFirstState();
    Open();
    EXPECT_EQ(kCardFile, Text(IDC_BACKUP_STORAGE));
    EXPECT_EQ("Free on the card:", Text(IDC_CARD_FREE_LABEL));
    ExpectEffect("Back up makes State 2 on the card.");
    device().PutFile(kNote, "changed");
    Press(IDC_BACKUP);
    ExpectTab("Restore");
    ShowTab("Backup");
    ExpectEffect("Back up makes State 3 on the card.");
}

// The card and the file are what the user knows it by.
TEST_F(BackupPageTest, ALongPathIsShortenedInItsMiddle) {
    const std::string folder = "\\Storage Card\\" + std::string(100, 'a') + "\\";
    device().MakeFolder(std::wstring(folder.begin(), folder.end() - 1));
    SetText("StoragePath", folder);
    BackUp();
    OpenOn("Backup");
    ASSERT_SOON(Text(IDC_BACKUP_STORAGE) != "-");
    const std::string text = Text(IDC_BACKUP_STORAGE);
    EXPECT_EQ(0u, text.find("\\Storage Card")) << text;
    EXPECT_NE(text.npos, text.find("aa...aa")) << text;
    EXPECT_EQ(text.size() - 13, text.find("aa\\Backup.sav")) << text;
    EXPECT_LT(30u, text.size()) << "the control has room for more";
}

TEST_F(BackupPageTest, AStorageInTheDevicesMemoryIsLostByAHardReset) {
    SetText("StoragePath", "\\My Documents\\");
    BackUp();
    Open();
    EXPECT_EQ("\\My Documents\\Backup.sav", Text(IDC_BACKUP_STORAGE));
    EXPECT_EQ("Free in device memory:", Text(IDC_CARD_FREE_LABEL));
    EXPECT_NE("-", Text(IDC_CARD_FREE));
    ExpectEffect("Back up makes State 2 in the device's own memory: a hard reset takes it.");
}

TEST_F(BackupPageTest, WhatStandsAgainstABackupIsSaidBefore) {
    TakeFirstState();
    device().SetAttributes(kStorageFile, FILE_ATTRIBUTE_READONLY);
    Open();
    ExpectEffect("The storage is write-protected: Back up cannot add a state.");
    Keys("ctrl+q");
    ExpectEnd();
    RemoveInstallation();
    Open();
    ExpectEffect("Back up needs an installation: restore Tolvenar first.");
}

TEST_F(BackupPageTest, ABackupRenewsWhatItTells) {
    TakeFirstState();
    Open();
    EXPECT_EQ(0u, Text(IDC_LAST_STATE).find("State 1, "));
    const std::string free_before = Text(IDC_CARD_FREE);
    device().PutFile(L"\\My Documents\\b.txt", std::string(300000, 'b'));
    Press(IDC_BACKUP);
    ExpectTab("Restore");
    ShowTab("Backup");
    EXPECT_SOON_EQ(0u, Text(IDC_LAST_STATE).find("State 2, "));
    EXPECT_SOON(Text(IDC_CARD_FREE) != free_before);
}

TEST_F(BackupPageTest, AnotherStorageRenewsWhatItTells) {
    TakeFirstState();
    Open();
    EXPECT_EQ(kCardFile, Text(IDC_BACKUP_STORAGE));
    ShowTab("Storage file");
    Press(IDC_BROWSE);
    ASSERT_SOON(Shows(kOpenTitle));
    Type(kOpenName, "Home");
    Press(IDOK);
    ASSERT_SOON(BoxIsUp());
    Press(IDYES);
    ASSERT_SOON(Shows(kDescriptionTitle));
    Press(IDOK);
    ExpectTab("Backup");
    ExpectText(IDC_BACKUP_STORAGE, "\\Storage Card\\Tolvenar\\Home.sav");
    ExpectText(IDC_LAST_STATE, "-");
    EXPECT_SOON(Text(IDC_CARD_FREE) != "-");
}

// Another program filled the card meanwhile.
TEST_F(BackupPageTest, AnActivationLooksAtTheCardAgain) {
    TakeFirstState();
    device().Set("card.free", "3200000");  // the start's line in the log takes some of it
    Open();
    EXPECT_EQ("3.0 Mb", Text(IDC_CARD_FREE));
    device().Set("card.free", "1048576");
    ::PostMessageW(MainDialog(), WM_ACTIVATE, WA_ACTIVE, 0);
    ExpectText(IDC_CARD_FREE, "1.0 Mb");
}

TEST_F(BackupPageTest, TheFreeSpaceIsNeverRoundedUp) {
    TakeFirstState();
    device().Set("card.free", "1048575");
    Open();
    EXPECT_EQ("0.9 Mb", Text(IDC_CARD_FREE));
}

TEST_F(BackupPageTest, TheWholeDescriptionArrivesInTheState) {
    BackUp();
    device().PutFile(kNote, "changed");
    Open();
    TypeKeys(205);
    const std::string all(199, 'x');
    EXPECT_EQ(all, Text(IDC_NEW_DESCRIPTION));
    Press(IDC_BACKUP);
    ExpectText(IDC_STATE_DESCRIPTION, all);
}

TEST_F(BackupPageTest, ARefusedReminderKeepsTheDescription) {
    SetDword("Reminders", 4);
    BackUp();
    Open();
    Type(IDC_NEW_DESCRIPTION, "Before the holidays");
    Press(IDC_BACKUP);
    RefuseReminder(kBackupReminder);
    EXPECT_EQ("Before the holidays", Text(IDC_NEW_DESCRIPTION));
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(BackupPageTest, TheLastAutomaticBackupIsTold) {
    Open();
    ShowTab("Backup");
    EXPECT_EQ("none yet", Text(IDC_LAST_AUTOMATIC));
    Keys("alt+x");
    ExpectEnd();
    BackUp();
    Open();
    // The clock of the device, by its locale.
    EXPECT_EQ("11/16/26, 9:0", Text(IDC_LAST_AUTOMATIC).substr(0, 13));
    EXPECT_NE(std::string::npos, Text(IDC_LAST_AUTOMATIC).find(" AM: saved"));
    Keys("alt+x");
    ExpectEnd();
    device().PutFile(kNote, "hello");
    device().Set("card.free", "1000");
    BackUp();
    Open();
    EXPECT_NE(std::string::npos, Text(IDC_LAST_AUTOMATIC).find(" AM: FAILED, not enough room"));
}

TEST_F(BackupPageTest, WhatTheLastBackupCouldNotSaveIsTold) {
    device().PutFile(kNote, "hello");
    BackUp();
    device().PutFile(L"\\My Documents\\b.txt", "held");
    {
        const auto lock = device().Lock(kNote);
        const auto other = device().Lock(L"\\My Documents\\b.txt");
        device().PutFile(L"\\My Documents\\c.txt", "a change");
        BackUp();
    }
    Open();
    EXPECT_NE(std::string::npos, Text(IDC_LAST_STATE).find(", 2 not saved (see the log)"));
    Keys("alt+x");
    ExpectEnd();
    BackUp();
    Open();
    EXPECT_EQ(std::string::npos, Text(IDC_LAST_STATE).find("not saved"));
}

}  // namespace
}  // namespace tests
