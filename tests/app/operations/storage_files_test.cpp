#include "app/operations/storage_files.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "app/settings/settings.h"
#include "platform/text.h"
#include "platform/unique_resource.h"
#include "storage/opened/journal.h"
#include "tests/support/device_test.h"

namespace tolvenar {
namespace {

using Text = std::u16string;
constexpr wchar_t kSav[] = L"\\Backups\\Home.sav";
constexpr wchar_t kJournal[] = L"\\Backups\\Home.jrn";
constexpr wchar_t kTemporary[] = L"\\Backups\\Home.jrn_1";

class StorageFilesTest : public tests::DeviceTest {
protected:
    void SetUp() override {
        device().MakeFolder(L"\\Backups");
        CreateFolderSetting();
        ASSERT_TRUE(WriteStorageFolder(u"\\Backups"));
        ASSERT_TRUE(WriteStorageFileName(u"Home"));
    }
    static void CreateFolderSetting() {
        HKEY hkey = nullptr;
        DWORD disposition = 0;
        ::RegCreateKeyExW(HKEY_CURRENT_USER, Wide(kSettingsKey), 0, nullptr, 0, KEY_ALL_ACCESS,
                          nullptr, &hkey, &disposition);
        const UniqueHkey owner(hkey);
        ::RegSetValueExW(hkey, L"StoragePath", 0, REG_SZ, reinterpret_cast<const BYTE*>(L"\\"), 4);
    }
    static void DeleteSetting(const wchar_t* name) {
        UniqueHkey hkey;
        ::RegOpenKeyExW(HKEY_CURRENT_USER, Wide(kSettingsKey), 0, 0, hkey.Put());
        ASSERT_EQ(ERROR_SUCCESS, ::RegDeleteValueW(hkey.get(), name));
    }
    static Text Path() {
        char16_t buffer[kSettingPathUnits];
        return ReadStoragePath(buffer) ? buffer : u"(none)";
    }
};

TEST_F(StorageFilesTest, NamesAreThoseOfTheSettings) {
    StorageNames names;
    ASSERT_TRUE(DeriveNames(names));
    EXPECT_EQ(Text(u"\\Backups\\Home.sav"), names.sav);
    EXPECT_EQ(Text(u"\\Backups\\Home.jrn"), names.journal);
}

TEST_F(StorageFilesTest, WithoutAChosenStorageThereIsNothingToNameCreateOrDelete) {
    DeleteSetting(L"StorageFile");
    StorageNames names;
    EXPECT_FALSE(DeriveNames(names));
    EXPECT_EQ(Text(), names.sav);
    EXPECT_FALSE(CreateNewStorage());
    EXPECT_FALSE(DeleteOldStorage());
}

TEST_F(StorageFilesTest, ANewStorageIsAHeadAndAnEmptyJournal) {
    EXPECT_TRUE(CreateNewStorage());
    EXPECT_EQ(236u, device().FileBytes(kSav).size());
    EXPECT_EQ("", device().FileBytes(kJournal));
    OpenedStorage storage{};
    ASSERT_TRUE(DeriveNames(storage.names));
    OpenStorageResult result;
    EXPECT_TRUE(OpenStorage(storage.names.sav, storage, result));
    EXPECT_TRUE(OpenJournal(storage, nullptr));
}

// The card hid it when it was looked for.
TEST_F(StorageFilesTest, AStorageFileThatIsThereIsNeverCut) {
    device().PutFile(kSav, std::string(5000, 's'));
    EXPECT_FALSE(CreateNewStorage());
    EXPECT_EQ(std::string(5000, 's'), device().FileBytes(kSav));
}

// In its place the old records would match the device, and nothing would ever be stored again.
TEST_F(StorageFilesTest, ANewStorageKeepsAnOldJournalAndATemporaryOneAside) {
    device().PutFile(kJournal, std::string(64, 'j'));
    device().PutFile(kTemporary, std::string(32, 't'));
    EXPECT_TRUE(CreateNewStorage());
    EXPECT_EQ("", device().FileBytes(kJournal));
    EXPECT_FALSE(device().Exists(kTemporary));
    EXPECT_EQ(std::string(64, 'j'), device().FileBytes(L"\\Backups\\Home.jrn_old"));
    EXPECT_EQ(std::string(32, 't'), device().FileBytes(L"\\Backups\\Home.jrn_old2"));
}

TEST_F(StorageFilesTest, AJournalThatCannotBeMovedAsideLeavesNoNewStorage) {
    device().PutFile(kJournal, std::string(64, 'j'));
    {
        const tests::FileLock lock = device().Lock(kJournal);
        EXPECT_FALSE(CreateNewStorage());
    }
    EXPECT_FALSE(device().Exists(kSav));
    EXPECT_EQ(std::string(64, 'j'), device().FileBytes(kJournal));
}

TEST_F(StorageFilesTest, ATemporaryJournalThatStaysLeavesNoNewStorage) {
    device().PutFile(kTemporary, "t");
    const tests::FileLock lock = device().Lock(kTemporary);
    EXPECT_FALSE(CreateNewStorage());
    EXPECT_FALSE(device().Exists(kSav));
}

// A stop in between must leave no old journal beside a new storage file.
TEST_F(StorageFilesTest, AnOldJournalIsAsideBeforeTheStorageFileIsMade) {
    device().PutFile(kJournal, std::string(64, 'j'));
    device().Fault("CreateFileW", 1, 1, ERROR_DISK_FULL, "Home.sav");
    EXPECT_FALSE(CreateNewStorage());
    EXPECT_FALSE(device().Exists(kSav));
    EXPECT_FALSE(device().Exists(kJournal));
    EXPECT_EQ(std::string(64, 'j'), device().FileBytes(L"\\Backups\\Home.jrn_old"));
}

// Read and write access, others may read, made when it is not there.
TEST_F(StorageFilesTest, AnOldJournalIsOpenedNotReplaced) {
    device().Fault("CreateFileW", 1, 1, ERROR_ACCESS_DENIED, "Home.jrn, 3221225472, 1, 4, 128");
    EXPECT_FALSE(CreateNewStorage());
    EXPECT_TRUE(CreateNewStorage());
}

TEST_F(StorageFilesTest, DeletingTakesBothFiles) {
    ASSERT_TRUE(CreateNewStorage());
    EXPECT_TRUE(DeleteOldStorage());
    EXPECT_FALSE(device().Exists(kSav));
    EXPECT_FALSE(device().Exists(kJournal));
}

TEST_F(StorageFilesTest, TheJournalIsDeletedFirst) {
    ASSERT_TRUE(CreateNewStorage());
    device().Command("trace on");
    EXPECT_TRUE(DeleteOldStorage());
    std::vector<std::string> deleted;
    for (const auto& line : nlohmann::json::parse(device().Command("trace show DeleteFileW"))) {
        deleted.push_back(line["arguments"]);
    }
    device().Command("trace off");
    ASSERT_LE(2u, deleted.size());
    EXPECT_EQ("\\Backups\\Home.jrn", deleted[0]);
    EXPECT_EQ("\\Backups\\Home.sav", deleted[1]);
}

TEST_F(StorageFilesTest, DeletingWithoutAJournalStillDeletesTheStorageAndIsFalse) {
    ASSERT_TRUE(CreateNewStorage());
    device().Remove(kJournal);
    EXPECT_FALSE(DeleteOldStorage());
    EXPECT_FALSE(device().Exists(kSav));
}

TEST_F(StorageFilesTest, DeletingAHeldStorageFileIsFalse) {
    ASSERT_TRUE(CreateNewStorage());
    const tests::FileLock lock = device().Lock(kSav);
    EXPECT_FALSE(DeleteOldStorage());
    EXPECT_TRUE(device().Exists(kSav));
    EXPECT_FALSE(device().Exists(kJournal));
}

TEST_F(StorageFilesTest, BesideAJournalThatStaysTheTemporaryOneIsNotDeleted) {
    ASSERT_TRUE(CreateNewStorage());
    device().PutFile(kTemporary, "t");
    const tests::FileLock lock = device().Lock(kJournal);
    EXPECT_FALSE(DeleteOldStorage());
    EXPECT_TRUE(device().Exists(kTemporary));
}

// Else the next load would take what an interrupted save left for the journal.
TEST_F(StorageFilesTest, DeletingLeavesNoTemporaryJournal) {
    ASSERT_TRUE(CreateNewStorage());
    device().PutFile(kTemporary, "t");
    const tests::FileLock lock = device().Lock(kSav);
    EXPECT_FALSE(DeleteOldStorage());
    EXPECT_FALSE(device().Exists(kTemporary));
}

TEST_F(StorageFilesTest, APathThatFailedHalfReadGetsStorage0Behind) {
    char16_t path[kStoragePathUnits] = u"\\Backups\\";
    CompleteStoragePath(false, path);
    EXPECT_EQ(Text(u"\\Backups\\storage0"), path);
}

TEST_F(StorageFilesTest, APathThatWasReadStaysAsItIs) {
    char16_t path[kStoragePathUnits] = u"\\Backups\\Home";
    CompleteStoragePath(true, path);
    EXPECT_EQ(Text(u"\\Backups\\Home"), path);
}

TEST_F(StorageFilesTest, APathThatCouldNotBeReadStaysEmpty) {
    DeleteSetting(L"StorageFile");
    char16_t path[kStoragePathUnits] = u"left over";
    CompleteStoragePath(ReadStoragePath(path), path);
    EXPECT_EQ(Text(), path);
}

TEST_F(StorageFilesTest, AChosenJournalBecomesFolderAndStem) {
    SaveLocation(u"\\Storage Card\\Backups\\Home2.jrn");
    EXPECT_EQ(Text(u"\\Storage Card\\Backups\\Home2"), Path());
    SaveLocation(u"\\Card\\a.b.jrn");
    EXPECT_EQ(Text(u"\\Card\\a"), Path());
}

TEST_F(StorageFilesTest, WithoutAnInstallationOnlyTheStemIsKept) {
    DeleteSetting(L"StoragePath");
    SaveLocation(u"\\Storage Card\\Other.jrn");
    char16_t stem[kSettingTextUnits];
    EXPECT_TRUE(ReadStorageFileName(stem));
    EXPECT_EQ(Text(u"Other"), stem);
    EXPECT_NE(Text(u"\\Storage Card\\Other"), Path());
}

TEST_F(StorageFilesTest, TheFolderIsFixedUntilAnInstallationHasMadeItsSetting) {
    EXPECT_FALSE(StorageFolderIsFixed());
    DeleteSetting(L"StoragePath");
    EXPECT_TRUE(StorageFolderIsFixed());
}

TEST_F(StorageFilesTest, APathThatIsTooLongChangesNothing) {
    SaveLocation((u"\\Card\\" + Text(260, u's') + u".jrn").c_str());
    EXPECT_EQ(Text(u"\\Backups\\Home"), Path());
}

}  // namespace
}  // namespace tolvenar
