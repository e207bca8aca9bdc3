// Restores of whole states.
#include <algorithm>

#include "snapshot/engine/difference_engine.h"
#include "tests/storage/operations/restore_engine_fixture.h"

namespace tolvenar {
namespace {

TEST_F(RestoreEngineTest, AStateComesBackASecondRestoreAndABackupFindNothing) {
    device().PutFile(L"\\My Documents\\a.txt", "first");
    device().PutFile(L"\\My Documents\\b.txt", "second");
    device().MakeFolder(L"\\Empty");
    SetValue(HKEY_CURRENT_USER, L"Key\\Below", L"v", REG_DWORD, Word(1));
    MakeDatabase(L"People");
    AddRecord(L"People", L"Ann", 1);
    AddRecord(L"People", L"Bob", 2);
    ASSERT_EQ(Done(), Backup(1));
    const tests::Contents before = Now();

    device().Remove(L"\\My Documents");
    device().Remove(L"\\Empty");
    device().PutFile(L"\\New\\c.txt", "new");
    ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Key");
    SetValue(HKEY_CURRENT_USER, L"Other", L"v", REG_DWORD, Word(2));
    device().Command("db-delete People");
    MakeDatabase(L"Others");
    AddRecord(L"Others", L"Cid", 3);

    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ(before, Now());
    ExpectClosed();
    EXPECT_NE(nullptr, storage_.journal);

    EXPECT_EQ(Done(ResultCode::kNoDifference), Restore(1));
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
}

TEST_F(RestoreEngineTest, AnOlderStateComesBackAndTheLastOneAfterIt) {
    device().PutFile(L"\\a.txt", "one");
    BackUpWith(L"\\gone.txt", "in one only");
    const tests::Contents one = Now();
    device().PutFile(L"\\a.txt", "two, longer");
    device().Remove(L"\\gone.txt");
    device().PutFile(L"\\b.txt", "in two only");
    ASSERT_EQ(Done(), Backup(2));
    const tests::Contents two = Now();
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(Done(), Restore(1));
        EXPECT_EQ(one, Now());
        EXPECT_EQ(Done(), Restore(2));
        EXPECT_EQ(two, Now());
    }
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(3));
}

TEST_F(RestoreEngineTest, WithNothingToDoCompleteIsPostedThreeTimes) {
    BackUpWith(L"\\a.txt", "one");
    progress_.texts.clear();
    EXPECT_EQ(Done(ResultCode::kNoDifference), Restore(1));
    ASSERT_EQ(8u + 3u, progress_.texts.size());
    EXPECT_EQ(3, std::count(progress_.texts.end() - 3, progress_.texts.end(), u"Complete."));
    ExpectClosed();
}

TEST_F(RestoreEngineTest, TheStepsOfARestoreAreAnnouncedInOrder) {
    BackUpWith(L"\\a.txt", "one");
    device().PutFile(L"\\a.txt", "two, longer");
    progress_.texts.clear();
    EXPECT_TRUE(Restore(1).done);
    EXPECT_EQ((Texts{u"Preparing object list...", u"Scanning files...",
                     u"Scanning HKCR registry entry...", u"Scanning HKCU registry entry...",
                     u"Scanning HKLM registry entry...", u"Scanning HKU registry entry...",
                     u"Scanning databases...", u"Finding differences...", u"Restoring...",
                     u"Saving object list...", u"Loading object list..."}),
              progress_.texts);
}

TEST_F(RestoreEngineTest, WithoutItsStorageFileTheDifferencesCannotBeFound) {
    device().Remove(Wide(kSav));
    EXPECT_EQ(Failed(ResultCode::kNoDifferenceList), Restore(1));
}

TEST_F(RestoreEngineTest, WithoutAJournalTheDifferencesCannotBeFoundAndTheDeviceStays) {
    device().PutFile(L"\\a.txt", "one");
    storage_.journal.reset();
    EXPECT_EQ(Failed(ResultCode::kNoDifferenceList), Restore(1));
    EXPECT_TRUE(device().Exists(L"\\a.txt"));
}

