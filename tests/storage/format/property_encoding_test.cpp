#include "storage/format/property_encoding.h"

#include <cstring>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <vector>

#include "snapshot/records/checksum.h"

namespace tolvenar {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kBase = 0x00400000;

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

// One element of the array: identifier, length, flags and the eight bytes of the value.
Bytes Property(std::uint16_t id, std::uint16_t type, std::uint16_t flags, std::uint32_t value,
               std::uint32_t value_high = 0) {
    const auto low = [](std::uint32_t word) { return static_cast<std::uint8_t>(word); };
    Bytes bytes;
    for (const std::uint16_t word : {type, id, std::uint16_t{0}, flags}) {
        bytes.push_back(low(word));
        bytes.push_back(low(word >> 8));
    }
    for (const std::uint32_t word : {value, value_high}) {
        for (int shift = 0; shift < 32; shift += 8) {
            bytes.push_back(low(word >> shift));
        }
    }
    return bytes;
}

std::uint16_t ChecksumOf(const Bytes& buffer, std::size_t count) {
    std::uint16_t checksum = 0;
    EXPECT_TRUE(ChecksumOfProperties(buffer.data(), buffer.size(), count, checksum));
    return checksum;
}

std::uint16_t SumOf(const Bytes& canonical) {
    return Checksum16(canonical.data(), canonical.size());
}

TEST(PropertyEncodingTest, ASixteenBitNumberCountsWithTwoBytes) {
    const Bytes canonical = {2, 0, 0x21, 0x40, 0, 0, 0x34, 0x12};
    EXPECT_EQ(SumOf(canonical), ChecksumOf(Property(0x4021, 2, 0, 0xFFFF1234), 1));
    const Bytes unsigned_canonical = {18, 0, 0x21, 0x40, 0, 0, 0x34, 0x12};
    EXPECT_EQ(SumOf(unsigned_canonical), ChecksumOf(Property(0x4021, 18, 0, 0xFFFF1234), 1));
}

TEST(PropertyEncodingTest, AThirtyTwoBitNumberCountsWithFourBytes) {
    const Bytes canonical = {3, 0, 1, 0, 0, 0, 0x78, 0x56, 0x34, 0x12};
    EXPECT_EQ(SumOf(canonical), ChecksumOf(Property(1, 3, 0, 0x12345678, 0xFFFFFFFF), 1));
    const Bytes unsigned_canonical = {19, 0, 1, 0, 0, 0, 0x78, 0x56, 0x34, 0x12};
    EXPECT_EQ(SumOf(unsigned_canonical), ChecksumOf(Property(1, 19, 0, 0x12345678), 1));
}

TEST(PropertyEncodingTest, AFileTimeCountsWithEightBytes) {
    const Bytes canonical = {64, 0, 1, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(SumOf(canonical), ChecksumOf(Property(1, 64, 0, 0x04030201, 0x08070605), 1));
}

TEST(PropertyEncodingTest, AStringCountsWithoutItsTerminator) {
    const Bytes buffer = Property(1, 31, 0, 16) + Bytes{'a', 0, 'b', 1, 0, 0};
    const Bytes canonical = {31, 0, 1, 0, 0, 0, 'a', 0, 'b', 1};
    EXPECT_EQ(SumOf(canonical), ChecksumOf(buffer, 1));
}

TEST(PropertyEncodingTest, ABlobCountsWithAsManyBytesAsItsLengthSays) {
    const Bytes buffer = Property(1, 65, 0, 3, 16) + Bytes{9, 0, 8, 7};
    const Bytes canonical = {65, 0, 1, 0, 0, 0, 9, 0, 8};
    EXPECT_EQ(SumOf(canonical), ChecksumOf(buffer, 1));
}

// Oddity 8: a change of such a value alone is not seen.
TEST(PropertyEncodingTest, BooleansDoublesAndUnknownTypesCountByTheirPresenceOnly) {
    for (const std::uint8_t type : Bytes{11, 5, 99}) {
        const Bytes canonical = {type, 0, 1, 0, 0, 0};
        EXPECT_EQ(SumOf(canonical), ChecksumOf(Property(1, type, 0, 0), 1));
        EXPECT_EQ(SumOf(canonical), ChecksumOf(Property(1, type, 0, 1, 0x3FF00000), 1));
    }
}

TEST(PropertyEncodingTest, TheFlagsWordCounts) {
    const Bytes canonical = {2, 0, 1, 0, 0x00, 0x01, 5, 0};
    EXPECT_EQ(SumOf(canonical), ChecksumOf(Property(1, 2, 0x0100, 5), 1));
}

TEST(PropertyEncodingTest, PropertiesCountInTheOrderInWhichTheyWereRead) {
    const Bytes buffer = Property(1, 2, 0, 5) + Property(2, 2, 0, 6);
    const Bytes canonical = {2, 0, 1, 0, 0, 0, 5, 0, 2, 0, 2, 0, 0, 0, 6, 0};
    EXPECT_EQ(SumOf(canonical), ChecksumOf(buffer, 2));
    EXPECT_NE(ChecksumOf(buffer, 2), ChecksumOf(Property(2, 2, 0, 6) + Property(1, 2, 0, 5), 2));
}

TEST(PropertyEncodingTest, PointersBecomeOffsetsFromTheBuffersStart) {
    Bytes buffer = Property(1, 31, 0, kBase + 48) + Property(2, 65, 0, 2, kBase + 52) +
                   Property(3, 3, 0, kBase + 1) + Bytes{'a', 0, 0, 0, 7, 8};
    ASSERT_TRUE(PointersToOffsets(buffer.data(), buffer.size(), 3, kBase));
    EXPECT_EQ(Property(1, 31, 0, 48) + Property(2, 65, 0, 2, 52) + Property(3, 3, 0, kBase + 1) +
                  Bytes({'a', 0, 0, 0, 7, 8}),
              buffer);
}

TEST(PropertyEncodingTest, OffsetsBecomePointersAgain) {
    const Bytes stored =
        Property(1, 31, 0, 32) + Property(2, 65, 0, 2, 36) + Bytes{'a', 0, 0, 0, 7, 8};
    Bytes buffer = stored;
    ASSERT_TRUE(OffsetsToPointers(buffer.data(), buffer.size(), 2, kBase));
    EXPECT_EQ(Property(1, 31, 0, kBase + 32) + Property(2, 65, 0, 2, kBase + 36) +
                  Bytes({'a', 0, 0, 0, 7, 8}),
              buffer);
    ASSERT_TRUE(PointersToOffsets(buffer.data(), buffer.size(), 2, kBase));
    EXPECT_EQ(stored, buffer);
}

TEST(PropertyEncodingTest, AnEmptyBlobMayPointAnywhere) {
    Bytes buffer = Property(1, 65, 0, 0, 0);
    ASSERT_TRUE(PointersToOffsets(buffer.data(), buffer.size(), 1, kBase));
    EXPECT_EQ(Property(1, 65, 0, 0, 0), buffer);
}

TEST(PropertyEncodingCorruptTest, ACountThatTheBufferDoesNotHoldFails) {
    Bytes buffer = Property(1, 2, 0, 5);
    std::uint16_t checksum = 0;
    EXPECT_FALSE(ChecksumOfProperties(buffer.data(), buffer.size(), 2, checksum));
    EXPECT_FALSE(OffsetsToPointers(buffer.data(), buffer.size(), 2, kBase));
    EXPECT_FALSE(OffsetsToPointers(buffer.data(), buffer.size(), 0x10000001, kBase));
    EXPECT_FALSE(OffsetsToPointers(buffer.data(), 15, 1, kBase));
}

TEST(PropertyEncodingCorruptTest, AStringThatDoesNotEndInTheBufferFails) {
    Bytes buffer = Property(1, 31, 0, 16) + Bytes{'a', 0, 'b', 0, 0};
    std::uint16_t checksum = 0;
    EXPECT_FALSE(ChecksumOfProperties(buffer.data(), buffer.size(), 1, checksum));
    EXPECT_FALSE(OffsetsToPointers(buffer.data(), buffer.size(), 1, kBase));
}

TEST(PropertyEncodingCorruptTest, AnOffsetOutsideTheBufferFails) {
    for (const std::uint32_t offset : {22u, 23u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        Bytes text = Property(1, 31, 0, offset) + Bytes{'a', 0, 0, 0, 1, 1};
        Bytes blob = Property(1, 65, 0, 1, offset) + Bytes{1, 2, 3, 4, 5, 6};
        std::uint16_t checksum = 0;
        EXPECT_FALSE(ChecksumOfProperties(text.data(), text.size(), 1, checksum)) << offset;
        EXPECT_FALSE(OffsetsToPointers(text.data(), text.size(), 1, kBase)) << offset;
        EXPECT_FALSE(ChecksumOfProperties(blob.data(), blob.size(), 1, checksum)) << offset;
        EXPECT_FALSE(OffsetsToPointers(blob.data(), blob.size(), 1, kBase)) << offset;
    }
}

TEST(PropertyEncodingCorruptTest, ABlobLongerThanTheBufferFails) {
    for (const std::uint32_t length : {3u, 0x80000000u, 0xFFFFFFFFu}) {
        Bytes buffer = Property(1, 65, 0, length, 16) + Bytes{1, 2};
        std::uint16_t checksum = 0;
        EXPECT_FALSE(ChecksumOfProperties(buffer.data(), buffer.size(), 1, checksum)) << length;
        EXPECT_FALSE(OffsetsToPointers(buffer.data(), buffer.size(), 1, kBase)) << length;
    }
}

TEST(PropertyEncodingCorruptTest, APointerBeforeTheBufferFails) {
    Bytes buffer = Property(1, 31, 0, kBase - 2) + Bytes{'a', 0, 0, 0};
    EXPECT_FALSE(PointersToOffsets(buffer.data(), buffer.size(), 1, kBase));
}

}  // namespace
}  // namespace tolvenar
