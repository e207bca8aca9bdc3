// Backups whose platform calls fail: the result that is told, and what is left behind.
#include "tests/support/engine_test.h"

namespace tolvenar {
namespace {

class BackupWriterFaultTest : public EngineTest {
protected:
    // One state, and a file that waits for the next.
    void SetUp() override {
        EngineTest::SetUp();
        device().PutFile(L"\\a.txt", "first");
        ASSERT_TRUE(Backup(1).done);
        device().PutFile(L"\\n.txt", "123456789");
    }

    // A backup that fails before it writes: nothing on the card is touched.
    void ExpectUntouched(ResultCode code) {
        const std::string sav = Content(kSav);
        const std::string journal = Content(kJournal);
        EXPECT_EQ(Failed(code), Backup(2));
        device().EndFaults();
        EXPECT_EQ(sav, Content(kSav));
        EXPECT_EQ(journal, Content(kJournal));
        ExpectClosed();
        EXPECT_NE(nullptr, storage_.journal);
    }
};

TEST_F(BackupWriterFaultTest, WithoutADifferenceListTheCodeIs3) {
    device().Fault("CreateFileW", 1, 1, ERROR_SHARING_VIOLATION, "Home.sav");
    ExpectUntouched(ResultCode::kNoDifferenceList);
}

TEST_F(BackupWriterFaultTest, AStorageFileThatCannotBeOpenedForWritingGives4) {
    device().Fault("CreateFileW", 2, 1, ERROR_SHARING_VIOLATION, "Home.sav");
    ExpectUntouched(ResultCode::kFailed);
}

// Its blocks would otherwise stand over the head.
TEST_F(BackupWriterFaultTest, AStorageFileWhoseEndCannotBeReachedGives4) {
    Fail("GetFileSize", 1, ERROR_READ_FAULT);
    ExpectUntouched(ResultCode::kFailed);
    const std::string end = ", " + std::to_string(Content(kSav).size()) + ", ";
    device().Fault("SetFilePointer", 1, 1, ERROR_READ_FAULT, end);
    ExpectUntouched(ResultCode::kFailed);
}

TEST_F(BackupWriterFaultTest, AStorageFileThatIsBeingReadTakesTheState) {
    const UniqueHandle reader = Reader(kSav);
    EXPECT_EQ(Done(), Backup(2));
    EXPECT_EQ(u"", Log());
}

TEST_F(BackupWriterFaultTest, AFreeSpaceThatCannotBeAskedForGives4) {
    Fail("GetDiskFreeSpaceExW", 1, ERROR_NOT_READY);
    ExpectUntouched(ResultCode::kFailed);
}

TEST_F(BackupWriterFaultTest, AJournalWhoseSizeIsNotToBeHadGives4) {
    device().Fault("CreateFileW", 1, 1, ERROR_SHARING_VIOLATION, "Home.jrn");
    ExpectUntouched(ResultCode::kFailed);
}

TEST_F(BackupWriterFaultTest, AStorageFileThatCannotBeFlushedGives4AndTheJournalStays) {
    const std::string journal = Content(kJournal);
    Fail("FlushFileBuffers", 1, ERROR_WRITE_FAULT);
    EXPECT_EQ(Failed(), Backup(2));
    EXPECT_EQ(journal, Content(kJournal));
    ExpectClosed();
}

TEST_F(BackupWriterFaultTest, ATemporaryJournalThatCannotBeMadeGives4AndTheJournalIsLoadedAgain) {
    const std::string journal = Content(kJournal);
    device().Fault("CreateFileW", 1, 1, ERROR_ACCESS_DENIED, "Home.jrn_1");
    EXPECT_EQ(Failed(), Backup(2));
    EXPECT_EQ(journal, Content(kJournal));
    ASSERT_NE(nullptr, storage_.journal);
    EXPECT_EQ(1, storage_.journal->MaxStateNumber());
    ExpectClosed();
    device().EndFaults();
    EXPECT_TRUE(Backup(2).done) << "the next backup stores what this one could not";
}

TEST_F(BackupWriterFaultTest, AJournalThatCannotBeLoadedAgainGives5AndNoJournal) {
    // Asking for the size and the temporary journal come before the loading.
    device().Fault("CreateFileW", 3, 1, ERROR_SHARING_VIOLATION, "Home.jrn");
    EXPECT_EQ(Failed(ResultCode::kJournalUnreadable), Backup(2));
    device().EndFaults();
    EXPECT_EQ(nullptr, storage_.journal);
    ExpectClosed();
}

// A block that cannot be written is left out and its place taken; a restore of the state deletes
// the object's older version, and the next backup heals it.
TEST_F(BackupWriterFaultTest, AnObjectWhoseBlockCannotBeWrittenIsLeftOutOfTheJournal) {
    const std::size_t before = Content(kSav).size();
    // The state's block is written first.
    Fail("WriteFile", 2, ERROR_WRITE_FAULT);
    ASSERT_EQ(Done(), Backup(2));
    device().EndFaults();
    EXPECT_NE(Text::npos, Log().find(u"backup item failed"));
    EXPECT_EQ(nullptr, RecordOf(*storage_.journal, OidOfPath(L"\\n.txt")));
    for (const ObjectRecord& record : RecordsOf(*storage_.journal)) {
        EXPECT_EQ(0, record.flags & JF_FAILED);
    }
    ASSERT_TRUE(Backup(3).done);
    EXPECT_NE(std::string::npos, Content(kSav).find("123456789", before));
}

// The state has no record then; the next backup takes the number behind it.
TEST_F(BackupWriterFaultTest, AStateWhoseOwnBlockCannotBeWrittenStillHoldsItsObjects) {
    Fail("WriteFile", 1, ERROR_WRITE_FAULT);
    ASSERT_TRUE(Backup(2).done);
    device().EndFaults();
    EXPECT_EQ(nullptr, JournalRecord(2, 0, kState));
    EXPECT_EQ(3u, NextStateNumber(storage_.journal.get()));
}

TEST_F(BackupWriterFaultTest, AChunkThatCannotBeMappedFailsItsItem) {
    // The scan maps the two files first.
    Fail("MapViewOfFile", 3, ERROR_NOT_ENOUGH_MEMORY);
    ASSERT_TRUE(Backup(2).done);
    EXPECT_NE(Text::npos, Log().find(u"Obj Name: \\n.txt"));
}

// The journal's copies of the new records are the last that is allocated before it is written.
TEST_F(BackupWriterFaultTest, AJournalThatAStoredObjectCannotBeEnteredInIsNotWritten) {
    const std::string sav = Content(kSav);
    const std::string journal = Content(kJournal);
    progress_.quiet = true;
    Answer answer{};
    const auto backup_meets = [&](int n) {
        Put(kSav, sav);
        Put(kJournal, journal);
        EXPECT_TRUE(OpenJournal(storage_, nullptr));
        Fail("HeapAlloc", n, ERROR_NOT_ENOUGH_MEMORY);
        answer = Backup(2, u"", true);
        const bool pending = TakePendingFault(n);
        device().DropFaults();
        return !pending;
    };
    int last = 1;
    for (int step = 2048; step > 0; step /= 2) {
        last += backup_meets(last + step) ? step : 0;
    }
    for (int n = last; n > last - 4; --n) {  // a record and its node, for the state and the file
        ASSERT_TRUE(backup_meets(n));
        EXPECT_EQ(ResultCode::kFailed, answer.code) << last - n;
        EXPECT_EQ(journal, Content(kJournal)) << last - n;
    }
}

// Calls of a backup fail once, one after the other: no crash, nothing left open, and the first
// state's blocks as they were. Closing calls are not among them: what cannot be closed stays open.
TEST_F(BackupWriterFaultTest, WhateverCallFailsTheStatesBeforeAreIntact) {
    const std::string sav = Content(kSav);
    const char* functions[] = {
        "CreateFileW",    "ReadFile",         "WriteFile",          "SetFilePointer",
        "GetFileSize",    "FlushFileBuffers", "DeleteFileW",        "MoveFileW",
        "FindFirstFileW", "FindNextFileW",    "CreateFileMappingW", "CreateFileForMappingW",
        "MapViewOfFile",  "RegOpenKeyExW",    "RegQueryInfoKeyW",   "RegEnumKeyExW",
        "RegEnumValueW",  "RegQueryValueExW", "CeOidGetInfoEx",     "GetDiskFreeSpaceExW"};
    for (const char* function : functions) {
        bool fired = true;
        for (int n = 1; fired; n += n < 4 ? 1 : 9) {
            const std::string change = function + std::to_string(n);
            device().PutFile(L"\\changes.txt", change);
            SetValue(HKEY_CURRENT_USER, L"T", L"changes", REG_BINARY, change);
            Fail(function, n, ERROR_GEN_FAILURE);
            Backup();
            fired = device().Faults() == "[]";
            device().DropFaults();
            ASSERT_EQ(sav, Content(kSav).substr(0, sav.size())) << function << " " << n;
            if (storage_.journal == nullptr) {
                ASSERT_TRUE(OpenJournal(storage_, nullptr)) << function << " " << n;
            }
            ExpectClosed();
            ASSERT_TRUE(fired || n > 1) << function << " is not called";
        }
    }
}

}  // namespace
}  // namespace tolvenar
