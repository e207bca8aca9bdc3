// What is on the device and cannot be read at a backup: the state before it lives on.
#include <algorithm>

#include "tests/storage/operations/restore_engine_fixture.h"

namespace tolvenar {
namespace {

class WithdrawalsTest : public RestoreEngineTest {
protected:
    // Backs up with a change, so that there is a state to write.
    Answer BackUpWithAChange(std::uint32_t state) {
        device().PutFile(L"\\changes.txt", "state " + std::to_string(state));
        return Backup(state);
    }
    // A restore of `state` brings back what the device had before it was emptied.
    void ExpectRestored(std::uint32_t state, const tests::Contents& contents) {
        EXPECT_EQ(Done(), Restore(state));
        EXPECT_EQ(contents, Now());
    }
    void ExpectKept(std::uint32_t count) {
        EXPECT_EQ(count, backup_.kept);
        EXPECT_EQ(0u, backup_.held);
        EXPECT_EQ(0u, backup_.failed);
    }
    Lines SortedLog() {
        Lines lines = LogLines();
        std::sort(lines.begin(), lines.end());
        return lines;
    }
    // A backup of the device as state 2 behind a state 1 of these.
    Answer BackUpBehind(const std::vector<ObjectRecord>& stored) {
        SaveStorage();
        SaveJournal(stored);
        EXPECT_TRUE(OpenJournal(storage_, nullptr));
        return Backup(2);
    }
    void DeleteFromPeople(CEOID record) {
        CEGUID volume{};
        CEOID oid = 0;
        const UniqueHandle people(
            ::CeOpenDatabaseEx(&volume, &oid, const_cast<wchar_t*>(L"People"), 0, 0, nullptr));
        ASSERT_TRUE(::CeDeleteRecord(people.get(), record));
    }
    int DeletionsInTheJournal() {
        const auto flags = FieldsOf(*storage_.journal, &ObjectRecord::flags);
        return static_cast<int>(std::count(flags.begin(), flags.end(), JF_DELETE));
    }
};

TEST_F(WithdrawalsTest, AFileThatIsHeldKeepsItsVersionOfTheStateBefore) {
    BackUpWith(L"\\a.txt", "one");
    {
        const auto lock = device().Lock(L"\\a.txt");
        EXPECT_EQ(Done(), BackUpWithAChange(2));
    }
    ExpectKept(1);
    EXPECT_EQ((Lines{"I DoBackup: Not read, kept as before: \\a.txt"}), LogLines());
    EXPECT_EQ(Done(ResultCode::kNoDifference), Restore(2));
    device().Remove(L"\\a.txt");
    EXPECT_EQ(Done(), Restore(2));
    EXPECT_EQ("one", Content(u"\\a.txt"));
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(3));
}

TEST_F(WithdrawalsTest, WithNothingButAHeldFileThereIsNoNewState) {
    BackUpWith(L"\\a.txt", "one");
    const Bytes journal = Content(kJournal);
    const auto lock = device().Lock(L"\\a.txt");
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
    EXPECT_EQ(journal, Content(kJournal));
    ExpectKept(1);
}

// Such a file is in no state (oddity 13), and the log says so.
TEST_F(WithdrawalsTest, AFileThatWasHeldAtEveryBackupIsNamedInTheLog) {
    BackUpWith(L"\\a.txt", "one");
    device().PutFile(L"\\held.txt", "held");
    const auto lock = device().Lock(L"\\held.txt");
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
    EXPECT_EQ(1u, backup_.held);
    EXPECT_EQ(0u, backup_.kept);
    EXPECT_EQ((Lines{"I DoBackup: Not read, not stored: \\held.txt"}), LogLines());
}

TEST_F(WithdrawalsTest, ARestoreWithAHeldFileLogsNothingOfTheBackups) {
    BackUpWith(L"\\a.txt", "one");
    device().PutFile(L"\\held.txt", "held");
    const auto lock = device().Lock(L"\\held.txt");
    EXPECT_EQ(Done(ResultCode::kNoDifference), Restore(1));
    EXPECT_EQ(u"", Log());
}

TEST_F(WithdrawalsTest, AHeldFileThatWasReplacedKeepsItsOldVersionUntilItCanBeRead) {
    BackUpWith(L"\\a.txt", "one");
    device().Remove(L"\\a.txt");
    device().PutFile(L"\\A.txt", "two, longer");
    {
        const auto lock = device().Lock(L"\\a.txt");
        EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
        ExpectKept(1);
    }
    EXPECT_EQ(Done(), Backup(2));
    ExpectKept(0);
    for (const auto& [state, contents] : {std::pair{1u, "one"}, std::pair{2u, "two, longer"}}) {
        EXPECT_EQ(Done(), Restore(state));
        EXPECT_EQ(contents, Content(u"\\a.txt"));
    }
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(3));
}

