// The room of a backup: what the card has, and what it would have without the old storage.
#include "storage/operations/backup_room.h"

#include "storage/files/handle_bytes.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

constexpr std::uint64_t k4Gigabytes = 4294967296;

class BackupRoomTest : public EngineTest {
protected:
    // The device holds 100,000 bytes, a state of 80,000 others is stored already.
    void SetUp() override {
        EngineTest::SetUp();
        LetTimePass();
        device().PutFile(L"\\a.txt", std::string(80000, 'a'));
        ASSERT_EQ(Done(), Backup());
        device().PutFile(L"\\a.txt", std::string(100000, 'b'));
        old_bytes_ = Content(kSav).size() + Content(kJournal).size();
    }
    // A backup for which the card has not enough free, and whether deleting the storage helps.
    bool DeletionHelps(std::uint64_t free_bytes) {
        device().Set("card.free", std::to_string(free_bytes));
        EXPECT_EQ(Failed(ResultCode::kNoSpace), Backup());
        EXPECT_EQ(free_bytes, backup_.bytes_free);
        return DeletionMakesRoom(storage_.names, backup_);
    }
    // What a backup into a new storage asks for, known from one that found no room.
    std::uint64_t FullBackup() {
        DeletionHelps(0);
        return backup_.bytes_of_full_backup;
    }

    std::uint64_t old_bytes_ = 0;
};

TEST_F(BackupRoomTest, TheFullBackupIsEstimatedAboveWhatItTakes) {
    const std::uint64_t estimated = FullBackup();
    CloseStorage(storage_);
    device().Set("card.free", "1000000");
    device().Remove(Wide(kSav));
    device().Remove(Wide(kJournal));
    ASSERT_TRUE(Make());
    ASSERT_EQ(Done(), Backup(1));
    const std::uint64_t taken = Content(kSav).size() + Content(kJournal).size() + 10000;
    EXPECT_LE(taken, estimated);
    EXPECT_GE(taken + 0x10000, estimated);
}

TEST_F(BackupRoomTest, DeletionHelpsFromTheByteOnThatMakesRoomForEverything) {
    const std::uint64_t full = FullBackup();
    ASSERT_LT(old_bytes_, full);
    EXPECT_FALSE(DeletionHelps(full - old_bytes_ - 1));
    EXPECT_TRUE(DeletionHelps(full - old_bytes_));
}

// The low half of what is free then decides whether the backup is let in.
TEST_F(BackupRoomTest, DeletionDoesNotHelpWhenTheLowHalfIsTooSmallAfterwardsToo) {
    const std::uint64_t full = FullBackup();
    EXPECT_FALSE(DeletionHelps(k4Gigabytes + full - old_bytes_ - 1));
    EXPECT_FALSE(DeletionHelps(k4Gigabytes + 5 * 1024));
}

// A card with 4 GB and a little has room; that little is all that is looked at.
TEST_F(BackupRoomTest, WhereThereIsRoomAlreadyNothingIsDeleted) {
    const std::uint64_t full = FullBackup();
    EXPECT_FALSE(DeletionHelps(k4Gigabytes + full - old_bytes_));
}

TEST_F(BackupRoomTest, AHeldFileOfTheStorageCannotBeDeletedForRoom) {
    const std::uint64_t enough = FullBackup() - old_bytes_;
    ASSERT_TRUE(DeletionHelps(enough));
    for (const char16_t* file : {kSav, kJournal}) {
        const UniqueHandle reader = Reader(file);
        EXPECT_FALSE(DeletionMakesRoom(storage_.names, backup_));
    }
    EXPECT_TRUE(DeletionMakesRoom(storage_.names, backup_));
}

// Offsets have 32 bits: one that would pass 0xFFFFFFFF takes no block.
TEST_F(BackupRoomTest, AStorageFileThatWouldPass4GigabytesIsFullAndTheLogSaysSo) {
    device().Set("card.size", "6000000000");
    device().Set("card.free", "4294967295");
    {
        const UniqueHandle file = OpenSavFileForWriting(storage_.names);
        LONG high = 0;
        ::SetFilePointer(file.get(), static_cast<LONG>(0xFFFFFFFF - 2000), &high, FILE_BEGIN);
        ASSERT_TRUE(::SetEndOfFile(file.get()));
    }
    device().Set("card.free", "4000000");
    EXPECT_EQ(Failed(ResultCode::kNoSpace), Backup());
    EXPECT_TRUE(backup_.storage_is_full);
    EXPECT_FALSE(DeletionMakesRoom(storage_.names, backup_));
    EXPECT_EQ(0xFFFFFFFFu - 2000, device().Info(Wide(kSav)).size);
    EXPECT_EQ((Lines{"E DoBackup: The storage file cannot grow over 4 GB"}), LogLines());
    device().PutFile(L"\\a.txt", std::string(100, 'b'));
    EXPECT_EQ(Done(), Backup());
}

// Its version of the state before has no other place.
TEST_F(BackupRoomTest, WhileAFileCannotBeReadNothingIsDeletedForRoom) {
    const std::uint64_t enough = FullBackup() - old_bytes_ + 1000;
    device().PutFile(L"\\c.txt", "new");
    device().Set("card.free", std::to_string(enough));
    {
        const tests::FileLock lock = device().Lock(L"\\c.txt");
        EXPECT_EQ(Failed(ResultCode::kNoSpace), Backup());
        EXPECT_FALSE(DeletionMakesRoom(storage_.names, backup_));
    }
    EXPECT_TRUE(DeletionHelps(enough));
}

TEST_F(BackupRoomTest, AFullStorageFileIsNeverDeletedForRoom) {
    ASSERT_TRUE(DeletionHelps(FullBackup() - old_bytes_));
    backup_.storage_is_full = true;
    EXPECT_FALSE(DeletionMakesRoom(storage_.names, backup_));
}

}  // namespace
}  // namespace tolvenar
