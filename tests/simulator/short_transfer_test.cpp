// Reads and writes that succeed with fewer bytes than were asked for.
#include <stdexcept>

#include "tests/simulator/file_helpers.h"
#include "tests/support/device_test.h"

namespace tests {
namespace {

constexpr wchar_t kFile[] = L"\\a.txt";

class ShortTransferTest : public DeviceTest {
protected:
    // The bytes that one WriteFile of `bytes` says it wrote.
    static DWORD Written(HANDLE file, const std::string& bytes) {
        DWORD count = 77;
        EXPECT_TRUE(
            ::WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr));
        return count;
    }
};

TEST_F(ShortTransferTest, AReadGivesHalfAndTheNextOneGoesOnBehindIt) {
    device().PutFile(kFile, "0123456789");
    device().Short("ReadFile", 2);
    HANDLE file = Open(kFile, GENERIC_READ, 0, OPEN_EXISTING);
    EXPECT_EQ("0", Read(file, 1));
    EXPECT_EQ("12", Read(file, 4));
    EXPECT_EQ("3456", Read(file, 4));
    EXPECT_TRUE(::CloseHandle(file));
}

TEST_F(ShortTransferTest, AWriteWritesHalfAndTheNextOneGoesOnBehindIt) {
    HANDLE file = Open(kFile, GENERIC_WRITE, 0, CREATE_NEW);
    device().Short("WriteFile", 1);
    EXPECT_EQ(3u, Written(file, "012345"));
    EXPECT_EQ(2u, Written(file, "ab"));
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_EQ("012ab", device().FileBytes(kFile));
}

TEST_F(ShortTransferTest, OneByteIsTransferredAndNoneStaysNone) {
    HANDLE file = Open(kFile, GENERIC_READ | GENERIC_WRITE, 0, CREATE_NEW);
    device().Short("WriteFile", 1, 3);
    EXPECT_EQ(1u, Written(file, "x"));
    EXPECT_EQ(0u, Written(file, ""));
    EXPECT_EQ(1u, Written(file, "abc"));
    EXPECT_TRUE(::CloseHandle(file));
    EXPECT_EQ("xa", device().FileBytes(kFile));
}

TEST_F(ShortTransferTest, ACallThatFailsLeavesTheNextOneWhole) {
    device().PutFile(kFile, "0123456789");
    device().Short("ReadFile", 1);
    char byte = 0;
    DWORD count = 0;
    EXPECT_FALSE(::ReadFile(INVALID_HANDLE_VALUE, &byte, 1, &count, nullptr));
    HANDLE file = Open(kFile, GENERIC_READ, 0, OPEN_EXISTING);
    EXPECT_EQ("0123", Read(file, 4));
    EXPECT_TRUE(::CloseHandle(file));
}

TEST_F(ShortTransferTest, TheRuleIsToldUntilItHasFired) {
    device().Command("fault ReadFile 1 2 short");
    device().Command("fault ReadFile 1 short 12");
    const std::string never = device().Faults();
    EXPECT_NE(std::string::npos, never.find("\"error\":\"short\""));
    EXPECT_NE(std::string::npos, never.find("\"count\":2"));
    EXPECT_NE(std::string::npos, never.find("\"match\":\"12\""));
    device().PutFile(kFile, "0123456789");
    HANDLE file = Open(kFile, GENERIC_READ, 0, OPEN_EXISTING);
    EXPECT_EQ("012345", Read(file, 12));
    EXPECT_TRUE(::CloseHandle(file));
}

TEST_F(ShortTransferTest, OnlyReadsAndWritesCanBeShort) {
    EXPECT_THROW(device().Command("fault DeleteFileW 1 short"), std::runtime_error);
    EXPECT_THROW(device().Command("fault * 1 short"), std::runtime_error);
    EXPECT_EQ("[]", device().Command("faults all"));
}

}  // namespace
}  // namespace tests
