// Backups whose platform calls fail: the result that is told, and what is left behind.
#include "snapshot/engine/difference_engine.h"
#include "storage/operations/withdrawals.h"
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
    device().Fault("CreateFileW", 1, 1, ERROR_DISK_FULL, "Home.jrn_1");
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

// The device was off for a moment: each call that writes the pair fails four times.
TEST_F(BackupWriterFaultTest, ACardThatIsLoadedAgainTakesTheWholeState) {
    LetTimePass();
    std::uint32_t state = 2;
    for (const char* function : {"WriteFile", "FlushFileBuffers", "SetEndOfFile", "DeleteFileW",
                                 "MoveFileW", "CreateFileW Home.jrn_1"}) {
        SCOPED_TRACE(function);
        const std::string call(function);
        const std::size_t blank = call.find(' ');
        device().PutFile(L"\\n.txt", call);
        device().Fault(call.substr(0, blank), 1, 4, ERROR_DEV_NOT_EXIST,
                       blank == call.npos ? "" : call.substr(blank + 1));
        EXPECT_EQ(Done(), Backup(state++));
        EXPECT_EQ(0u, backup_.failed);
        EXPECT_EQ(std::string::npos, device().Faults().find(call.substr(0, blank)));
        device().Remove(L"\\n.txt");
        EXPECT_EQ(Done(), Restore(state - 1));
        EXPECT_EQ(call, Content(u"\\n.txt"));
    }
}

TEST_F(BackupWriterFaultTest, ACardThatKnowsNoFlushingTakesTheState) {
    device().Set("card.flush.error", "50");
    EXPECT_EQ(Done(), Backup(2));
    EXPECT_EQ(0u, FindingsInPair());
}

// A block that cannot be written is left out and its place taken; the next backup stores the
// object.
TEST_F(BackupWriterFaultTest, AnObjectWhoseBlockCannotBeWrittenIsLeftOutOfTheJournal) {
    const std::size_t before = Content(kSav).size();
    // The state's block is written first.
    Fail("WriteFile", 2, ERROR_WRITE_FAULT);
    ASSERT_EQ(Done(), Backup(2));
    device().EndFaults();
    EXPECT_EQ(1u, backup_.failed);
    EXPECT_EQ(1u, Occurrences(Log(), u"backup item failed"));
    EXPECT_EQ(nullptr, RecordOf(*storage_.journal, OidOfPath(L"\\n.txt")));
    for (const ObjectRecord& record : RecordsOf(*storage_.journal)) {
        EXPECT_EQ(0, record.flags & JF_FAILED);
    }
    ASSERT_TRUE(Backup(3).done);
    EXPECT_EQ(0u, backup_.failed);
    EXPECT_NE(std::string::npos, Content(kSav).find("123456789", before));
}

TEST_F(BackupWriterFaultTest, AChangedFileWhoseBlockCannotBeWrittenKeepsItsOlderVersion) {
    device().PutFile(L"\\a.txt", "second, longer");
    device().Remove(L"\\n.txt");
    Fail("WriteFile", 2, ERROR_WRITE_FAULT);
    ASSERT_EQ(Done(), Backup(2));
    device().EndFaults();
    EXPECT_EQ(1u, backup_.failed) << "its deletion counts with it";
    ASSERT_EQ(Done(), Restore(2));
    EXPECT_EQ("first", Content(u"\\a.txt"));
}

// A restore of the state could never write it back: its folder, key or database is not there.
TEST_F(BackupWriterFaultTest, WhatIsInAFolderThatCannotBeStoredWaitsForTheNextBackup) {
    device().Remove(L"\\n.txt");
    device().PutFile(L"\\New\\Below\\b.txt", "below");
    device().PutFile(L"\\o.txt", "other");
    Fail("WriteFile", 2, ERROR_WRITE_FAULT);
    ASSERT_EQ(Done(), Backup(2));
    device().EndFaults();
    EXPECT_EQ(3u, backup_.failed);
    EXPECT_EQ(Done(), Restore(2));
    EXPECT_EQ("other", Content(u"\\o.txt"));
    EXPECT_FALSE(Exists(u"\\New"));
    EXPECT_EQ(Done(ResultCode::kNoDifference), Restore(2));
}

