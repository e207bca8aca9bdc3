// The built program as other programs and the notifications start it.
#include "tests/support/contents.h"
#include "tests/support/program_test.h"

namespace tests {
namespace {

class UnattendedTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        device().PutFile(kNote, "hello");
    }
    Contents Now() { return ContentsOf(device().sim()); }
};

TEST_F(UnattendedTest, TheFirstBackupCreatesTheStorage) {
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(Numbers{1}, States());
    EXPECT_TRUE(device().Exists(kStorageFile));
    EXPECT_FALSE(device().Exists(L"\\Storage Card\\Tolvenar\\Backup.jrn_1"));
}

TEST_F(UnattendedTest, ASecondBackupWithoutAChangeWritesNothing) {
    BackUp();
    const std::string storage = device().FileBytes(kStorageFile);
    const std::string journal = device().FileBytes(kJournalFile);
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(storage, device().FileBytes(kStorageFile));
    EXPECT_EQ(journal, device().FileBytes(kJournalFile));
}

TEST_F(UnattendedTest, ARestoreBringsEverythingBack) {
    device().PutFile(L"\\My Documents\\b.txt", "");
    device().MakeFolder(L"\\My Documents\\Empty");
    Ask("reg-set HKCU\\Software\\Vendor Name REG_SZ before");
    Ask("reg-set HKLM\\Software\\Vendor Number REG_DWORD 5");
    BackUp();
    const Contents before = Now();

    device().PutFile(kNote, "changed and longer");
    device().Remove(L"\\My Documents\\b.txt");
    device().Remove(L"\\My Documents\\Empty");
    device().PutFile(L"\\My Documents\\New\\c.txt", "new");
    Ask("reg-set HKCU\\Software\\Vendor Name REG_SZ after");
    Ask("reg-delete HKLM\\Software\\Vendor");
    Ask("reg-set HKLM\\Software\\Added\\Key Value REG_BINARY 0102");
    EXPECT_NE(Texts(), Differences(before, Now()));

    EXPECT_EQ(0, RestoreLast());
    EXPECT_EQ(Texts(), Differences(before, Now()));
}

TEST_F(UnattendedTest, ABackupAfterARestoreFindsNothing) {
    BackUp();
    device().Remove(kNote);
    RestoreLast();
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(UnattendedTest, ADeletedStorageFileBecomesANewFirstState) {
    BackUp();
    const std::size_t first_size = device().FileBytes(kStorageFile).size();
    device().Remove(kStorageFile);  // the old journal must not be believed
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(Numbers{1}, States());
    EXPECT_EQ(first_size, device().FileBytes(kStorageFile).size());
}

TEST_F(UnattendedTest, AHeldStorageFileIsLeftAlone) {
    BackUp();
    device().PutFile(L"\\My Documents\\b.txt", "more");
    const std::string before = device().FileBytes(kStorageFile);
    {
        const auto lock = device().Lock(kStorageFile, "write");
        EXPECT_EQ(1, BackUp());
    }
    EXPECT_EQ(before, device().FileBytes(kStorageFile));
}

TEST_F(UnattendedTest, ARestoreWithoutAStorageFileFailsQuietly) {
    EXPECT_EQ(1, RestoreLast());
    EXPECT_FALSE(device().Exists(kStorageFile));
}

TEST_F(UnattendedTest, ARestoreOfAnEmptyStorageDoesNothing) {
    BackUp();
    device().PutFile(kJournalFile, "");
    device().PutFile(kNote, "other");
    EXPECT_EQ(0, RestoreLast());
    EXPECT_EQ("other", device().FileBytes(kNote));
}

TEST_F(UnattendedTest, AStorageOfAnotherDeviceIsNotTouched) {
    BackUp();
    device().Set("processor", "4000");
    const std::string before = device().FileBytes(kStorageFile);
    device().PutFile(kNote, "other");
    EXPECT_EQ(1, BackUp());
    EXPECT_EQ(1, RestoreLast());
    EXPECT_EQ(before, device().FileBytes(kStorageFile));
    EXPECT_EQ("other", device().FileBytes(kNote));
}

TEST_F(UnattendedTest, AFullCardIsLeftAsItIs) {
    BackUp();
    device().PutFile(kNote, std::string(5000, 'a'));
    const std::string before = device().FileBytes(kStorageFile);
    device().Set("card.free", "12000");
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(before, device().FileBytes(kStorageFile));
    EXPECT_EQ(Numbers{1}, States());
}

TEST_F(UnattendedTest, AFullCardGivesUpTheOldStorageWhereTheUserAllowsIt) {
    // Most of the old storage is of what is gone.
    device().PutFile(L"\\big.txt", std::string(200000, 'b'));
    BackUp();
    device().Remove(L"\\big.txt");
    device().PutFile(kNote, std::string(5000, 'a'));
    device().Set("card.free", "12000");
    SetDword("MayDeleteOldStorage", 1);
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(Numbers{1}, States());
    device().Remove(kNote);
    EXPECT_EQ(0, RestoreLast());
    EXPECT_TRUE(device().Exists(kNote));
}

TEST_F(UnattendedTest, TooLittleMemoryStartsNoBackup) {
    Ask("set memory.free 1000000");
    Ask("set store.free 1000000");
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(Numbers(), States());
}

TEST_F(UnattendedTest, TheScheduleIsAsItWasAfterwards) {
    constexpr unsigned kHalfPastNine = 30 << 16 | 21;
    SetDword("onTime", 1);
    SetDword("WakeUpTime", kHalfPastNine);
    BackUp();
    EXPECT_EQ(2u, Ask("notifications").size());
    EXPECT_EQ(1u, Dword("onTime"));
    EXPECT_EQ(kHalfPastNine, Dword("WakeUpTime"));
}

}  // namespace
}  // namespace tests
