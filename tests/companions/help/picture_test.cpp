// Pictures of the manual. Every byte is written out.
#include "companions/help/picture.h"

#include <gtest/gtest.h>
#include <vector>

namespace help {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Five pixels by two: the lower row 0 1 2 3 0, the upper one 3 3 3 3 1.
Bytes FiveByTwo() {
    return {
        'B',  'M',  78, 0, 0, 0, 0, 0,  0,  0,  70, 0,   0,   0,          // file: pixels at 70
        40,   0,    0,  0, 5, 0, 0, 0,  2,  0,  0,  0,   1,   0,   2, 0,  // 5 x 2, 2 bits
        0,    0,    0,  0, 8, 0, 0, 0,  0,  0,  0,  0,   0,   0,   0, 0,   4,   0,   0, 0, 0,
        0,    0,    0,  0, 0, 0, 0, 85, 85, 85, 0,  170, 170, 170, 0, 255, 255, 254, 0,  // colours
        0x1B, 0x00, 0,  0,  // row below
        0xFF, 0x40, 0,  0,  // row above
    };
}
Picture Decode(const Bytes& bytes) { return DecodePicture(bytes.data(), bytes.size()); }
bool IsDecoded(const Bytes& bytes) { return Decode(bytes).pixels != nullptr; }

TEST(PictureTest, TwoBitsSayTheColourOfEachPixel) {
    const Picture picture = Decode(FiveByTwo());
    EXPECT_EQ(5, picture.width);
    EXPECT_EQ(2, picture.height);
    ASSERT_NE(nullptr, picture.pixels);
    const std::vector<std::uint32_t> pixels(picture.pixels.get(), picture.pixels.get() + 10);
    EXPECT_EQ((std::vector<std::uint32_t>{0, 0x555555, 0xAAAAAA, 0xFEFFFF, 0, 0xFEFFFF, 0xFEFFFF,
                                          0xFEFFFF, 0xFEFFFF, 0x555555}),
              pixels);
}

TEST(PictureTest, WhatIsCutShortIsNoPicture) {
    Bytes bytes = FiveByTwo();
    while (!bytes.empty()) {
        bytes.pop_back();
        EXPECT_FALSE(IsDecoded(bytes)) << bytes.size();
    }
}

TEST(PictureTest, OtherFormatsAndSizesAreNoPicture) {
    const struct {
        std::size_t place;
        std::uint8_t byte;
    } kOthers[] = {
        {0, 'X'}, {14, 12}, {18, 0}, {20, 1}, {22, 0}, {25, 0xFF}, {28, 4}, {30, 1}, {13, 0xFF},
    };
    for (const auto& other : kOthers) {
        Bytes bytes = FiveByTwo();
        bytes[other.place] = other.byte;
        EXPECT_FALSE(IsDecoded(bytes)) << other.place;
    }
    EXPECT_TRUE(IsDecoded(FiveByTwo()));
}

}  // namespace
}  // namespace help
