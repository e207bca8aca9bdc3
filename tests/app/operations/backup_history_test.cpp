#include "app/operations/backup_history.h"

#include "app/settings/own_values.h"
#include "platform/text.h"
#include "res/resource.h"
#include "storage/format/storage_names.h"
#include "tests/support/device_test.h"

namespace tolvenar {
namespace {

class BackupHistoryTest : public tests::DeviceTest {
protected:
    void SetUp() override {
        tests::DeviceTest::SetUp();
        WriteSetting(setting::kOnTime, 0);  // an installation
        ASSERT_TRUE(MakeStorageNames(u"\\Storage Card\\Home", home_));
        ASSERT_TRUE(MakeStorageNames(u"\\Storage Card\\Other", other_));
    }

    StorageNames home_;
    StorageNames other_;
};

TEST_F(BackupHistoryTest, TheLastUnattendedEndIsRemembered) {
    AutomaticBackup last{};
    EXPECT_FALSE(ReadAutomaticBackup(last));
    KeepAutomaticBackup(ResultCode::kNoSpace);
    KeepAutomaticBackup(ResultCode::kNoMemory);
    ASSERT_TRUE(ReadAutomaticBackup(last));
    EXPECT_EQ(ResultCode::kNoMemory, last.code);
    SYSTEMTIME now;
    SYSTEMTIME ended;
    ::GetLocalTime(&now);
    ASSERT_TRUE(::FileTimeToSystemTime(&last.ended, &ended));
    EXPECT_EQ(now.wYear, ended.wYear);
    EXPECT_EQ(now.wMonth, ended.wMonth);
}

TEST_F(BackupHistoryTest, EveryEndHasAText) {
    const struct {
        ResultCode code;
        UINT text;
    } kRows[] = {
        {ResultCode::kSuccess, IDS_AUTOMATIC_SAVED},
        {ResultCode::kNoDifference, IDS_AUTOMATIC_NO_CHANGE},
        {ResultCode::kNoDifferenceList, IDS_AUTOMATIC_NOT_COMPARED},
        {ResultCode::kFailed, IDS_AUTOMATIC_FAILED},
        {ResultCode::kJournalUnreadable, IDS_AUTOMATIC_NO_LIST},
        {ResultCode::kNoSpace, IDS_AUTOMATIC_NO_ROOM},
        {ResultCode::kDriver, IDS_AUTOMATIC_FAILED},
        {ResultCode::kNotStarted, IDS_AUTOMATIC_NOT_STARTED},
        {ResultCode::kNoMemory, IDS_AUTOMATIC_NO_MEMORY},
        {ResultCode::kWriteProtected, IDS_AUTOMATIC_PROTECTED},
        {ResultCode::kNoStorage, IDS_AUTOMATIC_NO_STORAGE},
    };
    for (const auto& row : kRows) {
        EXPECT_EQ(row.text, TextOfAutomaticBackup(row.code)) << static_cast<int>(row.code);
    }
}

TEST_F(BackupHistoryTest, WhatWasNotSavedIsToldOfItsStateAndStorageAlone) {
    BackupResult result;
    result.held = 1;
    result.kept = 2;
    result.failed = 4;
    KeepUnsaved(home_, 3, result);
    EXPECT_EQ(7u, ReadUnsaved(home_, 3));
    EXPECT_EQ(0u, ReadUnsaved(home_, 4));
    EXPECT_EQ(0u, ReadUnsaved(other_, 3));
    KeepUnsaved(home_, 3, BackupResult());
    EXPECT_EQ(0u, ReadUnsaved(home_, 3));
    EXPECT_FALSE(ValueExists(own_value::kLastUnsaved));
}

// Another program may have written anything there.
TEST_F(BackupHistoryTest, AValueOfAnotherSizeIsNone) {
    WriteOwnBytes(own_value::kLastAutomatic, "12345678901", 11);
    AutomaticBackup last{};
    EXPECT_FALSE(ReadAutomaticBackup(last));
    WriteOwnBytes(own_value::kLastUnsaved, "1234", 4);
    EXPECT_EQ(0u, ReadUnsaved(home_, 1));
}

}  // namespace
}  // namespace tolvenar
