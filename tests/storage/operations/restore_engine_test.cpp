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
    SetValue(HKEY_CURRENT_USER, L"Key\\Below", L"v", REG_DWORD, Dword(1));
    MakeDatabase(u"People");
    AddRecord(u"People", L"Ann", 1);
    AddRecord(u"People", L"Bob", 2);
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    const std::string before = StoreContent();

    device().Remove(L"\\My Documents");
    device().Remove(L"\\Empty");
    device().PutFile(L"\\New\\c.txt", "new");
    ::RegDeleteKeyW(HKEY_CURRENT_USER, L"Key");
    SetValue(HKEY_CURRENT_USER, L"Other", L"v", REG_DWORD, Dword(2));
    CEOID oid = 0;
    UniqueHandle(databases_.OpenDatabase(oid, u"People", 0, 0, nullptr));
    ASSERT_TRUE(databases_.DeleteDatabase(oid));
    MakeDatabase(u"Others");
    AddRecord(u"Others", L"Cid", 3);

    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(ResultCode::kSuccess, code_);
    EXPECT_EQ(before, StoreContent());
    EXPECT_EQ("4:" + Dword(1), Value(HKEY_CURRENT_USER, L"Key\\Below", L"v"));
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, L"Other"));
    EXPECT_EQ((std::vector<std::string>{"Ann=1", "Bob=2"}), Records(u"People"));
    EXPECT_FALSE(DatabaseExists(u"Others"));
    ExpectNoLists();
    EXPECT_NE(nullptr, storage_.journal);

    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(ResultCode::kNoDifference, code_);
    EXPECT_EQ(ResultCode::kNoDifference, Backup(2));
}

TEST_F(RestoreEngineTest, AnOlderStateComesBackAndTheLastOneAfterIt) {
    device().PutFile(L"\\a.txt", "one");
    device().PutFile(L"\\gone.txt", "in one only");
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    const std::string one = StoreContent();
    device().PutFile(L"\\a.txt", "two, longer");
    device().Remove(L"\\gone.txt");
    device().PutFile(L"\\b.txt", "in two only");
    ASSERT_EQ(ResultCode::kSuccess, Backup(2));
    const std::string two = StoreContent();
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(RestoreState(1));
        EXPECT_EQ(ResultCode::kSuccess, code_);
        EXPECT_EQ(one, StoreContent());
        EXPECT_TRUE(RestoreState(2));
        EXPECT_EQ(ResultCode::kSuccess, code_);
        EXPECT_EQ(two, StoreContent());
    }
    EXPECT_EQ(ResultCode::kNoDifference, Backup(3));
}

TEST_F(RestoreEngineTest, WithNothingToDoCompleteIsPostedThreeTimes) {
    device().PutFile(L"\\a.txt", "one");
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    progress_.texts.clear();
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(ResultCode::kNoDifference, code_);
    ASSERT_EQ(8u + 3u, progress_.texts.size());
    EXPECT_EQ(3, std::count(progress_.texts.end() - 3, progress_.texts.end(), u"Complete."));
    ExpectNoLists();
}

TEST_F(RestoreEngineTest, TheStepsOfARestoreAreAnnouncedInOrder) {
    device().PutFile(L"\\a.txt", "one");
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    device().PutFile(L"\\a.txt", "two, longer");
    progress_.texts.clear();
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(
        (std::vector<std::u16string>{
            u"Preparing object list...", u"Scanning files...", u"Scanning HKCR registry entry...",
            u"Scanning HKCU registry entry...", u"Scanning HKLM registry entry...",
            u"Scanning HKU registry entry...", u"Scanning databases...", u"Finding differences...",
            u"Restoring...", u"Saving object list...", u"Loading object list..."}),
        progress_.texts);
}

TEST_F(RestoreEngineTest, WithoutItsStorageFileTheDifferencesCannotBeFound) {
    device().Remove(L"\\Storage Card\\t.sav");
    EXPECT_FALSE(RestoreState(1));
    EXPECT_EQ(ResultCode::kNoDifferenceList, code_);
}

TEST_F(RestoreEngineTest, WithoutAJournalTheDifferencesCannotBeFoundAndTheDeviceStays) {
    device().PutFile(L"\\a.txt", "one");
    storage_.journal.reset();
    EXPECT_FALSE(RestoreState(1));
    EXPECT_EQ(ResultCode::kNoDifferenceList, code_);
    EXPECT_TRUE(device().Exists(L"\\a.txt"));
}

