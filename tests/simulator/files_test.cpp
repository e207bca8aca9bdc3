// Opening, reading, writing and the times of files as a program sees them.
#include "tests/simulator/file_helpers.h"
#include "tests/support/device_test.h"

namespace tests {
namespace {

class FilesTest : public DeviceTest {
protected:
    void PutSimple(const wchar_t* path) { device().PutFile(path, "0123456789"); }
};

TEST_F(FilesTest, AWrittenFileReadsBack) {
    HANDLE file = Open(L"\\a.txt", GENERIC_READ | GENERIC_WRITE, 0, CREATE_NEW);
    ASSERT_NE(INVALID_HANDLE_VALUE, file);
    EXPECT_TRUE(Write(file, "hello"));
    EXPECT_EQ(1u, ::SetFilePointer(file, 1, nullptr, FILE_BEGIN));
    EXPECT_EQ("ell", Read(file, 3));
    EXPECT_EQ("o", Read(file, 100));
    EXPECT_EQ("", Read(file, 100));
    EXPECT_EQ(5u, ::GetFileSize(file, nullptr));
    EXPECT_TRUE(::FlushFileBuffers(file));
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_EQ("hello", device().FileBytes(L"\\a.txt"));
}

TEST_F(FilesTest, NamesAreCaseInsensitiveAndKeepTheirCase) {
    PutSimple(L"\\My Documents\\Größe.TXT");
    EXPECT_EQ(0, OpenError(L"\\my documents\\gRÖßE.txt", GENERIC_READ));
    EXPECT_STREQ(L"Größe.TXT", Found(L"\\MY documents\\GRÖßE.txt").cFileName);
    EXPECT_EQ(ERROR_FILE_EXISTS,
              OpenError(L"\\my documents\\größe.txt", GENERIC_WRITE, 0, CREATE_NEW));
}

TEST_F(FilesTest, ThereAreNoDriveLetters) {
    PutSimple(L"\\a.txt");
    EXPECT_EQ(ERROR_INVALID_NAME, OpenError(L"C:\\a.txt", GENERIC_READ));
    EXPECT_EQ(ERROR_INVALID_NAME, OpenError(L"Z:\\", GENERIC_READ));
}

TEST_F(FilesTest, ARelativeNameCountsFromTheRoot) {
    PutSimple(L"\\a.txt");
    EXPECT_EQ(0, OpenError(L"a.txt", GENERIC_READ));
}

TEST_F(FilesTest, PathsOver259CharactersAreRefused) {
    const std::wstring name = L"\\" + std::wstring(258, L'x');
    EXPECT_EQ(0, OpenError(name.c_str(), GENERIC_WRITE, 0, CREATE_NEW));
    EXPECT_EQ(ERROR_FILENAME_EXCED_RANGE,
              OpenError((name + L"x").c_str(), GENERIC_WRITE, 0, CREATE_NEW));
}

TEST_F(FilesTest, AMissingFileAndAMissingFolderAreToldApart) {
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, OpenError(L"\\none.txt", GENERIC_READ));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, OpenError(L"\\none\\a.txt", GENERIC_READ));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, OpenError(L"\\none\\a.txt", GENERIC_WRITE, 0, CREATE_ALWAYS));
    PutSimple(L"\\a.txt");
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, OpenError(L"\\a.txt\\b.txt", GENERIC_READ));
}

TEST_F(FilesTest, CreatingAnExistingFileTellsThatItWasThere) {
    PutSimple(L"\\a.txt");
    for (const DWORD disposition : {CREATE_ALWAYS, OPEN_ALWAYS}) {
        ::SetLastError(1234);
        HANDLE file = Open(L"\\a.txt", GENERIC_WRITE, 0, disposition);
        EXPECT_EQ(static_cast<DWORD>(ERROR_ALREADY_EXISTS), ::GetLastError());
        EXPECT_TRUE(::CloseHandle(file));
        ::SetLastError(1234);
        file = Open(L"\\new.txt", GENERIC_WRITE, 0, disposition);
        EXPECT_EQ(0u, ::GetLastError());
        EXPECT_TRUE(::CloseHandle(file));
        EXPECT_TRUE(::DeleteFileW(L"\\new.txt"));
    }
    EXPECT_EQ("", device().FileBytes(L"\\a.txt"));
}