TEST_F(BackupWriterFaultTest, WhatIsInAKeyThatCannotBeStoredWaitsForTheNextBackup) {
    device().Remove(L"\\n.txt");
    SetValue(HKEY_CURRENT_USER, L"New", L"v", REG_SZ, "data");
    SetValue(HKEY_CURRENT_USER, L"New\\Below", L"w", REG_SZ, "data");
    Fail("WriteFile", 2, ERROR_WRITE_FAULT);
    ASSERT_EQ(Done(), Backup(2));
    device().EndFaults();
    EXPECT_EQ(4u, backup_.failed);
    EXPECT_EQ(Done(), Backup(3));
    EXPECT_EQ(Done(), Restore(2));
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"New"));
    EXPECT_EQ(Done(), Restore(3));
    EXPECT_EQ("1:data", Value(HKEY_CURRENT_USER, L"New\\Below", L"w"));
}

TEST_F(BackupWriterFaultTest, TheRecordsOfADatabaseThatCannotBeStoredWaitForTheNextBackup) {
    device().Remove(L"\\n.txt");
    MakeDatabase(L"New");
    AddRecord(L"New", L"one", 1);
    Fail("WriteFile", 2, ERROR_WRITE_FAULT);
    ASSERT_EQ(Done(), Backup(2));
    device().EndFaults();
    EXPECT_EQ(2u, backup_.failed);
    EXPECT_EQ(Done(), Backup(3));
    EXPECT_EQ(Done(), Restore(2));
    EXPECT_FALSE(DatabaseExists(u"New"));
    EXPECT_EQ(Done(), Restore(3));
    EXPECT_EQ((Lines{"one=1"}), Records(u"New"));
}

TEST_F(BackupWriterFaultTest, AFileThatWasReplacedAndCannotBeStoredKeepsItsOlderVersion) {
    device().Remove(L"\\a.txt");
    device().Remove(L"\\n.txt");
    device().PutFile(L"\\A.TXT", "second, longer");
    Fail("WriteFile", 2, ERROR_WRITE_FAULT);
    ASSERT_EQ(Done(), Backup(2));
    device().EndFaults();
    device().Remove(L"\\a.txt");
    ASSERT_EQ(Done(), Restore(2));
    EXPECT_EQ("first", Content(u"\\a.txt"));
}

// It grew, shrank or was held between the scan and its turn: the copy is the second opening.
TEST_F(BackupWriterFaultTest, AFileThatCannotBeOpenedForItsCopyKeepsItsOlderVersion) {
    device().PutFile(L"\\a.txt", "second, longer");
    device().Fault("CreateFileForMappingW", 2, 1, ERROR_SHARING_VIOLATION, "a.txt");
    ASSERT_EQ(Done(), Backup(2));
    device().EndFaults();
    EXPECT_EQ(1u, backup_.failed);
    ASSERT_EQ(Done(), Restore(2));
    EXPECT_EQ("first", Content(u"\\a.txt"));
    EXPECT_EQ("123456789", Content(u"\\n.txt"));
}

// The object store no longer knows the file when its turn comes: once for the room that it takes,
// once for its block and once for the log, each with ten tries.
TEST_F(BackupWriterFaultTest, AFileThatVanishedSinceTheScanKeepsItsOlderVersion) {
    device().PutFile(L"\\a.txt", "second, longer");
    const std::string oid = std::to_string(OidOfPath(L"\\a.txt"));
    device().Fault("CeOidGetInfoEx", 2, 1000, ERROR_INVALID_PARAMETER, oid);
    ASSERT_EQ(Done(), Backup(2));
    device().EndFaults();
    EXPECT_EQ(1u, backup_.failed);
    ASSERT_EQ(Done(), Restore(2));
    EXPECT_EQ("first", Content(u"\\a.txt"));
}

