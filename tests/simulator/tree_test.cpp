// Object ids, attributes, folders, renaming, copying and deletion.
#include <set>

#include "tests/simulator/file_helpers.h"
#include "tests/support/device_test.h"

namespace tests {
namespace {

class TreeTest : public DeviceTest {};

TEST_F(TreeTest, AnObjectIdSurvivesWritesAndRenamesAndLeadsBack) {
    device().PutFile(L"\\dir\\a.txt", "one");
    const DWORD oid = Found(L"\\dir\\a.txt").dwOID;
    EXPECT_NE(0u, oid);
    EXPECT_EQ(0, OpenError(L"\\dir\\a.txt", GENERIC_WRITE, 0, CREATE_ALWAYS));
    EXPECT_TRUE(::MoveFileW(L"\\dir\\a.txt", L"\\dir\\b.txt"));
    EXPECT_TRUE(::MoveFileW(L"\\dir", L"\\folder"));
    EXPECT_EQ(oid, Found(L"\\folder\\b.txt").dwOID);
    const auto entry = sim::files::InfoByOid(device().sim(), oid);
    ASSERT_TRUE(entry.has_value());
    EXPECT_EQ(L"\\folder\\b.txt", entry->path);
    EXPECT_EQ(Found(L"\\folder").dwOID, entry->parent_oid);
}

TEST_F(TreeTest, AnObjectIdIsNeverUsedAgain) {
    std::set<DWORD> seen;
    for (int i = 0; i < 20; ++i) {
        device().PutFile(L"\\a.txt", "x");
        const DWORD oid = Found(L"\\a.txt").dwOID;
        EXPECT_TRUE(seen.insert(oid).second);
        EXPECT_TRUE(::DeleteFileW(L"\\a.txt"));
        EXPECT_FALSE(sim::files::InfoByOid(device().sim(), oid).has_value());
    }
}

TEST_F(TreeTest, TheNextObjectIdCanBeSet) {
    device().Set("oid.next", "100");
    device().PutFile(L"\\a.txt", "x");
    EXPECT_EQ(100u, Found(L"\\a.txt").dwOID);
}

TEST_F(TreeTest, TheCardsObjectsHaveNoId) {
    device().PutFile(L"\\Storage Card\\dir\\a.txt", "x");
    EXPECT_EQ(0u, Found(L"\\Storage Card").dwOID);
    EXPECT_EQ(0u, Found(L"\\Storage Card\\dir").dwOID);
    EXPECT_EQ(0u, Found(L"\\Storage Card\\dir\\a.txt").dwOID);
    EXPECT_FALSE(sim::files::InfoByOid(device().sim(), 0).has_value());
}

TEST_F(TreeTest, TheCardsFoldersAreTemporaryAsTheDeviceSays) {
    device().PutFile(L"\\Storage Card\\dir\\a.txt", "x");
    device().MakeFolder(L"\\plain");
    EXPECT_EQ(0x110u, ::GetFileAttributesW(L"\\Storage Card"));
    EXPECT_EQ(0x110u, ::GetFileAttributesW(L"\\Storage Card\\dir"));
    EXPECT_EQ(0x20u, ::GetFileAttributesW(L"\\Storage Card\\dir\\a.txt"));
    EXPECT_EQ(0x10u, ::GetFileAttributesW(L"\\plain"));
    device().Set("card.temporary", "root");
    EXPECT_EQ(0x110u, ::GetFileAttributesW(L"\\Storage Card"));
    EXPECT_EQ(0x10u, ::GetFileAttributesW(L"\\Storage Card\\dir"));
    device().Set("card.temporary", "none");
    EXPECT_EQ(0x10u, ::GetFileAttributesW(L"\\Storage Card"));
}

TEST_F(TreeTest, TheCardsFolderCanHaveAnotherName) {
    device().PutFile(L"\\Storage Card\\a.txt", "x");
    device().Set("card.name", "PC Card");
    EXPECT_EQ("x", device().FileBytes(L"\\PC Card\\a.txt"));
    EXPECT_EQ(0x110u, ::GetFileAttributesW(L"\\PC Card"));
}

TEST_F(TreeTest, AttributesReadBackTheSameEverywhere) {
    device().PutFile(L"\\a.txt", "x");
    EXPECT_TRUE(::SetFileAttributesW(L"\\a.txt", FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM));
    EXPECT_EQ(6u, ::GetFileAttributesW(L"\\a.txt"));
    EXPECT_EQ(6u, Found(L"\\a.txt").dwFileAttributes);
    EXPECT_EQ(6u, sim::files::InfoByOid(device().sim(), Found(L"\\a.txt").dwOID)->attributes);
    EXPECT_TRUE(::SetFileAttributesW(L"\\a.txt", FILE_ATTRIBUTE_NORMAL));
    EXPECT_EQ(0x80u, ::GetFileAttributesW(L"\\a.txt"));
    // What only the device itself gives is left out.
    EXPECT_TRUE(::SetFileAttributesW(L"\\a.txt", 0x2141));
    EXPECT_EQ(1u, ::GetFileAttributesW(L"\\a.txt"));
    EXPECT_EQ(0xFFFFFFFFu, ::GetFileAttributesW(L"\\none"));
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), ::GetLastError());
}