TEST_F(FilesTest, TruncatingNeedsAnExistingFileAndTheRightToWrite) {
    PutSimple(L"\\a.txt");
    EXPECT_EQ(ERROR_INVALID_PARAMETER, OpenError(L"\\a.txt", GENERIC_READ, 0, TRUNCATE_EXISTING));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, OpenError(L"\\none.txt", GENERIC_WRITE, 0, TRUNCATE_EXISTING));
    EXPECT_EQ(0, OpenError(L"\\a.txt", GENERIC_WRITE, 0, TRUNCATE_EXISTING));
    EXPECT_EQ("", device().FileBytes(L"\\a.txt"));
}

TEST_F(FilesTest, AFileOpenedForReadingIsNotWritten) {
    PutSimple(L"\\a.txt");
    HANDLE file = Open(L"\\a.txt", GENERIC_READ, 0, OPEN_EXISTING);
    DWORD count = 77;
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(::WriteFile(file, "x", 1, &count, nullptr)));
    EXPECT_EQ(0u, count);
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(::SetEndOfFile(file)));
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_EQ("0123456789", device().FileBytes(L"\\a.txt"));
}

TEST_F(FilesTest, TheEndOfAFileMoves) {
    PutSimple(L"\\a.txt");
    HANDLE file = Open(L"\\a.txt", GENERIC_WRITE, 0, OPEN_EXISTING);
    EXPECT_EQ(4u, ::SetFilePointer(file, 4, nullptr, FILE_BEGIN));
    EXPECT_TRUE(::SetEndOfFile(file));
    EXPECT_EQ(4u, ::GetFileSize(file, nullptr));
    EXPECT_EQ(6u, ::SetFilePointer(file, 2, nullptr, FILE_END));
    EXPECT_TRUE(Write(file, "ab"));
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_EQ(std::string("0123\0\0ab", 8), device().FileBytes(L"\\a.txt"));
}

TEST_F(FilesTest, APointerBeforeTheStartIsRefused) {
    PutSimple(L"\\a.txt");
    HANDLE file = Open(L"\\a.txt", GENERIC_READ, 0, OPEN_EXISTING);
    EXPECT_EQ(0xFFFFFFFFu, ::SetFilePointer(file, -1, nullptr, FILE_BEGIN));
    EXPECT_EQ(static_cast<DWORD>(ERROR_NEGATIVE_SEEK), ::GetLastError());
    EXPECT_TRUE(::CloseHandle(file));
}

TEST_F(FilesTest, ASuccessfulCallKeepsTheLastError) {
    PutSimple(L"\\a.txt");
    ::SetLastError(1234);
    HANDLE file = Open(L"\\a.txt", GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING);
    Read(file, 3);
    EXPECT_TRUE(Write(file, "x"));
    ::GetFileSize(file, nullptr);
    EXPECT_NE(INVALID_FILE_ATTRIBUTES, ::GetFileAttributesW(L"\\a.txt"));
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_TRUE(::DeleteFileW(L"\\a.txt"));
    EXPECT_EQ(1234u, ::GetLastError());
}

TEST_F(FilesTest, AClosedHandleIsInvalidForEverything) {
    PutSimple(L"\\a.txt");
    HANDLE file = Open(L"\\a.txt", GENERIC_READ, 0, OPEN_EXISTING);
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_EQ(ERROR_INVALID_HANDLE, ErrorOf(::CloseHandle(file)));
    EXPECT_EQ(0xFFFFFFFFu, ::GetFileSize(file, nullptr));
    DWORD count = 0;
    EXPECT_EQ(ERROR_INVALID_HANDLE, ErrorOf(::ReadFile(file, &count, 4, &count, nullptr)));
    HANDLE next = Open(L"\\a.txt", GENERIC_READ, 0, OPEN_EXISTING);
    EXPECT_NE(file, next);  // so that a late second close meets nobody else's handle
    EXPECT_TRUE(::CloseHandle(next));
}

TEST_F(FilesTest, OneCloseHandleServesTheHostsHandlesToo) {
    HANDLE event = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    ASSERT_NE(nullptr, event);
    EXPECT_TRUE(::CloseHandle(event));
    EXPECT_FALSE(::CloseHandle(event));
}

