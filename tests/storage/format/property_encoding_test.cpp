#include "storage/format/property_encoding.h"

#include <gtest/gtest.h>

#include "snapshot/records/checksum.h"
#include "tests/support/bytes.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kBase = 0x00400000;

// One element of the array: identifier, length, flags and the eight bytes of the value.
Bytes Element(std::uint32_t id, std::uint32_t type, std::uint32_t flags, std::uint32_t value,
              std::uint32_t value_high = 0) {
    return Property(id << 16 | type, value, value_high, flags);
}

std::uint16_t ChecksumOf(const Bytes& buffer, std::size_t count) {
    std::uint16_t checksum = 0;
    EXPECT_TRUE(ChecksumOfProperties(Exactly(buffer).data(), buffer.size(), count, checksum));
    return checksum;
}

std::uint16_t SumOf(const Bytes& canonical) {
    return Checksum16(canonical.data(), canonical.size());
}

TEST(PropertyEncodingTest, ASixteenBitNumberCountsWithTwoBytes) {
    const Bytes canonical = Raw({2, 0, 0x21, 0x40, 0, 0, 0x34, 0x12});
    EXPECT_EQ(SumOf(canonical), ChecksumOf(Element(0x4021, 2, 0, 0xFFFF1234), 1));
    const Bytes unsigned_canonical = Raw({18, 0, 0x21, 0x40, 0, 0, 0x34, 0x12});
    EXPECT_EQ(SumOf(unsigned_canonical), ChecksumOf(Element(0x4021, 18, 0, 0xFFFF1234), 1));
}

TEST(PropertyEncodingTest, AThirtyTwoBitNumberCountsWithFourBytes) {
    const Bytes canonical = Raw({3, 0, 1, 0, 0, 0, 0x78, 0x56, 0x34, 0x12});
    EXPECT_EQ(SumOf(canonical), ChecksumOf(Element(1, 3, 0, 0x12345678, 0xFFFFFFFF), 1));
    const Bytes unsigned_canonical = Raw({19, 0, 1, 0, 0, 0, 0x78, 0x56, 0x34, 0x12});
    EXPECT_EQ(SumOf(unsigned_canonical), ChecksumOf(Element(1, 19, 0, 0x12345678), 1));
}