TEST_F(RestoreEngineTest, AStorageFileThatCannotBeOpenedForPruningFailsTheRestore) {
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    device().PutFile(L"\\a.txt", "new");
    device().Fault("CreateFileW", 2, 1, ERROR_SHARING_VIOLATION, "t.sav");
    EXPECT_FALSE(RestoreState(1));
    EXPECT_EQ(ResultCode::kFailed, code_);
    ExpectOnlyTheDifferenceList();
    EXPECT_TRUE(device().Exists(L"\\a.txt"));
}

TEST_F(RestoreEngineTest,
       AStorageFileThatCannotBeMappedIsADriversFailureAndTheJournalIsLoadedAgain) {
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    device().PutFile(L"\\a.txt", "new");
    device().Fault("CreateFileForMappingW", 1, 1, ERROR_INVALID_FUNCTION, "t.sav");
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(ResultCode::kDriver, code_);
    ExpectNoLists();
    ASSERT_NE(nullptr, storage_.journal);
    EXPECT_NE(0u, storage_.journal->CountRecords());
    EXPECT_TRUE(device().Exists(L"\\a.txt"));
}

TEST_F(RestoreEngineTest, AJournalThatCannotBeLoadedAgainIsReportedAndThereIsNone) {
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    device().PutFile(L"\\a.txt", "new");
    device().Fault("CreateFileW", 2, 1, ERROR_SHARING_VIOLATION, "t.jrn");  // after ".jrn_1"
    EXPECT_FALSE(RestoreState(1));
    EXPECT_EQ(ResultCode::kJournalUnreadable, code_);
    EXPECT_EQ(nullptr, storage_.journal);
    EXPECT_FALSE(device().Exists(L"\\a.txt"));
    ExpectOnlyTheDifferenceList();
}

// Without a journal nothing else may run: that is what has to be told.
TEST_F(RestoreEngineTest, AnUnreadableJournalIsReportedRatherThanADriversFailure) {
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    device().PutFile(L"\\a.txt", "new");
    device().Fault("CreateFileForMappingW", 1, 1, ERROR_INVALID_FUNCTION, "t.sav");
    device().Fault("CreateFileW", 2, 1, ERROR_SHARING_VIOLATION, "t.jrn");
    EXPECT_FALSE(RestoreState(1));
    EXPECT_EQ(ResultCode::kJournalUnreadable, code_);
    EXPECT_EQ(nullptr, storage_.journal);
}

// The key seems to be another one, new on the device; deleting it would take its values along.
TEST_F(RestoreEngineTest, AKeyWhoseBlockIsDamagedKeepsItsValues) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Dword(1));
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    std::string sav = device().FileBytes(L"\\Storage Card\\t.sav");
    const std::size_t name = sav.find(std::string("K\0e\0y\0\0\0", 8));
    ASSERT_NE(std::string::npos, name);
    sav[name - 4] = 7;  // a name of an odd length
    device().PutFile(L"\\Storage Card\\t.sav", sav);
    // Another object took the identifier first at this backup.
    ObjectRecord* record = nullptr;
    for (auto cursor = storage_.journal->First(); ObjectList::Next(cursor, nullptr, &record);) {
        record->TolvOID ^= record->propOffset == name - 26 ? 0x01000000u : 0;
    }
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(ResultCode::kFailed, code_);
    EXPECT_EQ("4:" + Dword(1), Value(HKEY_CURRENT_USER, L"Key", L"v"));
}

TEST_F(RestoreEngineTest, FailedObjectsAreReportedRatherThanAnUnreadableJournal) {
    device().PutFile(L"\\a.txt", "stored");
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    const auto lock = device().Lock(L"\\a.txt");  // not seen by the scan: to be written back
    device().Fault("CreateFileW", 2, 1, ERROR_SHARING_VIOLATION, "t.jrn");
    EXPECT_FALSE(RestoreState(1));
    EXPECT_EQ(ResultCode::kFailed, code_);
    EXPECT_EQ(nullptr, storage_.journal);
    ExpectOnlyTheDifferenceList();
}

