// Bytes in hexadecimal. Header only.
#pragma once

#include <string>
#include <string_view>

namespace tolvenar::pc {

inline std::string HexOf(std::string_view bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string digits;
    digits.reserve(2 * bytes.size());
    for (const char byte : bytes) {
        digits += kDigits[static_cast<unsigned char>(byte) >> 4];
        digits += kDigits[byte & 15];
    }
    return digits;
}

}  // namespace tolvenar::pc
