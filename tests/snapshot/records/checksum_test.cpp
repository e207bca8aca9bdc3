#include "snapshot/records/checksum.h"

#include <gtest/gtest.h>

#include "tests/support/bytes.h"

namespace tolvenar {
namespace {

// One bit at a time, straight from the polynomial.
std::uint16_t BitByBit(const char* bytes, std::size_t size, std::uint16_t seed) {
    unsigned crc = seed;
    for (std::size_t i = 0; i < size; ++i) {
        crc ^= static_cast<unsigned char>(bytes[i]);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1) ? (crc >> 1) ^ 0x8408 : crc >> 1;
        }
    }
    return static_cast<std::uint16_t>(crc);
}

TEST(ChecksumTest, TheNineDigitsGiveTheCatalogueValue) {
    EXPECT_EQ(0x6F91, Checksum16("123456789", 9));
}

TEST(ChecksumTest, NoBytesGiveTheSeedBack) {
    EXPECT_EQ(0xFFFF, Checksum16("", 0));
    EXPECT_EQ(0xFFFF, Checksum16(nullptr, 0));
    EXPECT_EQ(0x1234, Checksum16(nullptr, 0, 0x1234));
}

TEST(ChecksumTest, EveryLengthAndAlignmentEqualsTheBitwiseResult) {
    const auto bytes = RandomBytes(200, 1);
    for (std::size_t start = 0; start < 17; ++start) {
        for (std::size_t size = 0; start + size < bytes.size(); ++size) {
            const auto seed = static_cast<std::uint16_t>(size * 2749 + start);
            ASSERT_EQ(BitByBit(&bytes[start], size, seed), Checksum16(&bytes[start], size, seed))
                << start << " " << size;
        }
    }
}

TEST(ChecksumTest, LongBuffersEqualTheBitwiseResult) {
    const auto bytes = RandomBytes(1200, 4);
    for (std::size_t size = 0; size < 1190; ++size) {
        const auto seed = static_cast<std::uint16_t>(size * 40503);
        ASSERT_EQ(BitByBit(&bytes[size % 7], size, seed), Checksum16(&bytes[size % 7], size, seed))
            << size;
    }
}

TEST(ChecksumTest, EverySeedEqualsTheBitwiseResult) {
    const auto bytes = RandomBytes(37, 2);
    for (unsigned seed = 0; seed <= 0xFFFF; ++seed) {
        const auto seed16 = static_cast<std::uint16_t>(seed);
        ASSERT_EQ(BitByBit(bytes.data(), bytes.size(), seed16),
                  Checksum16(bytes.data(), bytes.size(), seed16));
    }
}

TEST(ChecksumTest, EveryByteInEveryPlaceOfASliceCounts) {
    for (std::size_t place = 0; place < 33; ++place) {
        for (unsigned value = 0; value < 256; ++value) {
            char bytes[33] = {};
            bytes[place] = static_cast<char>(value);
            ASSERT_EQ(BitByBit(bytes, 33, 0xFFFF), Checksum16(bytes, 33)) << place << " " << value;
        }
    }
}

TEST(ChecksumTest, ContinuesOverSeveralBuffers) {
    const auto bytes = RandomBytes(100, 3);
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        const std::uint16_t first = Checksum16(bytes.data(), cut);
        ASSERT_EQ(Checksum16(bytes.data(), 100), Checksum16(bytes.data() + cut, 100 - cut, first));
    }
}

}  // namespace
}  // namespace tolvenar
