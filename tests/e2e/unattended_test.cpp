// The built program as other programs and the notifications start it.
#include "tests/support/program_test.h"

namespace {

using tests::kJournalFile;
using tests::kLogFile;
using tests::kStorageFile;

class UnattendedTest : public tests::ProgramTest {
protected:
    using Lines = std::vector<std::string>;
    using States_ = std::vector<int>;
};

TEST_F(UnattendedTest, TheFirstBackupCreatesTheStorage) {
    device().PutFile(L"\\My Documents\\a.txt", "hello");
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(States_{1}, States());
    EXPECT_TRUE(device().Exists(kStorageFile));
    EXPECT_FALSE(device().Exists(L"\\Storage Card\\Tolvenar\\Backup.jrn_1"));
}

TEST_F(UnattendedTest, ASecondBackupWithoutAChangeWritesNothing) {
    device().PutFile(L"\\My Documents\\a.txt", "hello");
    BackUp();
    const std::string storage = device().FileBytes(kStorageFile);
    const std::string journal = device().FileBytes(kJournalFile);
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(storage, device().FileBytes(kStorageFile));
    EXPECT_EQ(journal, device().FileBytes(kJournalFile));
}

TEST_F(UnattendedTest, ARestoreBringsEverythingBack) {
    device().PutFile(L"\\My Documents\\a.txt", "hello");
    device().PutFile(L"\\My Documents\\b.txt", "");
    device().MakeFolder(L"\\My Documents\\Empty");
    Ask("reg-set HKCU\\Software\\Vendor Name REG_SZ before");
    Ask("reg-set HKLM\\Software\\Vendor Number REG_DWORD 5");
    BackUp();
    const nlohmann::json before = Comparable();

    device().PutFile(L"\\My Documents\\a.txt", "changed and longer");
    device().Remove(L"\\My Documents\\b.txt");
    device().Remove(L"\\My Documents\\Empty");
    device().PutFile(L"\\My Documents\\New\\c.txt", "new");
    Ask("reg-set HKCU\\Software\\Vendor Name REG_SZ after");
    Ask("reg-delete HKLM\\Software\\Vendor");
    Ask("reg-set HKLM\\Software\\Added\\Key Value REG_BINARY 0102");
    EXPECT_NE(Lines(), Differences(before, Comparable()));

    EXPECT_EQ(0, RestoreLast());
    EXPECT_EQ(Lines(), Differences(before, Comparable()));
}

TEST_F(UnattendedTest, ABackupAfterARestoreFindsNothing) {
    device().PutFile(L"\\My Documents\\a.txt", "hello");
    BackUp();
    device().Remove(L"\\My Documents\\a.txt");
    RestoreLast();
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(States_{1}, States());
}

TEST_F(UnattendedTest, ADeletedStorageFileBecomesANewFirstState) {
    device().PutFile(L"\\My Documents\\a.txt", "hello");
    BackUp();
    const std::size_t first_size = device().FileBytes(kStorageFile).size();
    device().Remove(kStorageFile);  // the old journal must not be believed
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(States_{1}, States());
    EXPECT_EQ(first_size, device().FileBytes(kStorageFile).size());
}

TEST_F(UnattendedTest, AHeldStorageFileIsLeftAlone) {
    device().PutFile(L"\\My Documents\\a.txt", "hello");
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
    device().PutFile(L"\\My Documents\\a.txt", "hello");
    EXPECT_EQ(0, RestoreLast());
    EXPECT_EQ("hello", device().FileBytes(L"\\My Documents\\a.txt"));
}

TEST_F(UnattendedTest, AStorageOfAnotherDeviceIsNotTouched) {
    BackUp();
    device().Set("processor", "4000");
    const std::string before = device().FileBytes(kStorageFile);
    device().PutFile(L"\\My Documents\\a.txt", "hello");
    EXPECT_EQ(1, BackUp());
    EXPECT_EQ(1, RestoreLast());
    EXPECT_EQ(before, device().FileBytes(kStorageFile));
    EXPECT_EQ("hello", device().FileBytes(L"\\My Documents\\a.txt"));
}

TEST_F(UnattendedTest, AFullCardIsLeftAsItIs) {
    BackUp();
    device().PutFile(L"\\My Documents\\a.txt", std::string(5000, 'a'));
    const std::string before = device().FileBytes(kStorageFile);
    device().Set("card.free", "12000");
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(before, device().FileBytes(kStorageFile));
    EXPECT_EQ(States_{1}, States());
}

TEST_F(UnattendedTest, AFullCardGivesUpTheOldStorageWhereTheUserAllowsIt) {
    // The journal of so many files is what a new state has no room beside and a new storage has.
    for (int i = 0; i < 200; ++i) {
        device().PutFile(L"\\Many\\" + std::to_wstring(i), "x");
    }
    BackUp();
    device().PutFile(L"\\My Documents\\a.txt", std::string(5000, 'a'));
    device().Set("card.free", "18000");
    Ask("reg-set HKCU\\Software\\Kestrin2\\Tolvenar MayDeleteOldStorage REG_DWORD 1");
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(States_{1}, States());
    device().Remove(L"\\My Documents\\a.txt");
    EXPECT_EQ(0, RestoreLast());
    EXPECT_TRUE(device().Exists(L"\\My Documents\\a.txt"));
}

TEST_F(UnattendedTest, TooLittleMemoryStartsNoBackup) {
    Ask("set memory.free 1000000");
    Ask("set store.free 1000000");
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(States_(), States());
}

TEST_F(UnattendedTest, TheScheduleIsAsItWasAfterwards) {
    const std::string key = "reg-set HKCU\\Software\\Kestrin2\\Tolvenar ";
    Ask(key + "onTime REG_DWORD 1");
    Ask(key + "WakeUpTime REG_DWORD 1966101");  // 21:30
    BackUp();
    EXPECT_EQ(2u, Ask("notifications").size());
    const nlohmann::json dump = Ask("dump");
    for (const auto& entry : dump["registry"]) {
        if (entry["key"] != "HKCU\\Software\\Kestrin2\\Tolvenar") {
            continue;
        }
        for (const auto& value : entry["values"]) {
            if (value["name"] == "onTime") {
                EXPECT_EQ("01000000", value["data"]);
            }
            if (value["name"] == "WakeUpTime") {
                EXPECT_EQ("15001e00", value["data"]);
            }
        }
    }
}

}  // namespace