TEST_F(RestoreEngineTest, AStorageFileThatCannotBeOpenedForPruningFailsTheRestore) {
    ASSERT_EQ(Done(), Backup(1));
    device().PutFile(L"\\a.txt", "new");
    device().Fault("CreateFileW", 2, 1, ERROR_SHARING_VIOLATION, "Home.sav");
    EXPECT_EQ(Failed(), Restore(1));
    ExpectClosed(true);
    EXPECT_TRUE(device().Exists(L"\\a.txt"));
}

TEST_F(RestoreEngineTest,
       AStorageFileThatCannotBeMappedIsADriversFailureAndTheJournalIsLoadedAgain) {
    ASSERT_EQ(Done(), Backup(1));
    device().PutFile(L"\\a.txt", "new");
    // The plan does without a mapping.
    device().Fault("CreateFileForMappingW", 1, 2, ERROR_INVALID_FUNCTION, "Home.sav");
    EXPECT_EQ(Done(ResultCode::kDriver), Restore(1));
    ExpectClosed();
    ASSERT_NE(nullptr, storage_.journal);
    EXPECT_NE(0u, storage_.journal->CountRecords());
    EXPECT_TRUE(device().Exists(L"\\a.txt"));
}

TEST_F(RestoreEngineTest, AJournalThatCannotBeLoadedAgainIsReportedAndThereIsNone) {
    ASSERT_EQ(Done(), Backup(1));
    device().PutFile(L"\\a.txt", "new");
    // After the look for a write protection and ".jrn_1".
    device().Fault("CreateFileW", 3, 1, ERROR_SHARING_VIOLATION, "Home.jrn");
    EXPECT_EQ(Failed(ResultCode::kJournalUnreadable), Restore(1));
    EXPECT_EQ(nullptr, storage_.journal);
    EXPECT_FALSE(device().Exists(L"\\a.txt"));
    ExpectClosed(true);
}

// Without a journal nothing else may run: that is what has to be told.
TEST_F(RestoreEngineTest, AnUnreadableJournalIsReportedRatherThanADriversFailure) {
    ASSERT_EQ(Done(), Backup(1));
    device().PutFile(L"\\a.txt", "new");
    device().Fault("CreateFileForMappingW", 1, 1, ERROR_INVALID_FUNCTION, "Home.sav");
    device().Fault("CreateFileW", 3, 1, ERROR_SHARING_VIOLATION, "Home.jrn");
    EXPECT_EQ(Failed(ResultCode::kJournalUnreadable), Restore(1));
    EXPECT_EQ(nullptr, storage_.journal);
}

// The key seems to be another one, new on the device; deleting it would take its values along.
TEST_F(RestoreEngineTest, AKeyWhoseBlockIsDamagedKeepsItsValues) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(1));
    ASSERT_EQ(Done(), Backup(1));
    std::string sav = Content(kSav);
    const std::size_t name = sav.find(Terminated(u"Key"));
    ASSERT_NE(std::string::npos, name);
    sav[name - 4] = 7;  // a name of an odd length
    Put(kSav, sav);
    // Another object took the identifier first at this backup.
    for (const ObjectList::Node& node : *storage_.journal) {
        node.record->TolvOID ^= node.record->propOffset == name - 26 ? 0x01000000u : 0;
    }
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_EQ("4:" + Word(1), Value(HKEY_CURRENT_USER, L"Key", L"v"));
}

TEST_F(RestoreEngineTest, FailedObjectsAreReportedRatherThanAnUnreadableJournal) {
    BackUpWith(L"\\a.txt", "stored");
    const auto lock = device().Lock(L"\\a.txt");  // not seen by the scan: to be written back
    device().Fault("CreateFileW", 3, 1, ERROR_SHARING_VIOLATION, "Home.jrn");
    EXPECT_EQ(Failed(), Restore(1));
    EXPECT_EQ(nullptr, storage_.journal);
    ExpectClosed(true);
}

