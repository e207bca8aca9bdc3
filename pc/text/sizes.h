// Numbers of bytes for people. Header only.
#pragma once

#include <cstdint>
#include <fmt/format.h>
#include <string>

namespace tolvenar::pc {

// "812 bytes", "33.2 kB", "8.0 MB".
inline std::string SizeText(std::uint64_t bytes) {
    constexpr double kStep = 1000;
    const auto number = static_cast<double>(bytes);
    if (number < kStep) {
        return bytes == 1 ? "1 byte" : fmt::format("{} bytes", bytes);
    }
    if (number < kStep * kStep) {
        return fmt::format("{:.1f} kB", number / kStep);
    }
    return fmt::format("{:.1f} MB", number / (kStep * kStep));
}

}  // namespace tolvenar::pc
