// A storage whose files can be read only.
#include "storage/operations/restore_engine.h"
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

class WriteProtectedTest : public EngineTest {
protected:
    void SetUp() override {
        EngineTest::SetUp();
        LetTimePass();
        device().PutFile(L"\\a.txt", "one");
        ASSERT_EQ(Done(), Backup());
        device().PutFile(L"\\a.txt", "second");
        ASSERT_EQ(Done(), Backup());
        journal_ = Content(kJournal);
        sav_ = Content(kSav);
    }
    void Protect() { device().Set("card.protected", "yes"); }
    // A start of the program.
    bool OpenAgain() {
        CloseStorage(storage_);
        return Open();
    }
    void ExpectFilesAreAsTheyWere() {
        device().Set("card.protected", "no");
        EXPECT_EQ(journal_, Content(kJournal));
        EXPECT_EQ(sav_, Content(kSav));
        EXPECT_FALSE(Exists(kJournalTemporary));
    }

    Bytes journal_;
    Bytes sav_;
};

TEST_F(WriteProtectedTest, OnAProtectedCardStatesAreListedComparedAndRestored) {
    Protect();
    ASSERT_TRUE(OpenAgain());
    EXPECT_TRUE(StorageIsWriteProtected(storage_.names));
    EXPECT_EQ(3u, NextStateNumber(storage_.journal.get()));
    EXPECT_EQ(1, FindDifferenceEx(engine_, 1, 2));
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ("one", device().FileBytes(L"\\a.txt"));
    ExpectFilesAreAsTheyWere();
}

TEST_F(WriteProtectedTest, AReadOnlyStorageFileIsRestoredFrom) {
    device().SetAttributes(Wide(kSav), FILE_ATTRIBUTE_READONLY);
    ASSERT_TRUE(OpenAgain());
    EXPECT_TRUE(StorageIsWriteProtected(storage_.names));
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ("one", device().FileBytes(L"\\a.txt"));
    ExpectFilesAreAsTheyWere();
}

TEST_F(WriteProtectedTest, AReadOnlyJournalIsRestoredFrom) {
    device().SetAttributes(Wide(kJournal), FILE_ATTRIBUTE_READONLY);
    ASSERT_TRUE(OpenAgain());
    EXPECT_TRUE(StorageIsWriteProtected(storage_.names));
    EXPECT_EQ(Done(), Restore(1));
    ExpectFilesAreAsTheyWere();
}

// The ids of what a restore makes cannot be kept: it comes back to the same contents all the same.
TEST_F(WriteProtectedTest, ADeviceThatWasResetIsRestoredFromAProtectedCard) {
    ResetDevice();
    SetStorageSettings();
    Protect();
    ASSERT_TRUE(OpenAgain());
    const Answer first = Restore(2);
    EXPECT_NE(ResultCode::kNoDifference, first.code);
    EXPECT_EQ("second", device().FileBytes(L"\\a.txt"));
    Restore(2);
    EXPECT_EQ("second", device().FileBytes(L"\\a.txt"));
    ExpectFilesAreAsTheyWere();
}

// A save was stopped between the deletion of the journal and the renaming, and the card protected.
TEST_F(WriteProtectedTest, OnAProtectedCardTheTemporaryJournalIsReadWhereItLies) {
    device().Remove(Wide(kJournal));
    Put(kJournalTemporary, journal_);
    Protect();
    ASSERT_TRUE(OpenAgain());
    EXPECT_EQ(3u, NextStateNumber(storage_.journal.get()));
    EXPECT_TRUE(JournalIsAsLoaded(storage_));
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ("one", device().FileBytes(L"\\a.txt"));
    EXPECT_FALSE(Exists(kJournal));
    EXPECT_EQ(journal_, Content(kJournalTemporary));
}

TEST_F(WriteProtectedTest, OnAProtectedCardWithoutAJournalTheStorageIsOpenedWithoutStates) {
    device().Remove(Wide(kJournal));
    Protect();
    ASSERT_TRUE(OpenAgain());
    EXPECT_EQ(0u, storage_.journal->CountRecords());
    EXPECT_TRUE(LacksItsStates(storage_));
}

TEST_F(WriteProtectedTest, ABackupWritesNothing) {
    device().PutFile(L"\\a.txt", "the third");
    Protect();
    EXPECT_EQ(Failed(), Backup());
    ExpectFilesAreAsTheyWere();
}

TEST_F(WriteProtectedTest, AStorageThatAnotherProgramHoldsIsNotTakenForAProtectedOne) {
    const tests::FileLock lock = device().Lock(Wide(kSav), "read");
    EXPECT_FALSE(StorageIsWriteProtected(storage_.names));
    EXPECT_FALSE(OpenAgain());
}

TEST_F(WriteProtectedTest, AWritableStorageIsNotProtectedNorIsOneThatIsGone) {
    EXPECT_FALSE(StorageIsWriteProtected(storage_.names));
    device().Remove(Wide(kSav));
    device().Remove(Wide(kJournal));
    EXPECT_FALSE(StorageIsWriteProtected(storage_.names));
}

// A denied access without the attribute has another reason.
TEST_F(WriteProtectedTest, ADeniedAccessAloneIsNoProtection) {
    Fail("CreateFileW", 1, ERROR_ACCESS_DENIED);
    EXPECT_FALSE(StorageIsWriteProtected(storage_.names));
    Fail("CreateFileW", 1, ERROR_ACCESS_DENIED);
    EXPECT_FALSE(OpenAgain());
}

}  // namespace
}  // namespace tolvenar