TEST(PropertyEncodingTest, AFileTimeCountsWithEightBytes) {
    const Bytes canonical = Raw({64, 0, 1, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_EQ(SumOf(canonical), ChecksumOf(Element(1, 64, 0, 0x04030201, 0x08070605), 1));
}

TEST(PropertyEncodingTest, AStringCountsWithoutItsTerminator) {
    const Bytes buffer = Element(1, 31, 0, 16) + Raw({'a', 0, 'b', 1, 0, 0});
    const Bytes canonical = Raw({31, 0, 1, 0, 0, 0, 'a', 0, 'b', 1});
    EXPECT_EQ(SumOf(canonical), ChecksumOf(buffer, 1));
}

TEST(PropertyEncodingTest, ABlobCountsWithAsManyBytesAsItsLengthSays) {
    const Bytes buffer = Element(1, 65, 0, 3, 16) + Raw({9, 0, 8, 7});
    const Bytes canonical = Raw({65, 0, 1, 0, 0, 0, 9, 0, 8});
    EXPECT_EQ(SumOf(canonical), ChecksumOf(buffer, 1));
}

// Oddity 8: a change of such a value alone is not seen.
TEST(PropertyEncodingTest, BooleansDoublesAndUnknownTypesCountByTheirPresenceOnly) {
    for (const int type : {11, 5, 99}) {
        const Bytes canonical = Raw({type, 0, 1, 0, 0, 0});
        EXPECT_EQ(SumOf(canonical),
                  ChecksumOf(Element(1, static_cast<std::uint32_t>(type), 0, 0), 1));
        EXPECT_EQ(SumOf(canonical),
                  ChecksumOf(Element(1, static_cast<std::uint32_t>(type), 0, 1, 0x3FF00000), 1));
    }
}

TEST(PropertyEncodingTest, TheFlagsWordCounts) {
    const Bytes canonical = Raw({2, 0, 1, 0, 0x00, 0x01, 5, 0});
    EXPECT_EQ(SumOf(canonical), ChecksumOf(Element(1, 2, 0x0100, 5), 1));
}

TEST(PropertyEncodingTest, PropertiesCountInTheOrderInWhichTheyWereRead) {
    const Bytes buffer = Element(1, 2, 0, 5) + Element(2, 2, 0, 6);
    const Bytes canonical = Raw({2, 0, 1, 0, 0, 0, 5, 0, 2, 0, 2, 0, 0, 0, 6, 0});
    EXPECT_EQ(SumOf(canonical), ChecksumOf(buffer, 2));
    EXPECT_NE(ChecksumOf(buffer, 2), ChecksumOf(Element(2, 2, 0, 6) + Element(1, 2, 0, 5), 2));
}

TEST(PropertyEncodingTest, PointersBecomeOffsetsFromTheBuffersStart) {
    Bytes buffer = Element(1, 31, 0, kBase + 48) + Element(2, 65, 0, 2, kBase + 52) +
                   Element(3, 3, 0, kBase + 1) + Raw({'a', 0, 0, 0, 7, 8});
    ASSERT_TRUE(PointersToOffsets(buffer.data(), buffer.size(), 3, kBase));
    EXPECT_EQ(Element(1, 31, 0, 48) + Element(2, 65, 0, 2, 52) + Element(3, 3, 0, kBase + 1) +
                  Raw({'a', 0, 0, 0, 7, 8}),
              buffer);
}

TEST(PropertyEncodingTest, OffsetsBecomePointersAgain) {
    const Bytes stored =
        Element(1, 31, 0, 32) + Element(2, 65, 0, 2, 36) + Raw({'a', 0, 0, 0, 7, 8});
    Bytes buffer = stored;
    ASSERT_TRUE(OffsetsToPointers(buffer.data(), buffer.size(), 2, kBase));
    EXPECT_EQ(Element(1, 31, 0, kBase + 32) + Element(2, 65, 0, 2, kBase + 36) +
                  Raw({'a', 0, 0, 0, 7, 8}),
              buffer);
    ASSERT_TRUE(PointersToOffsets(buffer.data(), buffer.size(), 2, kBase));
    EXPECT_EQ(stored, buffer);
}

TEST(PropertyEncodingTest, AnEmptyBlobMayPointAnywhere) {
    Bytes buffer = Element(1, 65, 0, 0, 0);
    ASSERT_TRUE(PointersToOffsets(buffer.data(), buffer.size(), 1, kBase));
    EXPECT_EQ(Element(1, 65, 0, 0, 0), buffer);
    EXPECT_TRUE(OffsetsToPointers(buffer.data(), buffer.size(), 1, kBase));
}

// The same buffers but for one bit.
bool DifferAt(const Bytes& buffer, std::size_t count, std::size_t bit) {
    Bytes other = buffer;
    other[bit / 8] ^= static_cast<char>(1 << bit % 8);
    return !SameProperties(Exactly(buffer).data(), Exactly(other).data(), buffer.size(), count);
}

TEST(SamePropertiesTest, EveryBitOfAValueOfAnyTypeCounts) {
    const struct {
        std::uint32_t type;
        std::size_t value_bytes;
    } rows[] = {{2, 2}, {18, 2}, {3, 4}, {19, 4}, {11, 4}, {64, 8}, {5, 8}, {77, 8}};
    for (const auto& row : rows) {
        const Bytes buffer = Element(1, row.type, 0, 0x12345678, 0x9ABCDEF0);
        for (std::size_t bit = 0; bit < 8 * buffer.size(); ++bit) {
            const std::size_t byte = bit / 8;
            // Behind the identifier stands a length that means nothing.
            const bool counts = byte < 4 || (byte >= 6 && byte < 8 + row.value_bytes);
            // Another type may have a shorter value.
            const bool is_type = byte < 2;
            EXPECT_TRUE(is_type || counts == DifferAt(buffer, 1, bit)) << row.type << ", " << bit;
        }
    }
}

TEST(SamePropertiesTest, StringsAndBlobsCountByWhatTheyHoldWhereverItStands) {
    const Bytes a = Element(1, 31, 0, 32) + Element(2, 65, 0, 3, 38) + Terminated(u"ab") + "xyz";
    const Bytes b = Element(1, 31, 0, 35) + Element(2, 65, 0, 3, 32) + "xyz" + Terminated(u"ab");
    ASSERT_EQ(a.size(), b.size());
    EXPECT_TRUE(SameProperties(a.data(), b.data(), a.size(), 2));
    EXPECT_TRUE(DifferAt(a, 2, 8 * 32));
    EXPECT_TRUE(DifferAt(a, 2, 8 * 38));
}

TEST(SamePropertiesTest, WhatIsNotWholeIsNotTheSame) {
    const Bytes string = Element(1, 31, 0, 16) + "ab";
    EXPECT_FALSE(SameProperties(string.data(), string.data(), string.size(), 1));
    EXPECT_FALSE(SameProperties(string.data(), string.data(), string.size(), 2));
    const Bytes blob = Element(1, 65, 0, 3, 16) + "ab";
    EXPECT_FALSE(SameProperties(blob.data(), blob.data(), blob.size(), 1));
}

TEST(PropertyEncodingCorruptTest, ACountThatTheBufferDoesNotHoldFails) {
    auto buffer = Exactly(Element(1, 2, 0, 5));
    std::uint16_t checksum = 0;
    EXPECT_FALSE(ChecksumOfProperties(buffer.data(), buffer.size(), 2, checksum));
    EXPECT_FALSE(OffsetsToPointers(buffer.data(), buffer.size(), 2, kBase));
    EXPECT_FALSE(OffsetsToPointers(buffer.data(), buffer.size(), 0x10000001, kBase));
    EXPECT_FALSE(OffsetsToPointers(buffer.data(), 15, 1, kBase));
}

TEST(PropertyEncodingCorruptTest, AStringThatDoesNotEndInTheBufferFails) {
    auto buffer = Exactly(Element(1, 31, 0, 16) + Raw({'a', 0, 'b', 0, 0}));
    std::uint16_t checksum = 0;
    EXPECT_FALSE(ChecksumOfProperties(buffer.data(), buffer.size(), 1, checksum));
    EXPECT_FALSE(OffsetsToPointers(buffer.data(), buffer.size(), 1, kBase));
}

TEST(PropertyEncodingCorruptTest, AnOffsetOutsideTheBufferFails) {
    for (const std::uint32_t offset : {22u, 23u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        auto text = Exactly(Element(1, 31, 0, offset) + Raw({'a', 0, 0, 0, 1, 1}));
        auto blob = Exactly(Element(1, 65, 0, 1, offset) + Raw({1, 2, 3, 4, 5, 6}));
        std::uint16_t checksum = 0;
        EXPECT_FALSE(ChecksumOfProperties(text.data(), text.size(), 1, checksum)) << offset;
        EXPECT_FALSE(OffsetsToPointers(text.data(), text.size(), 1, kBase)) << offset;
        EXPECT_FALSE(ChecksumOfProperties(blob.data(), blob.size(), 1, checksum)) << offset;
        EXPECT_FALSE(OffsetsToPointers(blob.data(), blob.size(), 1, kBase)) << offset;
    }
}

// The second property's place would be written over the end of the first one's text.
TEST(PropertyEncodingCorruptTest, ATextOrABlobInTheArrayItselfFails) {
    for (const std::uint32_t offset : {0u, 8u, 24u, 30u, 31u}) {
        auto text =
            Exactly(Element(1, 31, 0, offset) + Element(2, 31, 0, 32) + Raw({'a', 0, 0, 0, 0, 0}));
        auto blob = Exactly(Element(1, 65, 0, 2, offset) + Element(2, 31, 0, 32) +
                            Raw({'a', 0, 0, 0, 0, 0}));
        EXPECT_FALSE(OffsetsToPointers(text.data(), text.size(), 2, kBase)) << offset;
        EXPECT_FALSE(OffsetsToPointers(blob.data(), blob.size(), 2, kBase)) << offset;
    }
}

TEST(PropertyEncodingCorruptTest, ABlobLongerThanTheBufferFails) {
    for (const std::uint32_t length : {3u, 0x80000000u, 0xFFFFFFFFu}) {
        auto buffer = Exactly(Element(1, 65, 0, length, 16) + Raw({1, 2}));
        std::uint16_t checksum = 0;
        EXPECT_FALSE(ChecksumOfProperties(buffer.data(), buffer.size(), 1, checksum)) << length;
        EXPECT_FALSE(OffsetsToPointers(buffer.data(), buffer.size(), 1, kBase)) << length;
    }
}

TEST(PropertyEncodingCorruptTest, APointerBeforeTheBufferFails) {
    auto buffer = Exactly(Element(1, 31, 0, kBase - 2) + Raw({'a', 0, 0, 0}));
    EXPECT_FALSE(PointersToOffsets(buffer.data(), buffer.size(), 1, kBase));
}

}  // namespace
}  // namespace tolvenar
