#include "app/operations/memory_check.h"

#include "tests/support/device_test.h"

namespace tolvenar {
namespace {

class MemoryCheckTest : public tests::DeviceTest {
protected:
    std::uint32_t Available(const std::string& memory, const std::string& store) {
        device().Set("memory.free", memory);
        device().Set("store.free", store);
        std::uint32_t available = 0;
        is_enough_ = MemoryCheck(available);
        return available;
    }

    bool is_enough_ = false;
};

TEST_F(MemoryCheckTest, EightMegabytesAreEnoughAndOneByteLessIsNot) {
    EXPECT_EQ(8388608u, Available("8388608", "0"));
    EXPECT_TRUE(is_enough_);
    EXPECT_EQ(8388607u, Available("8388607", "0"));
    EXPECT_FALSE(is_enough_);
}

// 4,099 bytes: a quarter, 1,024, and a half, 2,049.
TEST_F(MemoryCheckTest, AQuarterAndAHalfOfTheObjectStoreCount) {
    EXPECT_EQ(1000u + 1024 + 2049, Available("1000", "4099"));
    EXPECT_FALSE(is_enough_);
    EXPECT_EQ(8388608u, Available("2097152", "8388608"));
    EXPECT_TRUE(is_enough_);
}

// A scan can lack memory behind a check that found enough.
TEST(MissingMemoryTest, IsWhatTheMinimumLacksOrTheMinimumAgain) {
    EXPECT_EQ(1u, MissingMemory(kMinimumFreeBytes - 1));
    EXPECT_EQ(kMinimumFreeBytes, MissingMemory(0));
    EXPECT_EQ(kMinimumFreeBytes, MissingMemory(kMinimumFreeBytes));
    EXPECT_EQ(kMinimumFreeBytes, MissingMemory(3000000000u));
}

std::wstring Megabytes(std::uint32_t bytes) {
    wchar_t text[kMegabytesUnits] = L"";
    FormatMegabytes(bytes, text);
    return text;
}

TEST(FormatMegabytesTest, OneDecimalRounded) {
    EXPECT_EQ(L"8.0", Megabytes(8388608));
    EXPECT_EQ(L"1.0", Megabytes(1048576));
    EXPECT_EQ(L"0.0", Megabytes(52428));
    EXPECT_EQ(L"0.1", Megabytes(52429));
    EXPECT_EQ(L"7.9", Megabytes(8283750));
    EXPECT_EQ(L"8.0", Megabytes(8336180));
    // Times 9.536743e-7 a quarter of a megabyte is a little less.
    EXPECT_EQ(L"0.2", Megabytes(262144));
    EXPECT_EQ(L"0.3", Megabytes(262145));
    EXPECT_EQ(L"0.7", Megabytes(786432));
}

}  // namespace
}  // namespace tolvenar
