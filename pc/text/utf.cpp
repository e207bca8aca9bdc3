#include "pc/text/utf.h"

#include <fmt/format.h>
#include <iterator>

namespace tolvenar::pc {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

constexpr bool IsHigh(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool IsLow(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

// The character at `place`, which moves behind it; a lone surrogate is its own number.
char32_t NextCharacter(std::u16string_view units, std::size_t& place) {
    const char16_t unit = units[place++];
    if (!IsHigh(unit) || place == units.size() || !IsLow(units[place])) {
        return unit;
    }
    const char16_t low = units[place++];
    return 0x10000u + ((unit - 0xD800u) << 10) + (low - 0xDC00u);
}

constexpr bool IsSurrogate(char32_t character) { return character >= 0xD800 && character < 0xE000; }

void AppendUtf8(std::string& text, char32_t character) {
    const auto byte = [&text](char32_t value) { text += static_cast<char>(value); };
    if (character < 0x80) {
        byte(character);
    } else if (character < 0x800) {
        byte(0xC0 | character >> 6);
        byte(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        byte(0xE0 | character >> 12);
        byte(0x80 | (character >> 6 & 0x3F));
        byte(0x80 | (character & 0x3F));
    } else {
        byte(0xF0 | character >> 18);
        byte(0x80 | (character >> 12 & 0x3F));
        byte(0x80 | (character >> 6 & 0x3F));
        byte(0x80 | (character & 0x3F));
    }
}

void AppendUtf16(std::u16string& text, char32_t character) {
    if (character < 0x10000) {
        text += static_cast<char16_t>(character);
        return;
    }
    text += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
    text += static_cast<char16_t>(0xDC00 + (character & 0x3FF));
}

// The number of bytes of the character that begins with `first`; 0 when none does.
std::size_t LengthOf(unsigned char first) {
    return first < 0x80                     ? 1
           : first >= 0xC2 && first < 0xE0  ? 2
           : first >= 0xE0 && first < 0xF0  ? 3
           : first >= 0xF0 && first <= 0xF4 ? 4
                                            : 0;
}

// The character at `place`, which moves behind it, or behind one byte of what is none.
char32_t NextCharacter(std::string_view bytes, std::size_t& place) {
    constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<unsigned char>(bytes[place++]);
    const std::size_t length = LengthOf(first);
    if (length < 2) {
        return length == 1 ? first : kReplacement;
    }
    char32_t character = first & (0xFFu >> (length + 1));
    for (std::size_t i = 0; i + 1 < length; ++i) {
        if (place + i >= bytes.size() || (bytes[place + i] & 0xC0) != 0x80) {
            return kReplacement;
        }
        character = character << 6 | (static_cast<unsigned char>(bytes[place + i]) & 0x3F);
    }
    if (character < kLeast[length] || character > 0x10FFFF || IsSurrogate(character)) {
        return kReplacement;
    }
    place += length - 1;
    return character;
}

// Controls, and marks that reorder or end a line.
bool MovesTheLine(char32_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x061C ||
           (character >= 0x200B && character <= 0x200F) ||
           (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2060 && character <= 0x206F) || character == 0xFEFF;
}

}  // namespace

bool IsWellFormed(std::u16string_view units) {
    for (std::size_t place = 0; place < units.size();) {
        if (IsSurrogate(NextCharacter(units, place))) {
            return false;
        }
    }
    return true;
}

std::string ToUtf8(std::u16string_view units) {
    std::string text;
    text.reserve(units.size());
    for (std::size_t place = 0; place < units.size();) {
        const char32_t character = NextCharacter(units, place);
        AppendUtf8(text, IsSurrogate(character) ? kReplacement : character);
    }
    return text;
}

std::u16string ToUtf16(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size());
    for (std::size_t place = 0; place < bytes.size();) {
        AppendUtf16(text, NextCharacter(bytes, place));
    }
    return text;
}

std::string ExactUnits(std::u16string_view units) {
    std::string digits;
    for (const char16_t unit : units) {
        fmt::format_to(std::back_inserter(digits), "{:04x}", static_cast<unsigned>(unit));
    }
    return digits;
}

std::string Printable(std::u16string_view units) {
    std::string text;
    text.reserve(units.size());
    for (std::size_t place = 0; place < units.size();) {
        const char32_t character = NextCharacter(units, place);
        if (MovesTheLine(character) || IsSurrogate(character)) {
            fmt::format_to(std::back_inserter(text), "<U+{:04X}>",
                           static_cast<unsigned>(character));
        } else {
            AppendUtf8(text, character);
        }
    }
    return text;
}

}  // namespace tolvenar::pc
