// A card whose switch keeps programs from writing on it.
#include "tests/simulator/file_helpers.h"
#include "tests/support/device_test.h"

namespace tests {
namespace {

constexpr wchar_t kFile[] = L"\\Storage Card\\a.txt";
constexpr wchar_t kNew[] = L"\\Storage Card\\new.txt";
constexpr wchar_t kFolder[] = L"\\Storage Card\\Folder";

class ProtectedCardTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        device().PutFile(kFile, "0123456789");
        device().MakeFolder(kFolder);
        device().Set("card.protected", "yes");
    }
};

TEST_F(ProtectedCardTest, ItsFilesAreRead) {
    EXPECT_EQ(0, OpenError(kFile, GENERIC_READ));
    EXPECT_EQ(DWORD{FILE_ATTRIBUTE_ARCHIVE}, ::GetFileAttributesW(kFile));
}

TEST_F(ProtectedCardTest, NothingOnItIsOpenedForWritingOrMade) {
    EXPECT_EQ(ERROR_WRITE_PROTECT, OpenError(kFile, GENERIC_READ | GENERIC_WRITE));
    EXPECT_EQ(ERROR_WRITE_PROTECT, OpenError(kFile, GENERIC_READ, 0, CREATE_ALWAYS));
    EXPECT_EQ(ERROR_WRITE_PROTECT, OpenError(kNew, GENERIC_WRITE, 0, CREATE_NEW));
    EXPECT_EQ(ERROR_WRITE_PROTECT, ErrorOf(::CreateDirectoryW(L"\\Storage Card\\F2", nullptr)));
    EXPECT_FALSE(device().Exists(kNew));
    EXPECT_EQ("0123456789", device().FileBytes(kFile));
}

TEST_F(ProtectedCardTest, NothingOnItIsDeletedMovedOrGivenAttributes) {
    EXPECT_EQ(ERROR_WRITE_PROTECT, ErrorOf(::DeleteFileW(kFile)));
    EXPECT_EQ(ERROR_WRITE_PROTECT, ErrorOf(::MoveFileW(kFile, kNew)));
    EXPECT_EQ(ERROR_WRITE_PROTECT, ErrorOf(::RemoveDirectoryW(kFolder)));
    EXPECT_EQ(ERROR_WRITE_PROTECT, ErrorOf(::SetFileAttributesW(kFile, FILE_ATTRIBUTE_HIDDEN)));
    EXPECT_EQ("0123456789", device().FileBytes(kFile));
}

TEST_F(ProtectedCardTest, TheObjectStoreIsWrittenAllTheSame) {
    EXPECT_EQ(0, OpenError(L"\\a.txt", GENERIC_WRITE, 0, CREATE_NEW));
    device().Set("card.protected", "no");
    EXPECT_EQ(0, OpenError(kFile, GENERIC_WRITE));
}

}  // namespace
}  // namespace tests
