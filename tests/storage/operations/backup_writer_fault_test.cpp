// Backups whose platform calls fail: the result that is told, and what is left behind.
#include "tests/storage/operations/backup_fixture.h"

namespace tolvenar {
namespace {

class BackupWriterFaultTest : public BackupTest {
protected:
    // One state, and a file that waits for the next.
    void SetUp() override {
        BackupTest::SetUp();
        device().PutFile(L"\\a.txt", "first");
        ASSERT_TRUE(Backup(1));
        device().PutFile(L"\\n.txt", "123456789");
    }

    // A backup that fails before it writes: nothing on the card is touched.
    void ExpectUntouched(ResultCode code) {
        const std::string sav = Sav();
        const std::string journal = Journal();
        EXPECT_FALSE(Backup(2));
        EXPECT_EQ(code, code_);
        device().EndFaults();
        EXPECT_EQ(sav, Sav());
        EXPECT_EQ(journal, Journal());
        ExpectEverythingClosed();
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
    device().Fault("SetFilePointer", 1, 1, ERROR_READ_FAULT, ", 0, 2");
    ExpectUntouched(ResultCode::kFailed);
}

TEST_F(BackupWriterFaultTest, AStorageFileThatIsBeingReadTakesTheState) {
    const UniqueHandle reader(::CreateFileW(kSavPath, GENERIC_READ,
                                            FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(reader);
    EXPECT_TRUE(Backup(2));
    EXPECT_EQ(ResultCode::kSuccess, code_);
    EXPECT_EQ(u"", Log());
}

TEST_F(BackupWriterFaultTest, AFreeSpaceThatCannotBeAskedForGives4) {
    device().Fault("GetDiskFreeSpaceExW", 1, 1, ERROR_NOT_READY);
    ExpectUntouched(ResultCode::kFailed);
}

TEST_F(BackupWriterFaultTest, AJournalWhoseSizeIsNotToBeHadGives4) {
    device().Fault("CreateFileW", 1, 1, ERROR_SHARING_VIOLATION, "Home.jrn");
    ExpectUntouched(ResultCode::kFailed);
}

TEST_F(BackupWriterFaultTest, AStorageFileThatCannotBeFlushedGives4AndTheJournalStays) {
    const std::string journal = Journal();
    device().Fault("FlushFileBuffers", 1, 1, ERROR_WRITE_FAULT);
    EXPECT_FALSE(Backup(2));
    EXPECT_EQ(ResultCode::kFailed, code_);
    EXPECT_EQ(journal, Journal());
    ExpectEverythingClosed();
}

TEST_F(BackupWriterFaultTest, ATemporaryJournalThatCannotBeMadeGives4AndTheJournalIsLoadedAgain) {
    const std::string journal = Journal();
    device().Fault("CreateFileW", 1, 1, ERROR_ACCESS_DENIED, "Home.jrn_1");
    EXPECT_FALSE(Backup(2));
    EXPECT_EQ(ResultCode::kFailed, code_);
    EXPECT_EQ(journal, Journal());
    ASSERT_NE(nullptr, storage_.journal);
    EXPECT_EQ(1, storage_.journal->MaxStateNumber());
    ExpectEverythingClosed();
    device().EndFaults();
    EXPECT_TRUE(Backup(2)) << "the next backup stores what this one could not";
}

TEST_F(BackupWriterFaultTest, AJournalThatCannotBeLoadedAgainGives5AndNoJournal) {
    // Asking for the size and the temporary journal come before the loading.
    device().Fault("CreateFileW", 3, 1, ERROR_SHARING_VIOLATION, "Home.jrn");
    EXPECT_FALSE(Backup(2));
    EXPECT_EQ(ResultCode::kJournalUnreadable, code_);
    device().EndFaults();
    EXPECT_EQ(nullptr, storage_.journal);
    ExpectEverythingClosed();
}

// A block that cannot be written is left out and its place taken; a restore of the state deletes
// the object's older version, and the next backup heals it.
TEST_F(BackupWriterFaultTest, AnObjectWhoseBlockCannotBeWrittenIsLeftOutOfTheJournal) {
    const std::size_t before = Sav().size();
    // The state's block and its empty description are written first.
    device().Fault("WriteFile", 3, 1, ERROR_WRITE_FAULT);
    ASSERT_TRUE(Backup(2));
    EXPECT_EQ(ResultCode::kSuccess, code_);
    device().EndFaults();
    EXPECT_NE(Text::npos, Log().find(u"backup item failed"));
    const CEOID oid = OidOfPath(L"\\n.txt");
    for (const ObjectRecord& record : RecordsOf(*storage_.journal)) {
        EXPECT_NE(oid, record.dwOID);
        EXPECT_EQ(0, record.flags & JF_FAILED);
    }
    ASSERT_TRUE(Backup(3));
    EXPECT_NE(std::string::npos, Sav().find("123456789", before));
}

// The state has no record then; the next backup takes the number behind it.
TEST_F(BackupWriterFaultTest, AStateWhoseOwnBlockCannotBeWrittenStillHoldsItsObjects) {
    device().Fault("WriteFile", 1, 1, ERROR_WRITE_FAULT);
    ASSERT_TRUE(Backup(2));
    device().EndFaults();
    bool has_state_record = false;
    for (const ObjectRecord& record : RecordsOf(*storage_.journal)) {
        has_state_record =
            has_state_record || (record.state_number == 2 && record.type == ObjectType::kState);
    }
    EXPECT_FALSE(has_state_record);
    EXPECT_EQ(3u, NextStateNumber(storage_.journal.get()));
}

TEST_F(BackupWriterFaultTest, AChunkThatCannotBeMappedFailsItsItem) {
    // The scan maps the two files first.
    device().Fault("MapViewOfFile", 3, 1, ERROR_NOT_ENOUGH_MEMORY);
    ASSERT_TRUE(Backup(2));
    EXPECT_NE(Text::npos, Log().find(u"Obj Name: \\n.txt"));
}

// The journal's copies of the new records are the last that is allocated before it is written.
TEST_F(BackupWriterFaultTest, AJournalThatAStoredObjectCannotBeEnteredInIsNotWritten) {
    const std::string sav = Sav();
    const std::string journal = Journal();
    progress_.quiet = true;
    const auto backup_meets = [&](int n) {
        device().PutFile(kSavPath, sav);
        device().PutFile(kJournalPath, journal);
        EXPECT_TRUE(OpenJournal(storage_, nullptr));
        FailCall("HeapAlloc", n, ERROR_NOT_ENOUGH_MEMORY);
        Backup(2, u"", true);
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
        EXPECT_EQ(ResultCode::kFailed, code_) << last - n;
        EXPECT_EQ(journal, Journal()) << last - n;
    }
}

// Calls of a backup fail once, one after the other: no crash, nothing left open, and the first
// state's blocks as they were. Closing calls are not among them: what cannot be closed stays open.
TEST_F(BackupWriterFaultTest, WhateverCallFailsTheStatesBeforeAreIntact) {
    const std::string sav = Sav();
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
            FailCall(function, n, ERROR_GEN_FAILURE);
            Backup(NextStateNumber(storage_.journal.get()));
            fired = device().Faults() == "[]";
            device().DropFaults();
            ASSERT_EQ(sav, Sav().substr(0, sav.size())) << function << " " << n;
            if (storage_.journal == nullptr) {
                ASSERT_TRUE(OpenJournal(storage_, nullptr)) << function << " " << n;
            }
            ExpectEverythingClosed();
            ASSERT_TRUE(fired || n > 1) << function << " is not called";
        }
    }
}

}  // namespace
}  // namespace tolvenar
