// A pair of files that is not as a backup leaves it: half of it missing, or write-protected.
#include "tests/support/ui_test.h"

namespace tests {
namespace {

constexpr wchar_t kOldJournal[] = L"\\Storage Card\\Tolvenar\\Backup.jrn_old";

class StoragePairTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        BackUpThenChange();
    }
};

TEST_F(StoragePairTest, AStorageFileBesideAnEmptyJournalIsToldBeforeAnythingElse) {
    device().PutFile(kJournalFile, "");
    StartProgram();
    ExpectBox(kStatesAreMissing);
    WaitForDialog();
    EXPECT_EQ(1u, BoxCount());
}

TEST_F(StoragePairTest, AStorageFileBesideNoJournalIsToldAndNewStatesGoBehindItsData) {
    const std::string before = device().FileBytes(kStorageFile);
    device().Remove(kJournalFile);
    StartProgram();
    ExpectBox(kStatesAreMissing);
    WaitForDialog();
    Press(IDC_BACKUP);
    ExpectStates({1});
    const std::string after = device().FileBytes(kStorageFile);
    EXPECT_LT(before.size(), after.size());
    EXPECT_EQ(before, after.substr(0, before.size()));
    EXPECT_EQ(1u, BoxCount());
}

TEST_F(StoragePairTest, AWholePairSaysNothing) {
    Open();
    EXPECT_EQ(0u, BoxCount());
}

TEST_F(StoragePairTest, AWriteProtectedCardListsItsStatesAndABackupSaysWhyItCannotBe) {
    const std::string before = device().FileBytes(kStorageFile);
    device().Set("card.protected", "yes");
    Open();
    Press(IDC_BACKUP);
    ExpectBox(kWriteProtected);
    EXPECT_TRUE(BecomesIdle());
    ShowTab("Restore");
    EXPECT_EQ(Texts{"State 1"}, Items(IDC_STATES));
    EXPECT_EQ(before, device().FileBytes(kStorageFile));
}

TEST_F(StoragePairTest, AStateIsRestoredFromAWriteProtectedCard) {
    device().Set("card.protected", "yes");
    OpenOn("Restore");
    Press(IDC_RESTORE);
    ExpectReminder(kRestoredReminder);
    ExpectEnd();
    EXPECT_EQ("hello", device().FileBytes(kNote));
}

TEST_F(StoragePairTest, AnUnattendedBackupOntoAWriteProtectedCardEndsWith1) {
    const std::string before = device().FileBytes(kStorageFile);
    const std::string journal = device().FileBytes(kJournalFile);
    device().Set("card.protected", "yes");
    EXPECT_EQ(1, BackUp());
    EXPECT_EQ(before, device().FileBytes(kStorageFile));
    EXPECT_EQ(journal, device().FileBytes(kJournalFile));
}

TEST_F(StoragePairTest, AJournalBesideNoStorageFileIsKeptAsideByTheBackupThatMakesANewOne) {
    const std::string journal = device().FileBytes(kJournalFile);
    device().Remove(kStorageFile);
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(Numbers{1}, States());
    EXPECT_EQ(journal, device().FileBytes(kOldJournal));
}

TEST_F(StoragePairTest, AnUnattendedBackupBesideAnEmptyJournalLogsItAndGoesOn) {
    device().PutFile(kJournalFile, "");
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(Numbers{1}, States());
    const std::string log = device().FileBytes(L"\\Storage Card\\Tolvenar\\tolvenar_log.txt");
    std::string text;
    for (std::size_t i = 0; i < log.size(); i += 2) {
        text += log[i];
    }
    EXPECT_NE(text.npos, text.find("The storage file holds data, its journal no state"));
}

TEST_F(StoragePairTest, AnUnattendedBackupNeverDeletesAStorageFileThatIsFull) {
    SetDword("MayDeleteOldStorage", 1);
    std::string journal = device().FileBytes(kJournalFile);
    for (std::size_t record = 0; record < journal.size(); record += 32) {
        journal.replace(record + 20, 2, "\xFF\xFF");
    }
    device().PutFile(kJournalFile, journal);
    const std::string before = device().FileBytes(kStorageFile);
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(before, device().FileBytes(kStorageFile));
    EXPECT_EQ(journal, device().FileBytes(kJournalFile));
}

}  // namespace
}  // namespace tests