TEST_F(BackupWriterFaultTest, AValueThatVanishedSinceTheScanKeepsItsOlderVersion) {
    SetValue(HKEY_CURRENT_USER, L"T", L"changing", REG_BINARY, "first");
    ASSERT_EQ(Done(), Backup(2));
    SetValue(HKEY_CURRENT_USER, L"T", L"changing", REG_BINARY, "second, longer");
    SetValue(HKEY_CURRENT_USER, L"T", L"w", REG_BINARY, "another");
    device().Fault("RegQueryValueExW", 1, 1, ERROR_FILE_NOT_FOUND, "changing");
    ASSERT_EQ(Done(), Backup(3));
    device().EndFaults();
    EXPECT_EQ(1u, backup_.failed);
    ASSERT_EQ(Done(), Restore(3));
    EXPECT_EQ("3:first", Value(HKEY_CURRENT_USER, L"T", L"changing"));
    EXPECT_EQ("3:another", Value(HKEY_CURRENT_USER, L"T", L"w"));
}

// Records of a database share its name: they are told by their ids.
TEST_F(BackupWriterFaultTest, ARecordThatCannotBeStoredKeepsItsOlderVersionAndItsNeighbourDoesNot) {
    MakeDatabase(L"People");
    const CEOID ann = AddRecord(L"People", L"Ann", 1);
    const CEOID bob = AddRecord(L"People", L"Bob", 2);
    ASSERT_EQ(Done(), Backup(2));
    WriteRecord(L"People", ann, {{kNumber, 11}});
    WriteRecord(L"People", bob, {{kNumber, 22}});
    // The additions stand in the list with the newest first; the state's block is written before.
    Fail("WriteFile", 2, ERROR_WRITE_FAULT);
    ASSERT_EQ(Done(), Backup(3));
    device().EndFaults();
    EXPECT_EQ(1u, backup_.failed);
    ASSERT_EQ(Done(), Restore(3));
    const Lines records = Records(u"People");
    EXPECT_TRUE(records == (Lines{"Ann=1", "Bob=22"}) || records == (Lines{"Ann=11", "Bob=2"}))
        << ::testing::PrintToString(records);
}

// One that replaced the failed one has no addition of its own.
TEST_F(BackupWriterFaultTest, AFileThatWasReplacedSinceTheScanKeepsItsOlderVersion) {
    device().Remove(L"\\a.txt");
    device().PutFile(L"\\a.txt", "second, longer");
    const CEOID scanned = OidOfPath(L"\\a.txt");
    // The second search for the name is that for the deletion's file: the scan's entry is another.
    ASSERT_EQ(1, FindDifference(engine_, 1));
    EXPECT_NE(nullptr, RecordOf(*storage_.difference, scanned));
    ASSERT_NE(nullptr, storage_.newer);
    device().Remove(L"\\a.txt");
    device().PutFile(L"\\a.txt", "third");
    for (ObjectList::Node& node : *storage_.difference) {
        node.record->flags |= node.record->dwOID == scanned ? JF_FAILED : 0;
    }
    ASSERT_TRUE(WithdrawDeletionsOfFailed(engine_));
    for (const ObjectRecord& record : RecordsOf(*storage_.difference)) {
        EXPECT_TRUE((record.flags & JF_DELETE) == 0 || (record.flags & JF_FAILED) != 0);
    }
}

