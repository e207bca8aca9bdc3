// Saving the journal: what the user keeps when the card or the platform fails.
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

constexpr char16_t kOld[] = u"\\Storage Card\\Backup\\Home.jrn_old";
constexpr char16_t kOld2[] = u"\\Storage Card\\Backup\\Home.jrn_old2";
constexpr char16_t kOld3[] = u"\\Storage Card\\Backup\\Home.jrn_old3";

class JournalSaveTest : public StorageTest {
protected:
    void SetUp() override {
        StorageTest::SetUp();
        // Two files and, in the third record, their state.
        for (std::uint32_t i = 1; i <= 3; ++i) {
            records_ += Word(i) + Word(0) + Word(0) + Word(236) + Word(0) + Word(1) +
                        Word(i == 3 ? 32 : 16) + Word(0);
        }
        Put(kJournal, records_);
        Put(kSav, "x");
        ASSERT_TRUE(OpenJournal(storage_, nullptr));
    }
    int Save() { return CloseJournal(storage_.names, storage_.journal, true, nullptr); }
    // Nothing was given up for a list that could not be saved.
    void ExpectNotSaved() {
        EXPECT_EQ(0, Save());
        EXPECT_EQ(nullptr, storage_.journal);
        EXPECT_EQ(records_, Content(kJournal));
        EXPECT_FALSE(Exists(kOld));
    }
    // The `count` records of the list's front, as a save writes them.
    Bytes Front(std::size_t count) {
        Bytes front;
        for (std::size_t i = 0; i < count; ++i) {
            front += records_.substr((2 - i) * 32, 32);
        }
        return front;
    }

    Bytes records_;
};

TEST_F(JournalSaveTest, WithoutATemporaryFileTheJournalStays) {
    Fail("CreateFileW", 1, ERROR_DISK_FULL);
    ExpectNotSaved();
}

// Room for 95 of 96 bytes.
TEST_F(JournalSaveTest, OnACardWithoutRoomForAllOfItTheJournalStays) {
    device().Set("card.free", "95");
    ExpectNotSaved();
}

TEST_F(JournalSaveTest, OnACardWithJustEnoughRoomItIsSaved) {
    device().Set("card.free", "96");
    EXPECT_EQ(1, Save());
    EXPECT_EQ(Front(3), Content(kJournal));
    EXPECT_FALSE(Exists(kJournalTemporary));
    EXPECT_FALSE(Exists(kOld));
}

TEST_F(JournalSaveTest, TheRoomIsAskedForBeforeTheFirstRecord) {
    Fail("SetEndOfFile", 1, ERROR_DISK_FULL);
    ExpectNotSaved();
    EXPECT_EQ(0u, Content(kJournalTemporary).size());
}

TEST_F(JournalSaveTest, WhatACrashLeftInTheTemporaryFileIsOverwritten) {
    Put(kJournalTemporary, Bytes(1000, 'x'));
    EXPECT_EQ(1, Save());
    EXPECT_EQ(Front(3), Content(kJournal));
}

// Intended: what could be written replaces the journal.
TEST_F(JournalSaveTest, APartlyWrittenListReplacesTheJournalAndTheOneOfBeforeIsKept) {
    Fail("WriteFile", 3, ERROR_DISK_FULL);
    EXPECT_EQ(0, Save());
    EXPECT_EQ(nullptr, storage_.journal);
    EXPECT_EQ(Front(2), Content(kJournal));
    EXPECT_EQ(records_, Content(kOld));
    EXPECT_FALSE(Exists(kJournalTemporary));
    EXPECT_EQ((Lines{"I MoveJournalAside: Moved aside as \\Storage Card\\Backup\\Home.jrn_old"}),
              LogLines());
}

TEST_F(JournalSaveTest, OfAFailedFirstWriteAnEmptyJournalIsLeftAndTheOneOfBeforeIsKept) {
    Fail("WriteFile", 1, ERROR_DISK_FULL);
    EXPECT_EQ(0, Save());
    EXPECT_EQ(Bytes{}, Content(kJournal));
    EXPECT_EQ(records_, Content(kOld));
}

TEST_F(JournalSaveTest, AJournalThatWasKeptBeforeStays) {
    Put(kOld, "first");
    Put(kOld2, "second");
    Fail("WriteFile", 3, ERROR_DISK_FULL);
    EXPECT_EQ(0, Save());
    EXPECT_EQ("first", Content(kOld));
    EXPECT_EQ("second", Content(kOld2));
    EXPECT_EQ(records_, Content(kOld3));
}

TEST_F(JournalSaveTest, AJournalThatCannotBeMovedAsideIsNotReplacedByAPart) {
    Fail("WriteFile", 3, ERROR_DISK_FULL);
    Fail("MoveFileW", 1, ERROR_ACCESS_DENIED);
    ExpectNotSaved();
}

// The rest of the room would be read as records.
TEST_F(JournalSaveTest, APartThatCannotBeCutDoesNotReplaceTheJournal) {
    Fail("WriteFile", 3, ERROR_DISK_FULL);
    Fail("SetEndOfFile", 2, ERROR_WRITE_FAULT);
    ExpectNotSaved();
}

TEST_F(JournalSaveTest, ProgressStopsWithTheFailedWrite) {
    Fail("WriteFile", 2, ERROR_DISK_FULL);
    EXPECT_EQ(0, CloseJournal(storage_.names, storage_.journal, true, &progress_));
    EXPECT_EQ((Lines{"begin 3", "Saving object list...", "step"}), progress_.events);
}