TEST_F(RestoreEngineTest, FailedObjectsLeaveTheDifferenceListWithExactlyThem) {
    RestoreTwoFilesOfWhichOneIsReadOnly();
    ExpectClosed(true);
    // Neither could the new version be deleted nor the old one written.
    std::vector<std::uint16_t> flags = DifferenceFlags();
    std::sort(flags.begin(), flags.end());
    EXPECT_EQ((std::vector<std::uint16_t>{JF_ADD, JF_DELETE}), flags);
    EXPECT_EQ("changed since", device().FileBytes(L"\\a.txt"));
    EXPECT_EQ("stored", device().FileBytes(L"\\b.txt"));
}

TEST_F(RestoreEngineTest, NewIdsOfWhatSucceededAreSavedThoughOthersFailed) {
    RestoreTwoFilesOfWhichOneIsReadOnly();
    const std::uint32_t oid = device().Info(L"\\b.txt").oid;
    ASSERT_TRUE(OpenJournal(storage_, nullptr));
    const auto ids = FieldsOf(*storage_.journal, &ObjectRecord::dwOID);
    EXPECT_EQ(1, std::count(ids.begin(), ids.end(), oid));
}

TEST_F(RestoreEngineTest, OnACardWithoutRoomForAnotherJournalTheOldOneStaysAsItIs) {
    BackUpWith(L"\\a.txt", "stored");
    device().Remove(L"\\a.txt");
    const Bytes journal = Content(kJournal);
    device().Set("card.free", std::to_string(journal.size() - 1));
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ("stored", device().FileBytes(L"\\a.txt"));
    EXPECT_EQ(journal, Content(kJournal));
    EXPECT_EQ(0u, Content(kJournalTemporary).size());
    ASSERT_NE(nullptr, storage_.journal);
    EXPECT_EQ(journal.size() / 32, storage_.journal->CountRecords());
    // The ids in it are those from before: the next backup stores the file once more.
    device().Set("card.free", "10000000");
    EXPECT_EQ(Done(), Backup(2));
}

TEST_F(RestoreEngineTest, OnACardWithJustEnoughRoomTheJournalIsSaved) {
    BackUpWith(L"\\a.txt", "stored");
    device().Remove(L"\\a.txt");
    const Bytes journal = Content(kJournal);
    device().Set("card.free", std::to_string(journal.size()));
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ(journal.size(), Content(kJournal).size());
    EXPECT_EQ(Done(ResultCode::kNoDifference), Backup(2));
}

TEST_F(RestoreEngineTest, TheRegistryObjectsAreForgottenWithTheDifferenceList) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(1));
    ASSERT_EQ(Done(), Backup(1));
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(2));
    ASSERT_EQ(1, FindDifference(engine_, 1));
    std::uint32_t TolvOID = 0;
    for (const ObjectRecord& record : RecordsOf(*storage_.newer)) {
        TolvOID = TolvOID != 0 ? TolvOID : record.TolvOID;
    }
    ASSERT_NE(nullptr, storage_.registry_objects.RegObjectFind(TolvOID));
    EXPECT_TRUE(Restore(1).done);
    EXPECT_EQ(nullptr, storage_.registry_objects.RegObjectFind(TolvOID));
    // What is left over is described by them.
    device().Fault("CreateFileW", 2, 1, ERROR_SHARING_VIOLATION, "Home.sav");
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Word(3));
    EXPECT_FALSE(Restore(1).done);
    EXPECT_NE(nullptr, storage_.registry_objects.RegObjectFind(TolvOID));
    EXPECT_TRUE(RestoreAdvanced(true).done);
    EXPECT_EQ(nullptr, storage_.registry_objects.RegObjectFind(TolvOID));
}

TEST_F(RestoreEngineTest, ANewUrlCacheDatabaseIsLeftOnTheDevice) {
    ASSERT_EQ(Done(), Backup(1));
    MakeDatabase(L"\\URL Cache");
    MakeDatabase(L"\\Other");
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_TRUE(DatabaseExists(u"\\URL Cache"));
    EXPECT_FALSE(DatabaseExists(u"\\Other"));
}