TEST_F(TreeTest, ANewFileIsToBeArchived) {
    HANDLE file = ::CreateFileW(L"\\a.txt", GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                FILE_ATTRIBUTE_HIDDEN | 0x10000000, nullptr);
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_EQ(0x22u, ::GetFileAttributesW(L"\\a.txt"));
}

TEST_F(TreeTest, AReadOnlyFileRefusesWritingAndDeletion) {
    device().PutFile(L"\\a.txt", "x");
    EXPECT_TRUE(::SetFileAttributesW(L"\\a.txt", FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(ERROR_ACCESS_DENIED, OpenError(L"\\a.txt", GENERIC_WRITE));
    EXPECT_EQ(ERROR_ACCESS_DENIED, OpenError(L"\\a.txt", GENERIC_WRITE, 0, CREATE_ALWAYS));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(::DeleteFileW(L"\\a.txt")));
    EXPECT_EQ(0, OpenError(L"\\a.txt", GENERIC_READ));
    EXPECT_TRUE(::SetFileAttributesW(L"\\a.txt", FILE_ATTRIBUTE_NORMAL));
    EXPECT_TRUE(::DeleteFileW(L"\\a.txt"));
}

TEST_F(TreeTest, ARomFileIsReadAndNothingElse) {
    device().PutFile(L"\\Windows\\calc.exe", "rom");
    device().SetAttributes(L"\\Windows\\calc.exe", 0x47);
    EXPECT_EQ(0x47u, Found(L"\\Windows\\calc.exe").dwFileAttributes);
    HANDLE file = Open(L"\\Windows\\calc.exe", GENERIC_READ, 0, OPEN_EXISTING);
    EXPECT_EQ("rom", Read(file, 10));
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_EQ(ERROR_ACCESS_DENIED, OpenError(L"\\Windows\\calc.exe", GENERIC_WRITE));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(::DeleteFileW(L"\\Windows\\calc.exe")));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(::SetFileAttributesW(L"\\Windows\\calc.exe", 0x20)));
    EXPECT_EQ(ERROR_ACCESS_DENIED,
              ErrorOf(::MoveFileW(L"\\Windows\\calc.exe", L"\\Windows\\c.exe")));
}

TEST_F(TreeTest, ARomModuleDoesNotOpenAtAll) {
    device().PutFile(L"\\Windows\\core.dll", "rom");
    device().SetAttributes(L"\\Windows\\core.dll", 0x2047);
    EXPECT_EQ(ERROR_ACCESS_DENIED, OpenError(L"\\Windows\\core.dll", GENERIC_READ));
    EXPECT_EQ(0x2047u, ::GetFileAttributesW(L"\\Windows\\core.dll"));
}

TEST_F(TreeTest, AFolderWithRomFilesRefusesRemoval) {
    device().PutFile(L"\\Windows\\calc.exe", "rom");
    device().SetAttributes(L"\\Windows\\calc.exe", 0x40);
    EXPECT_EQ(ERROR_DIR_NOT_EMPTY, ErrorOf(::RemoveDirectoryW(L"\\Windows")));
    EXPECT_TRUE(device().Exists(L"\\Windows\\calc.exe"));
}

