// File mappings and views.
#include <cstring>

#include "tests/simulator/file_helpers.h"
#include "tests/support/device_test.h"

namespace tests {
namespace {

constexpr DWORD kGranularity = 65536;

HANDLE OpenForMapping(const wchar_t* path, DWORD access = GENERIC_READ, DWORD share = 0) {
    return ::CreateFileForMappingW(path, access, share, nullptr, OPEN_EXISTING,
                                   FILE_ATTRIBUTE_NORMAL, nullptr);
}

HANDLE MapFile(HANDLE file, DWORD protection = PAGE_READONLY, DWORD bytes = 0) {
    return ::CreateFileMappingW(file, nullptr, protection, 0, bytes, nullptr);
}

class MappingTest : public DeviceTest {
protected:
    void SetUp() override { device().PutFile(L"\\a.bin", "0123456789"); }
};

TEST_F(MappingTest, AViewShowsTheFile) {
    HANDLE mapping = MapFile(OpenForMapping(L"\\a.bin"));
    ASSERT_NE(nullptr, mapping);
    const void* view = ::MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, 0);
    ASSERT_NE(nullptr, view);
    EXPECT_EQ(0, std::memcmp(view, "0123456789", 10));
    EXPECT_TRUE(::UnmapViewOfFile(view));
    EXPECT_TRUE(::CloseHandle(mapping));
}

TEST_F(MappingTest, TheFilesHandleBelongsToTheMapping) {
    HANDLE file = OpenForMapping(L"\\a.bin");
    HANDLE mapping = MapFile(file);
    EXPECT_EQ(ERROR_INVALID_HANDLE, ErrorOf(::CloseHandle(file)));
    EXPECT_EQ(10u, ::GetFileSize(file, nullptr));  // it is still open
    EXPECT_EQ(ERROR_SHARING_VIOLATION, OpenError(L"\\a.bin", GENERIC_READ));
    EXPECT_TRUE(::CloseHandle(mapping));
    EXPECT_EQ(ERROR_INVALID_HANDLE, ErrorOf(::CloseHandle(file)));
    EXPECT_EQ(0, OpenError(L"\\a.bin", GENERIC_READ));
}

TEST_F(MappingTest, TheFileStaysOpenUntilTheLastViewIsGone) {
    HANDLE mapping = MapFile(OpenForMapping(L"\\a.bin"));
    const void* view = ::MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, 0);
    EXPECT_TRUE(::CloseHandle(mapping));
    EXPECT_EQ(ERROR_SHARING_VIOLATION, ErrorOf(::DeleteFileW(L"\\a.bin")));
    EXPECT_TRUE(::UnmapViewOfFile(view));
    EXPECT_TRUE(::DeleteFileW(L"\\a.bin"));
}

TEST_F(MappingTest, AHandleThatWasNotMappedIsClosedAsUsual) {
    HANDLE file = OpenForMapping(L"\\a.bin");
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_EQ(0, OpenError(L"\\a.bin", GENERIC_READ));
}

TEST_F(MappingTest, AnOrdinaryHandleStaysItsOwners) {
    HANDLE file = Open(L"\\a.bin", GENERIC_READ, 0, OPEN_EXISTING);
    HANDLE mapping = MapFile(file);
    EXPECT_TRUE(::CloseHandle(mapping));
    EXPECT_TRUE(::CloseHandle(file));
}

TEST_F(MappingTest, AnEmptyFileIsNotMappedAndItsHandleIsClosed) {
    device().PutFile(L"\\empty.bin", "");
    HANDLE file = OpenForMapping(L"\\empty.bin");
    EXPECT_EQ(nullptr, MapFile(file));
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_INVALID), ::GetLastError());
    EXPECT_FALSE(::CloseHandle(file));
    EXPECT_TRUE(::DeleteFileW(L"\\empty.bin"));
}

TEST_F(MappingTest, ADeviceMayLeaveTheHandleOfAFailedMappingOpen) {
    device().Set("mapping.failed", "open");
    device().PutFile(L"\\empty.bin", "");
    HANDLE file = OpenForMapping(L"\\empty.bin");
    EXPECT_EQ(nullptr, MapFile(file));
    EXPECT_TRUE(::CloseHandle(file));
}

TEST_F(MappingTest, AViewBeginsAtAMultipleOfTheGranularity) {
    device().PutFile(L"\\big.bin", std::string(kGranularity, 'a') + std::string(10, 'b'));
    HANDLE mapping = MapFile(OpenForMapping(L"\\big.bin"));
    for (const DWORD offset : {1ul, 512ul, 4096ul, kGranularity / 2}) {
        EXPECT_EQ(nullptr, ::MapViewOfFile(mapping, FILE_MAP_READ, 0, offset, 1)) << offset;
        EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), ::GetLastError());
    }
    const auto* view =
        static_cast<const char*>(::MapViewOfFile(mapping, FILE_MAP_READ, 0, kGranularity, 10));
    ASSERT_NE(nullptr, view);
    EXPECT_EQ('b', view[0]);
    EXPECT_TRUE(::UnmapViewOfFile(view));
    EXPECT_TRUE(::CloseHandle(mapping));
}

TEST_F(MappingTest, AViewSeesWhatAnotherHandleWrites) {
    HANDLE writer = Open(L"\\a.bin", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING);
    HANDLE mapping =
        MapFile(OpenForMapping(L"\\a.bin", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE));
    ASSERT_NE(nullptr, mapping);
    const auto* view =
        static_cast<const volatile char*>(::MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, 0));
    EXPECT_EQ('0', view[0]);
    EXPECT_TRUE(Write(writer, "AB"));
    EXPECT_EQ('A', view[0]);
    EXPECT_EQ('B', view[1]);
    EXPECT_TRUE(::UnmapViewOfFile(const_cast<const char*>(view)));
    EXPECT_TRUE(::CloseHandle(mapping));
    EXPECT_TRUE(::CloseHandle(writer));
}

