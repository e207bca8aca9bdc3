// What a backup tells of the state that it wrote.
#include "tests/storage/operations/restore_engine_fixture.h"

namespace tolvenar {
namespace {

class SavedCountsTest : public RestoreEngineTest {
protected:
    void SetUp() override {
        RestoreEngineTest::SetUp();
        device().PutFile(L"\\a.txt", "first");
        device().PutFile(L"\\same.txt", "first");
        device().PutFile(L"\\gone.txt", "first");
        SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(1));
        MakeDatabase(L"People");
        ann_ = AddRecord(L"People", L"Ann", 1);
        ASSERT_EQ(Done(), Backup(1));
    }
    void ExpectCounts(std::uint32_t state, std::uint32_t added, std::uint32_t changed,
                      std::uint32_t deleted) {
        const SavedCounts& saved = storage_.saved;
        EXPECT_EQ(state, saved.state_number);
        EXPECT_EQ(added, saved.added);
        EXPECT_EQ(changed, saved.changed);
        EXPECT_EQ(deleted, saved.deleted);
    }

    CEOID ann_ = 0;
};

TEST_F(SavedCountsTest, TheFirstStateAddsEverything) {
    EXPECT_EQ(1u, storage_.saved.state_number);
    EXPECT_LE(6u, storage_.saved.added);
    EXPECT_EQ(0u, storage_.saved.changed);
    EXPECT_EQ(0u, storage_.saved.deleted);
}

TEST_F(SavedCountsTest, AChangedObjectIsOne) {
    device().PutFile(L"\\a.txt", "second, longer");
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(2));
    WriteRecord(L"People", ann_, {{kName, 0, L"Anna"}});
    ASSERT_EQ(Done(), Backup(2));
    ExpectCounts(2, 0, 3, 0);
}

TEST_F(SavedCountsTest, WhatIsNewAndWhatIsGoneIsCounted) {
    device().PutFile(L"\\b.txt", "new");
    device().PutFile(L"\\c.txt", "new");
    device().PutFile(L"\\a.txt", "second, longer");
    device().Remove(L"\\gone.txt");
    ASSERT_EQ(Done(), Backup(2));
    ExpectCounts(2, 2, 1, 1);
}

// Size, time and attributes are the same: the older version has the key of the newer.
TEST_F(SavedCountsTest, AFileOfWhichTheContentsAloneChangedIsChanged) {
    const auto before = device().Info(L"\\same.txt");
    device().PutFile(L"\\same.txt", "other");
    device().Touch(L"\\same.txt", before.modified);
    ASSERT_EQ(Done(), Backup(2));
    ExpectCounts(2, 0, 1, 0);
}

TEST_F(SavedCountsTest, AnObjectThatCouldNotBeWrittenIsNotCounted) {
    device().PutFile(L"\\a.txt", "second, longer");
    device().Fault("WriteFile", 2, 1, ERROR_WRITE_FAULT);
    ASSERT_EQ(Done(), Backup(2));
    device().EndFaults();
    EXPECT_EQ(1u, backup_.failed);
    ExpectCounts(2, 0, 0, 0);
}

TEST_F(SavedCountsTest, WithoutADifferenceAndAfterARestoreNothingIsSaid) {
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
    EXPECT_EQ(0u, storage_.saved.state_number);
    device().PutFile(L"\\b.txt", "new");
    ASSERT_EQ(Done(), Backup(2));
    EXPECT_EQ(2u, storage_.saved.state_number);
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ(0u, storage_.saved.state_number);
}

}  // namespace
}  // namespace tolvenar