TEST_F(RestoreEngineTest, FailedObjectsLeaveTheDifferenceListWithExactlyThem) {
    device().PutFile(L"\\a.txt", "stored");
    device().PutFile(L"\\b.txt", "stored");
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    device().PutFile(L"\\a.txt", "changed since");
    device().Remove(L"\\b.txt");
    device().SetAttributes(L"\\a.txt", FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(ResultCode::kFailed, code_);
    ExpectOnlyTheDifferenceList();
    // Neither could the new version be deleted nor the old one written.
    std::vector<std::uint16_t> flags = DifferenceFlags();
    std::sort(flags.begin(), flags.end());
    EXPECT_EQ((std::vector<std::uint16_t>{JF_ADD, JF_DELETE}), flags);
    EXPECT_EQ("changed since", device().FileBytes(L"\\a.txt"));
    EXPECT_EQ("stored", device().FileBytes(L"\\b.txt"));
}

TEST_F(RestoreEngineTest, NewIdsOfWhatSucceededAreSavedThoughOthersFailed) {
    device().PutFile(L"\\a.txt", "stored");
    device().PutFile(L"\\b.txt", "stored");
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    device().PutFile(L"\\a.txt", "changed since");
    device().Remove(L"\\b.txt");
    device().SetAttributes(L"\\a.txt", FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(ResultCode::kFailed, code_);
    const std::uint32_t oid = device().Info(L"\\b.txt").oid;
    const auto journal = JournalOnCard();
    EXPECT_EQ(1, std::count_if(journal.begin(), journal.end(),
                               [&](const ObjectRecord& record) { return record.dwOID == oid; }));
}

TEST_F(RestoreEngineTest, OnACardWithoutRoomForAnotherJournalTheOldOneStaysAsItIs) {
    device().PutFile(L"\\a.txt", "stored");
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    device().Remove(L"\\a.txt");
    const std::string journal = device().FileBytes(L"\\Storage Card\\t.jrn");
    device().Set("card.free", std::to_string(journal.size() - 1));
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(ResultCode::kSuccess, code_);
    EXPECT_EQ("stored", device().FileBytes(L"\\a.txt"));
    EXPECT_EQ(journal, device().FileBytes(L"\\Storage Card\\t.jrn"));
    EXPECT_FALSE(device().Exists(L"\\Storage Card\\t.jrn_1"));
    ASSERT_NE(nullptr, storage_.journal);
    EXPECT_EQ(journal.size() / 32, storage_.journal->CountRecords());
    // The ids in it are those from before: the next backup stores the file once more.
    device().Set("card.free", "10000000");
    EXPECT_EQ(ResultCode::kSuccess, Backup(2));
}

TEST_F(RestoreEngineTest, OnACardWithJustEnoughRoomTheJournalIsSaved) {
    device().PutFile(L"\\a.txt", "stored");
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    device().Remove(L"\\a.txt");
    const std::string journal = device().FileBytes(L"\\Storage Card\\t.jrn");
    device().Set("card.free", std::to_string(journal.size()));
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(ResultCode::kSuccess, code_);
    EXPECT_EQ(journal.size(), device().FileBytes(L"\\Storage Card\\t.jrn").size());
    EXPECT_EQ(ResultCode::kNoDifference, Backup(2));
}

TEST_F(RestoreEngineTest, WhenTheRoomOnTheCardCannotBeToldTheJournalStaysAsItIs) {
    device().PutFile(L"\\a.txt", "stored");
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    device().Remove(L"\\a.txt");
    const std::string journal = device().FileBytes(L"\\Storage Card\\t.jrn");
    device().Fault("GetDiskFreeSpaceExW", 1, 1, ERROR_NOT_READY);
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(journal, device().FileBytes(L"\\Storage Card\\t.jrn"));
}

TEST_F(RestoreEngineTest, TheRegistryObjectsAreForgottenWithTheDifferenceList) {
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Dword(1));
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Dword(2));
    ASSERT_EQ(1, FindDifference(engine_, 1));
    std::uint32_t TolvOID = 0;
    ObjectList::Cursor cursor = storage_.newer->First();
    ObjectRecord* record = nullptr;
    while (ObjectList::Next(cursor, nullptr, &record) && TolvOID == 0) {
        TolvOID = record->TolvOID;
    }
    ASSERT_NE(nullptr, storage_.registry_objects.RegObjectFind(TolvOID));
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(nullptr, storage_.registry_objects.RegObjectFind(TolvOID));
    // What is left over is described by them.
    device().Fault("CreateFileW", 2, 1, ERROR_SHARING_VIOLATION, "t.sav");
    SetValue(HKEY_CURRENT_USER, L"Key", L"v", REG_DWORD, Dword(3));
    EXPECT_FALSE(RestoreState(1));
    EXPECT_NE(nullptr, storage_.registry_objects.RegObjectFind(TolvOID));
    EXPECT_TRUE(RestoreAdvanced(true));
    EXPECT_EQ(nullptr, storage_.registry_objects.RegObjectFind(TolvOID));
}

