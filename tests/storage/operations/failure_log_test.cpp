// Why a restore left something over: kept beside the list, and in the log for all of it.
#include "tests/storage/operations/restore_engine_fixture.h"

namespace tolvenar {
namespace {

class FailureLogTest : public RestoreEngineTest {
protected:
    // The first state has this file, which was changed since.
    void BackUpAndChange() {
        BackUpWith(L"\\a.txt", "stored");
        device().PutFile(L"\\a.txt", "changed since");
    }
    void RestoreWithFault(const char* function, DWORD error, const char* match) {
        device().Fault(function, 1, 1000, error, match);
        EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
        device().EndFaults();
    }
    struct Yes final : RestoreQuestions {
        bool MayWriteBackMissing(const DamageCount&) override { return true; }
        bool MayTakeOlderList(std::uint32_t) override { return true; }
        bool MayGoOnWithoutRoom(std::uint64_t) override { return true; }
    };
    // Each record that is left has this reason.
    void ExpectReason(FailureReason reason) {
        ASSERT_NE(nullptr, storage_.difference);
        ASSERT_NE(0u, storage_.difference->CountRecords());
        for (const ObjectList::Node& node : *storage_.difference) {
            EXPECT_EQ(reason, storage_.failures.Of(*node.record));
        }
    }

    Yes goes_on_;
};

TEST_F(FailureLogTest, AHeldFileIsInUse) {
    BackUpAndChange();
    const auto lock = device().Lock(L"\\a.txt");
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    ExpectReason(FailureReason::kInUse);
    EXPECT_TRUE(LogHas("Not restored, in use: \\a.txt"));
}

TEST_F(FailureLogTest, AReadOnlyFileIsProtected) {
    RestoreTwoFilesOfWhichOneIsReadOnly();
    ExpectReason(FailureReason::kProtected);
    EXPECT_TRUE(LogHas("Not restored, write-protected or in use: \\a.txt"));
}

// Its parts are copied in the room that is free, and none is.
TEST_F(FailureLogTest, AFileThatIsThereAndFindsNoMemoryLacksRoom) {
    BackUpAndChange();
    questions_ = &goes_on_;
    device().Set("memory.free", "0");
    device().Set("store.free", "0");
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    ExpectReason(FailureReason::kNoRoom);
}

TEST_F(FailureLogTest, AValueWhoseKeyCannotBeMadeHasNoContainer) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(1));
    ASSERT_EQ(Done(), Backup(1));
    device().Command("reg-delete HKCU\\Key");
    RestoreWithFault("RegCreateKeyExW", ERROR_ACCESS_DENIED, "Key");
    EXPECT_TRUE(LogHas("Not restored, no folder, key or database for it: HKCU\\Key\\v"));
    EXPECT_TRUE(LogHas("Not restored, write-protected or in use: HKCU\\Key"));
}

TEST_F(FailureLogTest, AFolderWithSomethingInItIsNotEmpty) {
    ASSERT_EQ(Done(), Backup(1));
    device().PutFile(L"\\Sub\\a.txt", "held");
    device().Fault("DeleteFileW", 1, 1000, ERROR_SHARING_VIOLATION, "a.txt");
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    device().EndFaults();
    EXPECT_TRUE(LogHas("Not restored, something else is in it: \\Sub"));
    EXPECT_TRUE(LogHas("Not restored, in use: \\Sub\\a.txt"));
}

TEST_F(FailureLogTest, WithoutRoomForTheWholeEveryRecordLacksIt) {
    BackUpWith(L"\\large.bin", Bytes(400000, 'x'));
    device().Remove(L"\\large.bin");
    device().Set("memory.free", "150000");
    device().Set("store.free", "150000");
    EXPECT_EQ(Failed(ResultCode::kFailed), Restore(1));
    ExpectReason(FailureReason::kNoRoom);
}

TEST_F(FailureLogTest, TheNextRestoreForgetsTheReasons) {
    BackUpAndChange();
    {
        const auto lock = device().Lock(L"\\a.txt");
        EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    }
    const ObjectRecord* const left = storage_.difference->First()->record;
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ(FailureReason::kNone, storage_.failures.Of(*left));
}

}  // namespace
}  // namespace tolvenar