TEST_F(RestoreEngineTest, AnUrlCacheDatabaseThatIsGoneComesBack) {
    const CEOID oid = MakeDatabase(L"\\URL Cache");
    ASSERT_EQ(Done(), Backup(1));
    ASSERT_TRUE(databases_.DeleteDatabase(oid));
    EXPECT_TRUE(Restore(1).done);
    EXPECT_TRUE(DatabaseExists(u"\\URL Cache"));
}

// Oddity 14: reported, with the contents and everything else restored.
TEST_F(RestoreEngineTest, AFolderWithContentsWhoseAttributesChangedIsReported) {
    BackUpWith(L"\\Sub\\a.txt", "stored");
    device().SetAttributes(L"\\Sub", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_EQ("stored", device().FileBytes(L"\\Sub\\a.txt"));
}

TEST_F(RestoreEngineTest, AnEmptyFolderWhoseAttributesChangedComesBack) {
    device().MakeFolder(L"\\Sub");
    ASSERT_EQ(Done(), Backup(1));
    device().SetAttributes(L"\\Sub", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(Done(), Restore(1));
    EXPECT_EQ(DWORD{FILE_ATTRIBUTE_DIRECTORY}, device().Info(L"\\Sub").attributes);
}

TEST_F(RestoreEngineTest, AChangedReadOnlyFileIsReported) {
    BackUpWith(L"\\a.txt", "stored");
    device().PutFile(L"\\a.txt", "changed since");
    device().SetAttributes(L"\\a.txt", FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_EQ("changed since", device().FileBytes(L"\\a.txt"));
}

TEST_F(RestoreEngineTest, ADatabaseWithRecordsWhoseSortOrdersChangedIsReportedAndKeepsItsRecords) {
    const CEOID oid = MakeDatabase(L"People");
    AddRecord(L"People", L"Ann", 1);
    ASSERT_EQ(Done(), Backup(1));
    CEDBASEINFO info{};
    info.dwFlags = CEDB_VALIDSORTSPEC;
    info.wNumSortOrder = 1;
    info.rgSortSpecs[0].propid = kName;
    ASSERT_TRUE(databases_.SetDatabaseInfo(oid, info));
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_EQ((Lines{"Ann=1"}), Records(u"People"));
}

TEST_F(RestoreEngineTest, ATreeUnderAFolderNamedRecycledIsReported) {
    device().MakeFolder(L"\\Sub");
    ASSERT_EQ(Done(), Backup(1));
    // The folder of that name is not seen by the scan, so it keeps the new folder above it.
    device().PutFile(L"\\New\\Recycled\\a.txt", "x");
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_TRUE(device().Exists(L"\\New\\Recycled"));
    EXPECT_FALSE(device().Exists(L"\\New\\Recycled\\a.txt"));
}

TEST_F(RestoreEngineTest, AFolderThatRomFilesKeepIsReported) {
    ASSERT_EQ(Done(), Backup(1));
    device().PutFile(L"\\New\\rom.dll", "x");
    device().SetAttributes(L"\\New\\rom.dll", FILE_ATTRIBUTE_INROM);
    EXPECT_EQ(Done(ResultCode::kFailed), Restore(1));
    EXPECT_TRUE(device().Exists(L"\\New\\rom.dll"));
}

// Oddity 13: a file that no scan could open is in no state.
TEST_F(RestoreEngineTest, AFileThatWasLockedAtItsOnlyBackupIsDeletedByARestoreOfThatState) {
    device().PutFile(L"\\a.txt", "x");
    {
        const auto lock = device().Lock(L"\\a.txt");
        device().PutFile(L"\\b.txt", "y");
        ASSERT_EQ(Done(), Backup(1));
    }
    EXPECT_TRUE(Restore(1).done);
    EXPECT_FALSE(device().Exists(L"\\a.txt"));
}

}  // namespace
}  // namespace tolvenar