TEST_F(WithdrawalsTest, AFolderThatCannotBeListedKeepsWhatIsInIt) {
    device().PutFile(L"\\Sub\\Deep\\b.txt", "b");
    BackUpWith(L"\\Sub\\a.txt", "a");
    const tests::Contents before = Now();
    device().Fault("FindFirstFileW", 1, 1, ERROR_NOT_READY, "Sub\\*.*");
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
    device().EndFaults();
    ExpectKept(3);
    device().Remove(L"\\Sub");
    ExpectRestored(1, before);
}

TEST_F(WithdrawalsTest, AHiveThatCannotBeOpenedKeepsItsKeysAndValues) {
    SetValue(HKEY_USERS, L"Key\\Below", L"v", REG_DWORD, Word(1));
    SetValue(HKEY_USERS, L"Key", L"", REG_SZ, "");
    BackUpWith(L"\\a.txt", "a");
    // The hives are opened in their order, each first by its root.
    device().Fault("RegOpenKeyExW", 1, 1, ERROR_ACCESS_DENIED, "80000003");
    EXPECT_EQ(Done(), BackUpWithAChange(2));
    device().EndFaults();
    ExpectKept(5);
    EXPECT_EQ((Lines{"I DoBackup: Not read, kept as before: HKU\\",
                     "I DoBackup: Not read, kept as before: HKU\\Key",
                     "I DoBackup: Not read, kept as before: HKU\\Key\\",
                     "I DoBackup: Not read, kept as before: HKU\\Key\\Below",
                     "I DoBackup: Not read, kept as before: HKU\\Key\\Below\\v"}),
              SortedLog());
    ::RegDeleteKeyW(HKEY_USERS, L"Key");
    EXPECT_EQ(Done(), Restore(2));
    EXPECT_EQ("4:" + Word(1), Value(HKEY_USERS, L"Key\\Below", L"v"));
}