TEST_F(TreeTest, AFolderIsMadeInAnExistingOneAndRemovedWhenEmpty) {
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, ErrorOf(::CreateDirectoryW(L"\\a\\b", nullptr)));
    EXPECT_TRUE(::CreateDirectoryW(L"\\a", nullptr));
    EXPECT_EQ(ERROR_ALREADY_EXISTS, ErrorOf(::CreateDirectoryW(L"\\A", nullptr)));
    EXPECT_TRUE(::CreateDirectoryW(L"\\a\\b", nullptr));
    EXPECT_EQ(ERROR_DIR_NOT_EMPTY, ErrorOf(::RemoveDirectoryW(L"\\a")));
    EXPECT_TRUE(::RemoveDirectoryW(L"\\a\\b"));
    EXPECT_TRUE(::RemoveDirectoryW(L"\\a"));
    EXPECT_FALSE(device().Exists(L"\\a"));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, ErrorOf(::RemoveDirectoryW(L"\\a")));
}

TEST_F(TreeTest, FilesAndFoldersAreNotTakenForEachOther) {
    device().PutFile(L"\\a.txt", "x");
    device().MakeFolder(L"\\dir");
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(::DeleteFileW(L"\\dir")));
    EXPECT_EQ(ERROR_DIRECTORY, ErrorOf(::RemoveDirectoryW(L"\\a.txt")));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(::RemoveDirectoryW(L"\\Storage Card")));
}

TEST_F(TreeTest, MovingRefusesWhatIsThereAndWhatHasNoFolder) {
    device().PutFile(L"\\a.txt", "a");
    device().PutFile(L"\\b.txt", "b");
    device().MakeFolder(L"\\dir\\sub");
    EXPECT_EQ(ERROR_ALREADY_EXISTS, ErrorOf(::MoveFileW(L"\\a.txt", L"\\b.txt")));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, ErrorOf(::MoveFileW(L"\\a.txt", L"\\none\\a.txt")));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, ErrorOf(::MoveFileW(L"\\none.txt", L"\\c.txt")));
    EXPECT_EQ(ERROR_SHARING_VIOLATION, ErrorOf(::MoveFileW(L"\\dir", L"\\dir\\sub\\dir")));
    EXPECT_TRUE(::MoveFileW(L"\\a.txt", L"\\A.TXT"));
    EXPECT_STREQ(L"A.TXT", Found(L"\\a.txt").cFileName);
}

TEST_F(TreeTest, AFileMovesToTheCardByItsContent) {
    device().PutFile(L"\\a.txt", "content");
    EXPECT_TRUE(::MoveFileW(L"\\a.txt", L"\\Storage Card\\a.txt"));
    EXPECT_FALSE(device().Exists(L"\\a.txt"));
    EXPECT_EQ("content", device().FileBytes(L"\\Storage Card\\a.txt"));
    EXPECT_EQ(0u, Found(L"\\Storage Card\\a.txt").dwOID);
    device().MakeFolder(L"\\dir");
    EXPECT_EQ(ERROR_NOT_SAME_DEVICE, ErrorOf(::MoveFileW(L"\\dir", L"\\Storage Card\\dir")));
}

TEST_F(TreeTest, ACopyCarriesContentAttributesAndTime) {
    device().PutFile(L"\\a.txt", std::string(200000, 'x'));
    device().SetAttributes(L"\\a.txt", 0x3);
    device().Touch(L"\\a.txt", 126227808000000000ull);
    EXPECT_TRUE(::CopyFileW(L"\\a.txt", L"\\b.txt", TRUE));
    EXPECT_EQ(std::string(200000, 'x'), device().FileBytes(L"\\b.txt"));
    EXPECT_EQ(3u, ::GetFileAttributesW(L"\\b.txt"));
    EXPECT_EQ(126227808000000000ull, device().Info(L"\\b.txt").modified);
    EXPECT_NE(Found(L"\\a.txt").dwOID, Found(L"\\b.txt").dwOID);
    EXPECT_EQ(ERROR_FILE_EXISTS, ErrorOf(::CopyFileW(L"\\a.txt", L"\\b.txt", TRUE)));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(::CopyFileW(L"\\a.txt", L"\\b.txt", FALSE)));
}

TEST_F(TreeTest, ErasingTheStoreKeepsTheCard) {
    device().PutFile(L"\\dir\\a.txt", "x");
    device().PutFile(L"\\Storage Card\\b.txt", "y");
    sim::files::EraseStore(device().sim());
    EXPECT_FALSE(device().Exists(L"\\dir"));
    EXPECT_EQ("y", device().FileBytes(L"\\Storage Card\\b.txt"));
}

}  // namespace
}  // namespace tests