// What was written stays beside the journal; the next save overwrites it.
TEST_F(JournalSaveTest, AFailedFlushLeavesTheJournalAsItWas) {
    Fail("FlushFileBuffers", 1, ERROR_WRITE_FAULT);
    ExpectNotSaved();
    EXPECT_EQ(Front(3), Content(kJournalTemporary));
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    EXPECT_EQ(1, Save());
    EXPECT_EQ(Front(3), Content(kJournal));
    EXPECT_FALSE(Exists(kJournalTemporary));
}

TEST_F(JournalSaveTest, AListThatCannotTakeTheJournalsPlaceIsNotSaved) {
    {
        const UniqueHandle held = Hold(kJournal);
        EXPECT_EQ(0, Save());
    }
    EXPECT_EQ(nullptr, storage_.journal);
    EXPECT_EQ(records_, Content(kJournal));
}

TEST_F(JournalSaveTest, AFailedRenamingIsMadeUpForByTheNextLoad) {
    Fail("MoveFileW", 1, ERROR_WRITE_FAULT);
    EXPECT_EQ(0, Save());
    EXPECT_FALSE(Exists(kJournal));
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    EXPECT_EQ(3u, storage_.journal->CountRecords());
    EXPECT_TRUE(Exists(kJournal));
}

TEST_F(JournalSaveTest, ATemporaryJournalWithoutAnyStateIsNoJournalAndIsKeptAside) {
    storage_.journal.reset();
    device().Remove(Wide(kJournal));
    Put(kJournalTemporary, records_.substr(0, 64));
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    EXPECT_EQ(0u, storage_.journal->CountRecords());
    EXPECT_EQ(Bytes{}, Content(kJournal));
    EXPECT_EQ(records_.substr(0, 64), Content(kOld));
    EXPECT_FALSE(Exists(kJournalTemporary));
    EXPECT_EQ((Lines{"I MoveJournalAside: Moved aside as \\Storage Card\\Backup\\Home.jrn_old"}),
              LogLines());
}

TEST_F(JournalSaveTest, ATemporaryJournalThatCannotBeLookedIntoIsAFailedLoad) {
    storage_.journal.reset();
    device().Remove(Wide(kJournal));
    Put(kJournalTemporary, records_);
    {
        const UniqueHandle held = Hold(kJournalTemporary);
        EXPECT_FALSE(OpenJournal(storage_, nullptr));
    }
    EXPECT_FALSE(Exists(kJournal));
    EXPECT_EQ(records_, Content(kJournalTemporary));
}

TEST_F(JournalSaveTest, ANewStorageBeginsWithAnEmptyJournalAndKeepsTheOldOnesAside) {
    Put(kJournalTemporary, "temporary");
    EXPECT_TRUE(ClearJournalPlace(storage_.names) && CreateJournal(storage_.names));
    EXPECT_EQ(Bytes{}, Content(kJournal));
    EXPECT_EQ(records_, Content(kOld));
    EXPECT_EQ("temporary", Content(kOld2));
    EXPECT_FALSE(Exists(kJournalTemporary));
    EXPECT_TRUE(IsFree(kJournal));
}

TEST_F(JournalSaveTest, AnOldJournalThatCannotBeLookedForIsNotTakenForNone) {
    Fail("GetFileAttributesW", 1, ERROR_NOT_READY);
    EXPECT_FALSE(ClearJournalPlace(storage_.names));
    EXPECT_EQ(records_, Content(kJournal));
}

TEST_F(JournalSaveTest, ATemporaryJournalThatCannotBeReadIsNotTakenForOneWithoutAState) {
    storage_.journal.reset();
    device().Remove(Wide(kJournal));
    Put(kJournalTemporary, records_);
    Fail("ReadFile", 2, ERROR_READ_FAULT);
    EXPECT_FALSE(OpenJournal(storage_, nullptr));
    EXPECT_FALSE(Exists(kJournal));
    EXPECT_EQ(records_, Content(kJournalTemporary));
}

TEST_F(JournalSaveTest, AnEmptyJournalOfBeforeIsTakenAndNotKept) {
    Put(kJournal, "");
    EXPECT_TRUE(ClearJournalPlace(storage_.names) && CreateJournal(storage_.names));
    EXPECT_EQ(Bytes{}, Content(kJournal));
    EXPECT_FALSE(Exists(kOld));
}

TEST_F(JournalSaveTest, AMissingJournalIsMade) {
    device().Remove(Wide(kJournal));
    EXPECT_TRUE(ClearJournalPlace(storage_.names) && CreateJournal(storage_.names));
    EXPECT_EQ(Bytes{}, Content(kJournal));
    EXPECT_FALSE(Exists(kOld));
}

TEST_F(JournalSaveTest, AJournalThatIsHeldIsNoPlaceForANewOne) {
    const UniqueHandle held = Hold(kJournal);
    EXPECT_FALSE(ClearJournalPlace(storage_.names));
}

TEST_F(JournalSaveTest, ATemporaryJournalThatIsHeldIsNoPlaceForANewOne) {
    Put(kJournalTemporary, records_);
    const UniqueHandle held = Hold(kJournalTemporary);
    EXPECT_FALSE(ClearJournalPlace(storage_.names));
    EXPECT_EQ(records_, Content(kOld));
}

}  // namespace
}  // namespace tolvenar