TEST_F(WithdrawalsTest, AValueThatCannotBeEnumeratedKeepsItsVersion) {
    SetValue(HKEY_CURRENT_USER, L"T\u00FFT", L"a\u00FFb", REG_DWORD, Word(1));
    ASSERT_EQ(Done(), Backup(1));
    const tests::Contents before = Now();
    device().Fault("RegEnumValueW", 1, 1000, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
    device().EndFaults();
    EXPECT_NE(Text::npos, Log().find(u"kept as before: HKCU\\T\\T\\a\\b"));
    EXPECT_EQ(Done(ResultCode::kNoDifference), Restore(1));
    EXPECT_EQ(before, Now());
}

TEST_F(WithdrawalsTest, ADatabaseThatCannotBeOpenedKeepsItsRecords) {
    MakeDatabase(L"People");
    const CEOID record = AddRecord(L"People", L"Ann", 1);
    ASSERT_EQ(Done(), Backup(1));
    Fail("CeOpenDatabaseEx", 1, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
    device().EndFaults();
    ExpectKept(2);
    char16_t line[100];
    ::wsprintfW(Wide(line), L"Not read, kept as before: People, dwOID = %x\r\n", record);
    EXPECT_NE(Text::npos, Log().find(line));
    EXPECT_NE(Text::npos, Log().find(u"Not read, kept as before: People\r\n"));
}

// The scan met it, so it is there.
TEST_F(WithdrawalsTest, ADatabaseThatCannotBeOpenedAtAllKeepsItsRecords) {
    MakeDatabase(L"People");
    AddRecord(L"People", L"Ann", 1);
    ASSERT_EQ(Done(), Backup(1));
    device().Fault("CeOpenDatabaseEx", 1, 100, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
    device().EndFaults();
    ExpectKept(2);
}

TEST_F(WithdrawalsTest, ADatabaseThatWasNeverReadIsNamedInTheLog) {
    ASSERT_EQ(Done(), Backup(1));
    MakeDatabase(L"People");
    Fail("CeOpenDatabaseEx", 1, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
    EXPECT_EQ(1u, backup_.held);
    EXPECT_EQ((Lines{"I DoBackup: Not read, not stored: People"}), LogLines());
}

TEST_F(WithdrawalsTest, DatabasesThatCannotBeListedAreKeptWithTheirRecords) {
    MakeDatabase(L"People");
    AddRecord(L"People", L"Ann", 1);
    MakeDatabase(L"Empty");
    ASSERT_EQ(Done(), Backup(1));
    const tests::Contents before = Now();
    Fail("CeFindFirstDatabaseEx", 1, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(Done(), BackUpWithAChange(2));
    device().EndFaults();
    EXPECT_EQ(3u, backup_.kept);
    device().Command("db-delete People");
    device().Remove(L"\\changes.txt");
    ExpectRestored(1, before);
    EXPECT_EQ(Done(), Restore(2));
    EXPECT_EQ((Lines{"Ann=1"}), Records(u"People"));
}

TEST_F(WithdrawalsTest, ARecordThatCannotBeReadIsKeptAndOneThatIsGoneIsNot) {
    MakeDatabase(L"People");
    AddRecord(L"People", L"Ann", 1);
    AddRecord(L"People", L"Bob", 2);
    const CEOID gone = AddRecord(L"People", L"Cid", 3);
    ASSERT_EQ(Done(), Backup(1));
    DeleteFromPeople(gone);
    Fail("CeReadRecordPropsEx", 2, ERROR_CRC);
    EXPECT_EQ(Done(), Backup(2));
    device().EndFaults();
    ExpectKept(1);
    device().Command("db-delete People");
    EXPECT_EQ(Done(), Restore(2));
    EXPECT_EQ((Lines{"Ann=1", "Bob=2"}), Records(u"People"));
}

TEST_F(WithdrawalsTest, RecordsBehindOneThatCannotBeReachedAreKept) {
    MakeDatabase(L"People");
    AddRecord(L"People", L"Ann", 1);
    AddRecord(L"People", L"Bob", 2);
    const CEOID gone = AddRecord(L"People", L"Cid", 3);
    ASSERT_EQ(Done(), Backup(1));
    DeleteFromPeople(gone);
    Fail("CeReadRecordPropsEx", 2, ERROR_CRC);
    Fail("CeSeekDatabase", 1, ERROR_CRC);
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
    device().EndFaults();
    EXPECT_EQ(2u, backup_.kept);
    EXPECT_EQ(1u, backup_.held) << "there may be more of them";
    EXPECT_NE(Text::npos, Log().find(u"Not read, not stored: People, records of it"));
}

TEST_F(WithdrawalsTest, ARecordThatWasNeverReadIsNamedInTheLog) {
    MakeDatabase(L"People");
    ASSERT_EQ(Done(), Backup(1));
    const CEOID record = AddRecord(L"People", L"Ann", 1);
    Fail("CeReadRecordPropsEx", 1, ERROR_CRC);
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
    EXPECT_EQ(1u, backup_.held);
    char line[100];
    std::snprintf(line, sizeof line, "I DoBackup: Not read, not stored: People, dwOID = %lx",
                  record);
    EXPECT_EQ(Lines{line}, LogLines());
}

TEST_F(WithdrawalsTest, DatabasesThatMayBeUnlistedAreTold) {
    ASSERT_EQ(Done(), Backup(1));
    MakeDatabase(L"People");
    Fail("CeFindNextDatabaseEx", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
    EXPECT_EQ(1u, backup_.held);
    EXPECT_EQ((Lines{"I DoBackup: There may be databases that could not be listed"}), LogLines());
}

TEST_F(WithdrawalsTest, WhatIsGoneIsGoneAndWhatChangedIsNotKept) {
    device().PutFile(L"\\gone.txt", "x");
    device().PutFile(L"\\b.txt", "one");
    SetValue(HKEY_CURRENT_USER, L"T", L"gone", REG_DWORD, Word(1));
    SetValue(HKEY_CURRENT_USER, L"T", L"v", REG_DWORD, Word(1));
    MakeDatabase(L"People");
    const CEOID ann = AddRecord(L"People", L"Ann", 1);
    ASSERT_EQ(Done(), Backup(1));
    device().Remove(L"\\gone.txt");
    device().PutFile(L"\\b.txt", "two, longer");
    UniqueHkey key;
    ASSERT_EQ(ERROR_SUCCESS, ::RegOpenKeyExW(HKEY_CURRENT_USER, L"T", 0, 0, key.Put()));
    ::RegDeleteValueW(key.get(), L"gone");
    SetValue(HKEY_CURRENT_USER, L"T", L"v", REG_DWORD, Word(2));
    WriteRecord(L"People", ann, {{kNumber, 2}});
    const tests::Contents two = Now();
    EXPECT_EQ(Done(), Backup(2));
    ExpectKept(0);
    EXPECT_EQ(u"", Log());
    EXPECT_EQ(Done(), Restore(1));
    ExpectRestored(2, two);
}

TEST_F(WithdrawalsTest, ANewCaseOfLettersIsTakenOver) {
    SetValue(HKEY_CURRENT_USER, L"Name", L"Value", REG_DWORD, Word(1));
    BackUpWith(L"\\name.txt", "x");
    ASSERT_TRUE(::MoveFileW(L"\\name.txt", L"\\other"));
    ASSERT_TRUE(::MoveFileW(L"\\other", L"\\NAME.TXT"));
    ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Name");
    SetValue(HKEY_CURRENT_USER, L"NAME", L"VALUE", REG_DWORD, Word(1));
    const tests::Contents two = Now();
    EXPECT_EQ(Done(), Backup(2));
    ExpectKept(0);
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(3));
    EXPECT_EQ(Done(), Restore(1));
    ExpectRestored(2, two);
}

TEST_F(WithdrawalsTest, WhatMovedIntoRomIsNoLongerInTheState) {
    BackUpWith(L"\\a.dll", "x");
    device().SetAttributes(L"\\a.dll", FILE_ATTRIBUTE_INROM);
    EXPECT_EQ(Done(), Backup(2));
    ExpectKept(0);
    EXPECT_EQ(1, DeletionsInTheJournal());
}

// They were in a folder of the object store that had the card's name; what is there now is the
// card's.
TEST_F(WithdrawalsTest, WhatACardHidesIsNoLongerInTheState) {
    device().PutFile(L"\\Storage Card\\Sub\\a.txt", "x");
    const std::vector<ObjectRecord> rows{
        StoreFolder(u"\\Storage Card", FILE_ATTRIBUTE_DIRECTORY, 77),
        StoreFolder(u"\\Storage Card\\Sub", FILE_ATTRIBUTE_DIRECTORY, 78),
        StoreFile(u"\\Storage Card\\Sub\\a.txt", "x", FILE_ATTRIBUTE_ARCHIVE, 79)};
    device().Set("card.temporary", "root");
    EXPECT_EQ(Done(), BackUpBehind(rows));
    ExpectKept(0);
    EXPECT_EQ(3, DeletionsInTheJournal());
}

TEST_F(WithdrawalsTest, AFolderWhereAFileWasIsNotTheFile) {
    BackUpWith(L"\\a", "x");
    device().Remove(L"\\a");
    device().MakeFolder(L"\\a");
    // It is found and cannot be described.
    device().Fault("CeOidGetInfoEx", 1, 10, ERROR_INVALID_HANDLE,
                   std::to_string(OidOfPath(L"\\a")));
    EXPECT_EQ(Done(), Backup(2));
    device().EndFaults();
    EXPECT_EQ(0u, backup_.kept);
    EXPECT_EQ(1u, backup_.held);
    EXPECT_EQ(1, DeletionsInTheJournal());
}

// Its names were ordinary ones before the storage got them.
TEST_F(WithdrawalsTest, WhatTheRulesPassOverNowIsNoLongerInTheState) {
    device().PutFile(L"\\Home.jrn_old2", "x");
    SetValue(HKEY_LOCAL_MACHINE, L"Drivers\\Active", L"v", REG_DWORD, Word(1));
    const std::vector<ObjectRecord> rows{
        StoreFile(u"\\Home.jrn_old2", "x", FILE_ATTRIBUTE_ARCHIVE, 77),
        StoreKey(HKEY_LOCAL_MACHINE, u"Drivers\\Active"),
        StoreValue(HKEY_LOCAL_MACHINE, u"Drivers\\Active", u"v", REG_DWORD, Word(1)),
        StoreDatabase(u"\\RecycleInfo", 1)};
    MakeDatabase(L"\\RecycleInfo");
    EXPECT_EQ(Done(), BackUpBehind(rows));
    ExpectKept(0);
    EXPECT_EQ(4, DeletionsInTheJournal());
}

TEST_F(WithdrawalsTest, AnObjectWhoseStoredBlockIsDamagedIsNotKept) {
    device().PutFile(L"\\a.txt", "x");
    ObjectRecord damaged = StoreFile(u"\\a.txt", "x", FILE_ATTRIBUTE_ARCHIVE, 77);
    damaged.propOffset += 0x10000;
    const auto lock = device().Lock(L"\\a.txt");
    EXPECT_EQ(Done(), BackUpBehind({damaged}));
    EXPECT_EQ(0u, backup_.kept);
    EXPECT_EQ(1u, backup_.held);
    EXPECT_EQ(1, DeletionsInTheJournal());
}

// Oddity 11: both versions have one key.
TEST_F(WithdrawalsTest, AFileOfWhichTheContentsAloneChangedIsInEveryStateAsItWas) {
    const std::uint64_t time = 0x01C0000011223300;
    for (const char* contents : {"one", "two", "six"}) {
        device().PutFile(L"\\a.txt", contents);
        device().Touch(L"\\a.txt", time);
        EXPECT_EQ(Done(), Backup());
        EXPECT_EQ(Done(ResultCode::kNoDifference), Backup());
    }
    for (const auto& [state, contents] :
         {std::pair{1u, "one"}, std::pair{3u, "six"}, std::pair{2u, "two"}}) {
        EXPECT_EQ(Done(), Restore(state));
        EXPECT_EQ(contents, Content(u"\\a.txt")) << state;
        EXPECT_EQ(Done(ResultCode::kNoDifference), Restore(state));
    }
}

TEST_F(WithdrawalsTest, AStorageFileThatCannotBeReadOnceMoreFailsTheBackup) {
    BackUpWith(L"\\a.txt", "one");
    device().Remove(L"\\a.txt");
    const Bytes journal = Content(kJournal);
    device().Fault("CreateFileW", 2, 1, ERROR_SHARING_VIOLATION, "Home.sav");
    EXPECT_EQ(Failed(), Backup(2));
    EXPECT_EQ(journal, Content(kJournal));
    ExpectClosed();
}

}  // namespace
}  // namespace tolvenar
