// What the built program does on any device, whatever of what documents leave open it does: see
// TOLVENAR_TEST_LIKE.
#include "platform/win32.h"

#include "simulator/databases/database_store.h"
#include "tests/support/contents.h"
#include "tests/support/engine_parts.h"
#include "tests/support/program_test.h"

namespace tests {
namespace {

class AnyDeviceTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        device().PutFile(kNote, "hello");
        device().PutFile(L"\\My Documents\\Folder\\empty", "");
        Ask("reg-set HKCU\\Test\\Deep\\Below Value REG_DWORD 5");
        Ask("reg-set HKCU\\Test \"\" REG_SZ unnamed");
        Ask("reg-set HKLM\\Test None REG_BINARY \"\"");
        tolvenar::MakeDatabase(L"Sorted", 7, {{tolvenar::kNumber, 0}});
        tolvenar::AddRecord(L"Sorted", L"Ann", 1);
        tolvenar::AddEmptyRecord(L"Sorted");
        tolvenar::MakeDatabase(L"Plain");
        tolvenar::AddRecord(L"Plain", L"Bob", 2);
    }
    // Something of every kind goes, changes and comes.
    void Change() {
        device().PutFile(kNote, "changed and longer");
        device().Remove(L"\\My Documents\\Folder");
        device().PutFile(L"\\My Documents\\New\\c.txt", "new");
        Ask("reg-delete HKCU\\Test\\Deep");
        Ask("reg-set HKCU\\Test \"\" REG_SZ changed");
        Ask("reg-set HKCU\\New\\Key\\Below Value REG_DWORD 6");
        Ask("db-delete Sorted");
        tolvenar::AddRecord(L"Plain", L"New", 3);
        tolvenar::MakeDatabase(L"New");
    }
    // The same of what is there then.
    void ChangeAgain() {
        device().PutFile(kNote, "changed once more");
        device().Remove(L"\\My Documents\\New");
        device().PutFile(L"\\My Documents\\Later\\d.txt", "later");
        Ask("reg-delete HKCU\\New");
        Ask("reg-set HKCU\\Test \"\" REG_SZ later");
        Ask("reg-set HKCU\\Later\\Key\\Below Value REG_DWORD 7");
        Ask("db-delete New");
        tolvenar::AddRecord(L"Plain", L"Later", 4);
        tolvenar::MakeDatabase(L"Later");
    }
    Contents Now() { return ContentsOf(device().sim()); }
};

TEST_F(AnyDeviceTest, WhatWasBackedUpComesBackAndNothingElseChanges) {
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ(Numbers{1}, States()) << "the device did not change";
    Change();
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ((Numbers{1, 2}), States());
    const Contents second = Now();
    ChangeAgain();
    EXPECT_EQ(0, RestoreLast());
    EXPECT_EQ(Texts(), Differences(second, Now()));
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ((Numbers{1, 2}), States()) << "the restore left nothing over";
}

// The device goes to sleep while the program runs.
TEST_F(AnyDeviceTest, ABackupGoesOnWhenTheDeviceWakesUp) {
    EXPECT_EQ(0, BackUp());
    Change();
    HoldFirstBlock();
    Program program = Launch("AutoBackup: External");
    ASSERT_TRUE(RulesAreUsedUp());
    Ask("resume");
    LetGo();
    EXPECT_EQ(0, program.ExitCode());
    EXPECT_EQ((Numbers{1, 2}), States());
}

}  // namespace
}  // namespace tests
