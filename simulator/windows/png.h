// PNG files: plain 24-bit color.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace sim::windows {

// Pixels row by row from the top, three bytes (red, green, blue) each.
struct Picture {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint8_t> rgb;
};

// The bytes of a PNG file.
std::string EncodePng(const Picture& picture);

}  // namespace sim::windows