// The state would have two files of one name, and its restores would write now one, now the other.
TEST_F(BackupWriterFaultTest, AReplacedFileThatWasStoredIsNotKeptInItsOlderVersionToo) {
    const CEOID stored = OidOfPath(L"\\a.txt");
    device().Remove(L"\\a.txt");
    device().PutFile(L"\\a.txt", "second, longer");
    const CEOID scanned = OidOfPath(L"\\a.txt");
    ASSERT_EQ(1, FindDifference(engine_, 1));
    const std::uint32_t block_of_that_name = RecordOf(*storage_.difference, stored)->propOffset;
    // It is written, another file is not, and meanwhile it is replaced once more.
    for (ObjectList::Node& node : *storage_.difference) {
        ObjectRecord& record = *node.record;
        if (record.dwOID == scanned) {
            record.propOffset = block_of_that_name;
        } else if ((record.flags & JF_ADD) != 0) {
            record.flags |= JF_FAILED;
        }
    }
    device().Remove(L"\\a.txt");
    device().PutFile(L"\\a.txt", "third");
    ASSERT_TRUE(WithdrawDeletionsOfFailed(engine_));
    EXPECT_EQ(JF_DELETE, RecordOf(*storage_.difference, stored)->flags);
}

TEST_F(BackupWriterFaultTest, WhatIsGoneStaysGoneThoughSomethingElseFailed) {
    device().Remove(L"\\a.txt");
    Fail("WriteFile", 2, ERROR_WRITE_FAULT);
    ASSERT_EQ(Done(), Backup(2));
    device().EndFaults();
    EXPECT_EQ(1u, backup_.failed);
    device().PutFile(L"\\a.txt", "again");
    ASSERT_EQ(Done(), Restore(2));
    EXPECT_FALSE(Exists(u"\\a.txt"));
}

// Whether an older version stays in it could not be told.
TEST_F(BackupWriterFaultTest, AStorageFileThatCannotBeReadBehindAFailedObjectFailsTheBackup) {
    device().PutFile(L"\\a.txt", "second, longer");
    const std::string journal = Content(kJournal);
    Fail("WriteFile", 2, ERROR_WRITE_FAULT);
    // To compare, to leave out what is the program's own, to look at what is there, to write, to
    // look at what failed.
    device().Fault("CreateFileW", 5, 1, ERROR_SHARING_VIOLATION, "Home.sav");
    EXPECT_EQ(Failed(), Backup(2));
    EXPECT_EQ(journal, Content(kJournal));
    ExpectClosed();
}

// Without its own record a state is in no list, and nothing would lead to its objects.
TEST_F(BackupWriterFaultTest, AStateWhoseOwnBlockCannotBeWrittenIsNoneAndNothingElseIsWritten) {
    const std::string sav = Content(kSav);
    const std::string journal = Content(kJournal);
    device().PutFile(L"\\a.txt", "second, longer");
    Fail("WriteFile", 1, ERROR_WRITE_FAULT);
    const long writes = device().Calls("WriteFile");
    EXPECT_EQ(Failed(), Backup(2));
    device().EndFaults();
    EXPECT_EQ(sav, Content(kSav));
    EXPECT_EQ(journal, Content(kJournal));
    // The state's block and the log's line.
    EXPECT_EQ(writes + 2, device().Calls("WriteFile"));
    ExpectClosed();
    EXPECT_EQ(2u, NextStateNumber(storage_.journal.get()));
    EXPECT_EQ(Done(), Backup(2));
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(3));
}

TEST_F(BackupWriterFaultTest, AChunkThatCannotBeMappedFailsItsItem) {
    // The scan maps the two files first.
    Fail("MapViewOfFile", 3, ERROR_NOT_ENOUGH_MEMORY);
    ASSERT_TRUE(Backup(2).done);
    EXPECT_NE(Text::npos, Log().find(u"Obj Name: \\n.txt"));
}

// The journal takes memory for 240 records at once: what the last of 250 are entered in is the last
// that is allocated before the journal is written.
TEST_F(BackupWriterFaultTest, AJournalThatAStoredObjectCannotBeEnteredInIsNotWritten) {
    for (std::size_t i = storage_.journal->CountRecords() + 3; i < 250; ++i) {
        SetValue(HKEY_CURRENT_USER, L"Many", std::to_wstring(i).c_str(), REG_SZ, "x");
    }
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
    ASSERT_TRUE(backup_meets(last));
    EXPECT_EQ(ResultCode::kFailed, answer.code);
    EXPECT_EQ(journal, Content(kJournal));
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
