// Bytes as lower-case hexadecimal text and back.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sim {

inline std::string ToHex(std::string_view bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const char byte : bytes) {
        text += kDigits[(byte >> 4) & 0xF];
        text += kDigits[byte & 0xF];
    }
    return text;
}

// Nothing when the text has an odd length or anything but digits.
inline std::optional<std::string> FromHex(std::string_view text) {
    if (text.size() % 2 != 0) {
        return std::nullopt;
    }
    std::string bytes;
    int value = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const char lower = static_cast<char>(c | 0x20);
        const bool is_decimal = c >= '0' && c <= '9';
        if (!is_decimal && (lower < 'a' || lower > 'f')) {
            return std::nullopt;
        }
        value = value * 16 + (is_decimal ? c - '0' : lower - 'a' + 10);
        if (i % 2 != 0) {
            bytes += static_cast<char>(value);
            value = 0;
        }
    }
    return bytes;
}

}  // namespace sim