TEST_F(FilesTest, TimeSetOnAWrittenFileSurvivesTheClose) {
    HANDLE file = Open(L"\\a.txt", GENERIC_WRITE, 0, CREATE_ALWAYS);
    EXPECT_TRUE(Write(file, "hello"));
    const FILETIME time = FileTime(126227808000000000ull);
    EXPECT_TRUE(::SetFileTime(file, nullptr, nullptr, &time));
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_EQ(126227808000000000ull, device().Info(L"\\a.txt").modified);
    EXPECT_EQ(126227808000000000ull, Count(Found(L"\\a.txt").ftLastWriteTime));
    file = Open(L"\\a.txt", GENERIC_READ, 0, OPEN_EXISTING);
    FILETIME modified{};
    EXPECT_TRUE(::GetFileTime(file, nullptr, nullptr, &modified));
    EXPECT_EQ(126227808000000000ull, Count(modified));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(::SetFileTime(file, nullptr, nullptr, &time)));
    EXPECT_TRUE(::CloseHandle(file));
}

TEST_F(FilesTest, AFolderOpensForSettingItsTimeOnly) {
    device().MakeFolder(L"\\dir");
    EXPECT_EQ(ERROR_ACCESS_DENIED, OpenError(L"\\dir", GENERIC_READ));
    EXPECT_EQ(ERROR_ACCESS_DENIED, OpenError(L"\\dir", GENERIC_WRITE, 0, CREATE_ALWAYS));
    HANDLE folder = Open(L"\\dir", GENERIC_WRITE, 0, OPEN_EXISTING);
    ASSERT_NE(INVALID_HANDLE_VALUE, folder);
    const FILETIME time = FileTime(126227808000000000ull);
    EXPECT_TRUE(::SetFileTime(folder, nullptr, nullptr, &time));
    EXPECT_FALSE(Write(folder, "x"));
    EXPECT_TRUE(::CloseHandle(folder));
    EXPECT_EQ(126227808000000000ull, Count(Found(L"\\dir").ftLastWriteTime));
    device().Set("folder.open", "no");
    EXPECT_EQ(ERROR_ACCESS_DENIED, OpenError(L"\\dir", GENERIC_WRITE));
}

TEST_F(FilesTest, EveryWriteTakesAStepOfTheClock) {
    device().Set("clock", "2003-01-01T00:00:00");
    device().Set("clock.step", "1000");
    HANDLE file = Open(L"\\a.txt", GENERIC_WRITE, 0, CREATE_ALWAYS);
    const unsigned long long created = device().Info(L"\\a.txt").modified;
    EXPECT_TRUE(Write(file, "1"));
    const unsigned long long first = device().Info(L"\\a.txt").modified;
    EXPECT_TRUE(Write(file, "2"));
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_EQ(10000000u, first - created);
    EXPECT_EQ(10000000u, device().Info(L"\\a.txt").modified - first);
}

TEST_F(FilesTest, OneTimeIsKeptUnlessTheDeviceKeepsThree) {
    HANDLE file = Open(L"\\a.txt", GENERIC_WRITE, 0, CREATE_ALWAYS);
    const FILETIME created = FileTime(126000000000000000ull);
    const FILETIME modified = FileTime(126227808000000000ull);
    EXPECT_TRUE(::SetFileTime(file, &created, nullptr, &modified));
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_EQ(Count(modified), Count(Found(L"\\a.txt").ftCreationTime));
    device().Set("file.times", "separate");
    EXPECT_EQ(Count(created), Count(Found(L"\\a.txt").ftCreationTime));
    EXPECT_EQ(Count(modified), Count(Found(L"\\a.txt").ftLastWriteTime));
}

TEST_F(FilesTest, AnOpenFileTellsAboutItself) {
    PutSimple(L"\\a.txt");
    HANDLE file = Open(L"\\a.txt", GENERIC_READ, 0, OPEN_EXISTING);
    BY_HANDLE_FILE_INFORMATION info{};
    EXPECT_TRUE(::GetFileInformationByHandle(file, &info));
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_EQ(10u, info.nFileSizeLow);
    EXPECT_EQ(0x20u, info.dwFileAttributes);
    EXPECT_EQ(device().Info(L"\\a.txt").oid, info.dwOID);
}

}  // namespace
}  // namespace tests