TEST_F(RestoreEngineTest, ANewUrlCacheDatabaseIsLeftOnTheDevice) {
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    MakeDatabase(u"\\URL Cache");
    MakeDatabase(u"\\Other");
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(ResultCode::kSuccess, code_);
    EXPECT_TRUE(DatabaseExists(u"\\URL Cache"));
    EXPECT_FALSE(DatabaseExists(u"\\Other"));
}

TEST_F(RestoreEngineTest, AnUrlCacheDatabaseThatIsGoneComesBack) {
    const CEOID oid = MakeDatabase(u"\\URL Cache");
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    ASSERT_TRUE(databases_.DeleteDatabase(oid));
    EXPECT_TRUE(RestoreState(1));
    EXPECT_TRUE(DatabaseExists(u"\\URL Cache"));
}

// Kept so: reported, with the contents and everything else restored.
TEST_F(RestoreEngineTest, AFolderWithContentsWhoseAttributesChangedIsReported) {
    device().PutFile(L"\\Sub\\a.txt", "stored");
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    device().SetAttributes(L"\\Sub", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN);
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(ResultCode::kFailed, code_);
    EXPECT_EQ("stored", device().FileBytes(L"\\Sub\\a.txt"));
}

TEST_F(RestoreEngineTest, AnEmptyFolderWhoseAttributesChangedComesBack) {
    device().MakeFolder(L"\\Sub");
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    device().SetAttributes(L"\\Sub", FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN);
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(ResultCode::kSuccess, code_);
    EXPECT_EQ(DWORD{FILE_ATTRIBUTE_DIRECTORY}, device().Info(L"\\Sub").attributes);
}

TEST_F(RestoreEngineTest, AChangedReadOnlyFileIsReported) {
    device().PutFile(L"\\a.txt", "stored");
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    device().PutFile(L"\\a.txt", "changed since");
    device().SetAttributes(L"\\a.txt", FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(ResultCode::kFailed, code_);
    EXPECT_EQ("changed since", device().FileBytes(L"\\a.txt"));
}

TEST_F(RestoreEngineTest, ADatabaseWithRecordsWhoseSortOrdersChangedIsReportedAndKeepsItsRecords) {
    const CEOID oid = MakeDatabase(u"People");
    AddRecord(u"People", L"Ann", 1);
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    CEDBASEINFO info{};
    info.dwFlags = CEDB_VALIDSORTSPEC;
    info.wNumSortOrder = 1;
    info.rgSortSpecs[0].propid = kName;
    ASSERT_TRUE(databases_.SetDatabaseInfo(oid, info));
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(ResultCode::kFailed, code_);
    EXPECT_EQ((std::vector<std::string>{"Ann=1"}), Records(u"People"));
}

TEST_F(RestoreEngineTest, ATreeUnderAFolderNamedRecycledIsReported) {
    device().MakeFolder(L"\\Sub");
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    // The folder of that name is not seen by the scan, so it keeps the new folder above it.
    device().PutFile(L"\\New\\Recycled\\a.txt", "x");
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(ResultCode::kFailed, code_);
    EXPECT_TRUE(device().Exists(L"\\New\\Recycled"));
    EXPECT_FALSE(device().Exists(L"\\New\\Recycled\\a.txt"));
}

TEST_F(RestoreEngineTest, AFolderThatRomFilesKeepIsReported) {
    ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    device().PutFile(L"\\New\\rom.dll", "x");
    device().SetAttributes(L"\\New\\rom.dll", FILE_ATTRIBUTE_INROM);
    EXPECT_TRUE(RestoreState(1));
    EXPECT_EQ(ResultCode::kFailed, code_);
    EXPECT_TRUE(device().Exists(L"\\New\\rom.dll"));
}

// Kept so: a file that the scan could not open is in no state.
TEST_F(RestoreEngineTest, AFileThatWasLockedAtTheBackupIsDeletedByARestoreOfThatState) {
    device().PutFile(L"\\a.txt", "x");
    {
        const auto lock = device().Lock(L"\\a.txt");
        device().PutFile(L"\\b.txt", "y");
        ASSERT_EQ(ResultCode::kSuccess, Backup(1));
    }
    EXPECT_TRUE(RestoreState(1));
    EXPECT_FALSE(device().Exists(L"\\a.txt"));
}

}  // namespace
}  // namespace tolvenar
