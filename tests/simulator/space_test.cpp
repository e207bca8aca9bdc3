// Free space of the object store and of the card.
#include "tests/simulator/file_helpers.h"
#include "tests/support/device_test.h"

namespace tests {
namespace {

class SpaceTest : public DeviceTest {
protected:
    static DWORD StoreFree() {
        STORE_INFORMATION store{};
        EXPECT_TRUE(::GetStoreInformation(&store));
        return store.dwFreeSize;
    }
    static ULONGLONG Free(const wchar_t* path) {
        ULARGE_INTEGER free{};
        EXPECT_TRUE(::GetDiskFreeSpaceExW(path, &free, nullptr, nullptr));
        return free.QuadPart;
    }
};

TEST_F(SpaceTest, FilesTakeTheSpaceOfTheirVolume) {
    device().Set("store.free", "1000");
    device().Set("card.free", "2000");
    device().PutFile(L"\\a.txt", std::string(300, 'x'));
    device().PutFile(L"\\Storage Card\\b.txt", std::string(500, 'x'));
    EXPECT_EQ(700u, StoreFree());
    EXPECT_EQ(700u, Free(L"\\"));
    EXPECT_EQ(1500u, Free(L"\\Storage Card"));
    EXPECT_TRUE(::DeleteFileW(L"\\a.txt"));
    EXPECT_EQ(1000u, StoreFree());
    EXPECT_EQ(ERROR_PATH_NOT_FOUND,
              ErrorOf(::GetDiskFreeSpaceExW(L"\\none", nullptr, nullptr, nullptr)));
    EXPECT_EQ(ERROR_DIRECTORY,
              ErrorOf(::GetDiskFreeSpaceExW(L"\\Storage Card\\b.txt", nullptr, nullptr, nullptr)));
}

TEST_F(SpaceTest, RomFilesTakeNone) {
    device().Set("store.free", "1000");
    device().PutFile(L"\\rom.dll", std::string(300, 'x'));
    device().SetAttributes(L"\\rom.dll", 0x40);
    EXPECT_EQ(1000u, StoreFree());
}

TEST_F(SpaceTest, AWritePastTheFreeSpaceWritesNothing) {
    device().Set("card.free", "10");
    HANDLE file = Open(L"\\Storage Card\\a.txt", GENERIC_WRITE, 0, CREATE_NEW);
    EXPECT_TRUE(Write(file, "12345678"));
    DWORD count = 77;
    EXPECT_EQ(ERROR_DISK_FULL, ErrorOf(::WriteFile(file, "abc", 3, &count, nullptr)));
    EXPECT_EQ(0u, count);
    EXPECT_EQ(8u, ::GetFileSize(file, nullptr));
    EXPECT_EQ(8u, ::SetFilePointer(file, 0, nullptr, FILE_CURRENT));
    EXPECT_TRUE(Write(file, "90"));
    EXPECT_EQ(0u, Free(L"\\Storage Card"));
    // What overwrites takes no more space.
    ::SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    EXPECT_TRUE(Write(file, "abcdefghij"));
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_EQ("abcdefghij", device().FileBytes(L"\\Storage Card\\a.txt"));
}

TEST_F(SpaceTest, TheEndOfAFileDoesNotMovePastTheFreeSpace) {
    device().Set("store.free", "100");
    HANDLE file = Open(L"\\a.txt", GENERIC_WRITE, 0, CREATE_NEW);
    ::SetFilePointer(file, 101, nullptr, FILE_BEGIN);
    EXPECT_EQ(ERROR_DISK_FULL, ErrorOf(::SetEndOfFile(file)));
    EXPECT_EQ(0u, ::GetFileSize(file, nullptr));
    ::SetFilePointer(file, 100, nullptr, FILE_BEGIN);
    EXPECT_TRUE(::SetEndOfFile(file));
    EXPECT_EQ(0u, StoreFree());
    ::SetFilePointer(file, 40, nullptr, FILE_BEGIN);
    EXPECT_TRUE(::SetEndOfFile(file));
    EXPECT_EQ(60u, StoreFree());
    EXPECT_TRUE(::CloseHandle(file));
}

TEST_F(SpaceTest, CuttingAFileGivesItsSpaceBack) {
    device().PutFile(L"\\a.txt", std::string(300, 'x'));
    device().Set("store.free", "0");
    EXPECT_EQ(0, OpenError(L"\\a.txt", GENERIC_WRITE, 0, CREATE_ALWAYS));
    EXPECT_EQ(300u, StoreFree());
    HANDLE file = Open(L"\\a.txt", GENERIC_WRITE, 0, CREATE_ALWAYS);
    EXPECT_TRUE(Write(file, std::string(300, 'y')));
    EXPECT_FALSE(Write(file, "z"));
    EXPECT_TRUE(::CloseHandle(file));
}

TEST_F(SpaceTest, ACopyThatDoesNotFitLeavesNothing) {
    device().PutFile(L"\\a.txt", std::string(300, 'x'));
    device().Set("card.free", "299");
    EXPECT_EQ(ERROR_DISK_FULL, ErrorOf(::CopyFileW(L"\\a.txt", L"\\Storage Card\\a.txt", FALSE)));
    EXPECT_FALSE(device().Exists(L"\\Storage Card\\a.txt"));
    EXPECT_EQ(ERROR_DISK_FULL, ErrorOf(::MoveFileW(L"\\a.txt", L"\\Storage Card\\a.txt")));
    EXPECT_EQ(299u, Free(L"\\Storage Card"));
    EXPECT_TRUE(device().Exists(L"\\a.txt"));
}

TEST_F(SpaceTest, TheSizeOfTheStoreIsASetting) {
    device().Set("store.size", "5000000");
    STORE_INFORMATION store{};
    EXPECT_TRUE(::GetStoreInformation(&store));
    EXPECT_EQ(5000000u, store.dwStoreSize);
    EXPECT_EQ(5000000u, store.dwFreeSize);
    EXPECT_FALSE(::GetStoreInformation(nullptr));
}

TEST_F(SpaceTest, ACardMayHaveMoreThan4GigabytesFree) {
    device().Set("card.size", "8589934592");
    device().Set("card.free", "4294967301");
    ULARGE_INTEGER free{};
    EXPECT_TRUE(::GetDiskFreeSpaceExW(L"\\Storage Card", &free, nullptr, nullptr));
    EXPECT_EQ(4294967301u, free.QuadPart);
}

}  // namespace
}  // namespace tests
