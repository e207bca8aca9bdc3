// Who may open a file that is open already, in this process and in another.
#include <filesystem>
#include <fstream>
#include <thread>

#include "simulator/processes/processes.h"
#include "tests/simulator/file_helpers.h"
#include "tests/support/child_role.h"
#include "tests/support/device_test.h"

namespace tests {
namespace {

// Holds the file without sharing until it may go.
const ChildRole kHolder(L"hold", [](const wchar_t* path) {
    HANDLE file = Open(path, GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING);
    if (file == INVALID_HANDLE_VALUE) {
        return 1;
    }
    sim::host::TellReady();
    sim::host::WaitForParent();
    return ::CloseHandle(file) ? 0 : 2;
});

// Makes a file, renames it, and looks for one that the other process made.
const ChildRole kMaker(L"make", [](const wchar_t*) {
    HANDLE file = Open(L"\\from child.txt", GENERIC_WRITE, 0, CREATE_NEW);
    const bool made = Write(file, "child") && ::CloseHandle(file);
    const bool sees = OpenError(L"\\from parent.txt", GENERIC_READ) == 0;
    return made && sees && ::MoveFileW(L"\\from child.txt", L"\\renamed.txt") ? 0 : 1;
});

// Writes until it is killed.
const ChildRole kWriter(L"write", [](const wchar_t* path) {
    HANDLE file = Open(path, GENERIC_WRITE, FILE_SHARE_READ, CREATE_ALWAYS);
    const std::string bytes(1000, 'w');
    for (int i = 0; i < 100000 && Write(file, bytes); ++i) {
        if (i == 50) {
            sim::host::TellReady();
        }
    }
    return 1;
});

// A tool in the middle of its reading.
const ChildRole kReader(L"read", [](const wchar_t* path) {
    sim::Device& device = sim::Device::Current();
    const sim::LogStore::Change change(device.store());
    const std::ifstream file(std::filesystem::path(sim::files::HostFile(device, path)));
    if (!file) {
        return 1;
    }
    sim::host::TellReady();
    ::Sleep(300);
    return 0;
});

class SharingTest : public DeviceTest {
protected:
    void SetUp() override { device().PutFile(L"\\a.txt", "content"); }
};

TEST_F(SharingTest, AccessAndSharingOfTwoHandlesMustAgree) {
    constexpr DWORD kRead = GENERIC_READ;
    constexpr DWORD kWrite = GENERIC_WRITE;
    struct Row {
        DWORD first_access, first_share, second_access, second_share;
        bool allowed;
    };
    constexpr Row kRows[] = {
        {kRead, 0, kRead, FILE_SHARE_READ, false},
        {kRead, FILE_SHARE_READ, kRead, FILE_SHARE_READ, true},
        {kRead, FILE_SHARE_READ, kRead, 0, false},
        {kRead, FILE_SHARE_READ, kWrite, FILE_SHARE_READ, false},
        {kRead, FILE_SHARE_READ | FILE_SHARE_WRITE, kWrite, FILE_SHARE_READ, true},
        {kWrite, FILE_SHARE_READ, kRead, FILE_SHARE_READ, false},
        {kWrite, FILE_SHARE_READ, kRead, FILE_SHARE_READ | FILE_SHARE_WRITE, true},
        {kWrite, FILE_SHARE_READ, kWrite, FILE_SHARE_WRITE, false},
    };
    for (const Row& row : kRows) {
        HANDLE first = Open(L"\\a.txt", row.first_access, row.first_share, OPEN_EXISTING);
        EXPECT_EQ(row.allowed ? 0 : ERROR_SHARING_VIOLATION,
                  OpenError(L"\\a.txt", row.second_access, row.second_share))
            << "row " << (&row - kRows);
        EXPECT_TRUE(::CloseHandle(first));
    }
}

TEST_F(SharingTest, AnOpenFileIsNeitherDeletedNorMoved) {
    HANDLE file = Open(L"\\a.txt", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING);
    EXPECT_EQ(ERROR_SHARING_VIOLATION, ErrorOf(::DeleteFileW(L"\\a.txt")));
    EXPECT_EQ(ERROR_SHARING_VIOLATION, ErrorOf(::MoveFileW(L"\\a.txt", L"\\b.txt")));
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_TRUE(::DeleteFileW(L"\\a.txt"));
}

TEST_F(SharingTest, AFileHeldByAnotherProcessDoesNotOpen) {
    sim::host::Child holder(L"hold", L"\\a.txt");
    ASSERT_TRUE(holder.WaitReady());
    EXPECT_EQ(ERROR_SHARING_VIOLATION,
              OpenError(L"\\a.txt", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE));
    EXPECT_EQ(ERROR_SHARING_VIOLATION, ErrorOf(::DeleteFileW(L"\\a.txt")));
    EXPECT_EQ(0, holder.Finish());
    EXPECT_EQ(0, OpenError(L"\\a.txt", GENERIC_READ));
}

TEST_F(SharingTest, AToolThatReadsIsInNobodysWay) {
    sim::host::Child reader(L"read", L"\\a.txt");
    ASSERT_TRUE(reader.WaitReady());
    EXPECT_EQ(0, OpenError(L"\\a.txt", GENERIC_READ | GENERIC_WRITE));
    EXPECT_EQ(0, reader.Finish());
}

TEST_F(SharingTest, AToolReadsAFileWhenItsHolderLetsItGo) {
    sim::host::Child holder(L"hold", L"\\a.txt");
    ASSERT_TRUE(holder.WaitReady());
    std::thread end([&] {
        ::Sleep(200);
        EXPECT_EQ(0, holder.Finish());
    });
    EXPECT_EQ("content", device().FileBytes(L"\\a.txt"));
    end.join();
}

TEST_F(SharingTest, AKilledProcessHoldsNothing) {
    sim::host::Child holder(L"hold", L"\\a.txt");
    ASSERT_TRUE(holder.WaitReady());
    holder.Kill();
    EXPECT_EQ(0, OpenError(L"\\a.txt", GENERIC_READ | GENERIC_WRITE));
    EXPECT_TRUE(::DeleteFileW(L"\\a.txt"));
}

TEST_F(SharingTest, ProcessesSeeEachOthersFiles) {
    device().PutFile(L"\\from parent.txt", "parent");
    sim::host::Child maker(L"make", L"");
    EXPECT_EQ(0, maker.Finish());
    EXPECT_FALSE(device().Exists(L"\\from child.txt"));
    EXPECT_EQ("child", device().FileBytes(L"\\renamed.txt"));
}

TEST_F(SharingTest, SizeAndFreeSpaceAreRightAfterAKill) {
    device().Set("store.free", "200000000");
    device().Set("store.size", "400000000");
    const auto before = sim::files::Get(device().sim(), L"\\a.txt").size();
    STORE_INFORMATION store{};
    EXPECT_TRUE(::GetStoreInformation(&store));
    const DWORD free_before = store.dwFreeSize;
    {
        sim::host::Child writer(L"write", L"\\w.bin");
        ASSERT_TRUE(writer.WaitReady());
        writer.Kill();
    }
    const auto bytes = device().FileBytes(L"\\w.bin").size();
    EXPECT_GE(bytes, 50000u);
    EXPECT_EQ(7u, before);
    EXPECT_EQ(bytes, Found(L"\\w.bin").nFileSizeLow);
    EXPECT_TRUE(::GetStoreInformation(&store));
    EXPECT_EQ(free_before - bytes, store.dwFreeSize);
    EXPECT_TRUE(::DeleteFileW(L"\\w.bin"));
    EXPECT_TRUE(::GetStoreInformation(&store));
    EXPECT_EQ(free_before, store.dwFreeSize);
}

TEST_F(SharingTest, ALockSharesWhatItSays) {
    {
        auto lock = device().Lock(L"\\a.txt");
        EXPECT_EQ(ERROR_SHARING_VIOLATION, OpenError(L"\\a.txt", GENERIC_READ, FILE_SHARE_READ));
        EXPECT_EQ(ERROR_SHARING_VIOLATION, ErrorOf(::DeleteFileW(L"\\a.txt")));
    }
    {
        auto lock = device().Lock(L"\\a.txt", "read");
        EXPECT_EQ(0, OpenError(L"\\a.txt", GENERIC_READ, FILE_SHARE_READ));
        EXPECT_EQ(ERROR_SHARING_VIOLATION, OpenError(L"\\a.txt", GENERIC_READ, 0));
        EXPECT_EQ(ERROR_SHARING_VIOLATION, OpenError(L"\\a.txt", GENERIC_WRITE, FILE_SHARE_READ));
    }
    {
        auto lock = device().Lock(L"\\a.txt", "write");
        EXPECT_EQ(0, OpenError(L"\\a.txt", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ));
        EXPECT_EQ(ERROR_SHARING_VIOLATION, OpenError(L"\\a.txt", GENERIC_READ | GENERIC_WRITE, 0));
    }
    EXPECT_EQ(0, OpenError(L"\\a.txt", GENERIC_READ | GENERIC_WRITE, 0));
}

TEST_F(SharingTest, ARunningProgramsFileIsReadAndNothingElse) {
    device().PutFile(L"\\Windows\\tool.exe", "program");
    sim::host::Child holder(L"hold", L"\\a.txt");
    ASSERT_TRUE(holder.WaitReady());
    sim::processes::Register(device().sim(), holder.pid(), L"\\Windows\\tool.exe", L"");
    EXPECT_EQ(0, OpenError(L"\\Windows\\tool.exe", GENERIC_READ, FILE_SHARE_READ));
    EXPECT_EQ(ERROR_SHARING_VIOLATION, OpenError(L"\\windows\\TOOL.exe", GENERIC_WRITE));
    EXPECT_EQ(ERROR_SHARING_VIOLATION, ErrorOf(::DeleteFileW(L"\\Windows\\tool.exe")));
    EXPECT_EQ(0, holder.Finish());
    EXPECT_TRUE(::DeleteFileW(L"\\Windows\\tool.exe"));
}

}  // namespace
}  // namespace tests