TEST_F(MappingTest, AWritableViewChangesTheFileAndItsTime) {
    device().Touch(L"\\a.bin", 126227808000000000ull);
    HANDLE mapping =
        MapFile(OpenForMapping(L"\\a.bin", GENERIC_READ | GENERIC_WRITE), PAGE_READWRITE);
    auto* view = static_cast<char*>(::MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0));
    ASSERT_NE(nullptr, view);
    view[0] = 'X';
    EXPECT_TRUE(::FlushViewOfFile(view, 0));
    EXPECT_TRUE(::UnmapViewOfFile(view));
    EXPECT_TRUE(::CloseHandle(mapping));
    EXPECT_EQ("X123456789", device().FileBytes(L"\\a.bin"));
    EXPECT_GT(device().Info(L"\\a.bin").modified, 126227808000000000ull);
}

TEST_F(MappingTest, AMappingLargerThanItsFileMakesItGrow) {
    HANDLE mapping =
        MapFile(OpenForMapping(L"\\a.bin", GENERIC_READ | GENERIC_WRITE), PAGE_READWRITE, 100);
    ASSERT_NE(nullptr, mapping);
    EXPECT_TRUE(::CloseHandle(mapping));
    EXPECT_EQ(100u, device().Info(L"\\a.bin").size);
}

TEST_F(MappingTest, AMappingPastTheFreeSpaceFailsAndChangesNothing) {
    device().Set("store.free", "50");
    HANDLE file = OpenForMapping(L"\\a.bin", GENERIC_READ | GENERIC_WRITE);
    EXPECT_EQ(nullptr, MapFile(file, PAGE_READWRITE, 61));
    EXPECT_EQ(static_cast<DWORD>(ERROR_DISK_FULL), ::GetLastError());
    EXPECT_EQ(10u, device().Info(L"\\a.bin").size);
    HANDLE mapping =
        MapFile(OpenForMapping(L"\\a.bin", GENERIC_READ | GENERIC_WRITE), PAGE_READWRITE, 60);
    EXPECT_NE(nullptr, mapping);
    EXPECT_TRUE(::CloseHandle(mapping));
}

TEST_F(MappingTest, AReadOnlyMappingIsNotViewedForWriting) {
    HANDLE mapping = MapFile(OpenForMapping(L"\\a.bin"));
    EXPECT_EQ(nullptr, ::MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0));
    EXPECT_TRUE(::CloseHandle(mapping));
    EXPECT_EQ(nullptr, MapFile(OpenForMapping(L"\\a.bin"), PAGE_READWRITE));
}

TEST_F(MappingTest, MemoryAloneIsMappedToo) {
    HANDLE mapping = MapFile(INVALID_HANDLE_VALUE, PAGE_READWRITE, 100);
    ASSERT_NE(nullptr, mapping);
    auto* view = static_cast<char*>(::MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0));
    ASSERT_NE(nullptr, view);
    view[99] = 'x';
    EXPECT_TRUE(::UnmapViewOfFile(view));
    EXPECT_FALSE(::UnmapViewOfFile(view));
    EXPECT_TRUE(::CloseHandle(mapping));
}

TEST_F(MappingTest, SecurityAttributesAreRefused) {
    SECURITY_ATTRIBUTES security{};
    EXPECT_EQ(nullptr, ::CreateFileMappingW(INVALID_HANDLE_VALUE, &security, PAGE_READWRITE, 0, 100,
                                            nullptr));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), ::GetLastError());
}

TEST_F(MappingTest, OpeningForMappingFailsAsOpeningDoes) {
    EXPECT_EQ(INVALID_HANDLE_VALUE, OpenForMapping(L"\\none.bin"));
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), ::GetLastError());
    auto lock = device().Lock(L"\\a.bin");
    EXPECT_EQ(INVALID_HANDLE_VALUE, OpenForMapping(L"\\a.bin"));
    EXPECT_EQ(static_cast<DWORD>(ERROR_SHARING_VIOLATION), ::GetLastError());
}

// As documented of version 5.0.
TEST_F(MappingTest, TheShareModeMayBeIgnored) {
    device().Set("mapping.share", "ignored");
    HANDLE mapping = MapFile(OpenForMapping(L"\\a.bin", GENERIC_READ, 0));
    EXPECT_EQ(0, OpenError(L"\\a.bin", GENERIC_READ, FILE_SHARE_READ));
    EXPECT_TRUE(::CloseHandle(mapping));
    HANDLE writer = Open(L"\\a.bin", GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING);
    EXPECT_EQ(INVALID_HANDLE_VALUE,
              OpenForMapping(L"\\a.bin", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE));
    ::CloseHandle(writer);
}

// As documented of version 2.10 and earlier.
TEST_F(MappingTest, MayBeForReadingAlone) {
    device().Set("mapping.write", "refused");
    EXPECT_EQ(INVALID_HANDLE_VALUE, OpenForMapping(L"\\a.bin", GENERIC_READ | GENERIC_WRITE));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), ::GetLastError());
    HANDLE mapping = MapFile(OpenForMapping(L"\\a.bin"));
    EXPECT_TRUE(::CloseHandle(mapping));
}

}  // namespace
}  // namespace tests
