// A picture of the manual: a Windows bitmap of two bits a pixel (".2bp"), the format that the
// platform's help viewer takes. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace help {

constexpr int kMostPictureSide = 1000;  // pixels

// Decoded for a screen: 32 bits a pixel (blue, green, red, 0), rows from the bottom up as they are
// stored.
struct Picture {
    int width = 0;
    int height = 0;
    std::unique_ptr<std::uint32_t[]> pixels;  // null: none
};

// Decodes a file. Nothing when it is no such bitmap, larger than kMostPictureSide, cut short, or
// there is no memory.
inline Picture DecodePicture(const std::uint8_t* bytes, std::size_t size) {
    constexpr std::size_t kHeadBytes = 14 + 40;
    constexpr std::size_t kColours = 4;
    const auto word = [bytes](std::size_t at) {
        return static_cast<std::uint32_t>(bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16) |
               static_cast<std::uint32_t>(bytes[at + 3]) << 24;
    };
    if (size < kHeadBytes + kColours * 4 || bytes[0] != 'B' || bytes[1] != 'M' || word(14) != 40 ||
        bytes[28] != 2 || bytes[29] != 0 || word(30) != 0) {
        return {};
    }
    const std::uint32_t start = word(10);
    const std::uint32_t width = word(18);
    const std::uint32_t height = word(22);
    if (width - 1 >= kMostPictureSide || height - 1 >= kMostPictureSide) {
        return {};
    }
    const std::size_t row_bytes = (width * 2 + 31) / 32 * 4;
    if (start > size || size - start < row_bytes * height) {
        return {};
    }
    Picture picture{static_cast<int>(width), static_cast<int>(height), nullptr};
    picture.pixels.reset(new (std::nothrow) std::uint32_t[std::size_t{width} * height]);
    for (std::size_t y = 0; y < height && picture.pixels; ++y) {
        const std::uint8_t* const row = bytes + start + y * row_bytes;
        for (std::size_t x = 0; x < width; ++x) {
            const std::size_t colour = (row[x / 4] >> (6 - x % 4 * 2)) & 3;
            picture.pixels[y * width + x] = word(kHeadBytes + colour * 4) & 0x00FFFFFF;
        }
    }
    return picture;
}

}  // namespace help
