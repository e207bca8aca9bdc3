// Numbers as parts of a key: eight digits, so that keys sort as their numbers do.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace sim::files {

inline std::u16string KeyNumber(std::uint32_t number) {
    std::u16string text(8, u'0');
    for (std::size_t i = 8; i-- > 0; number >>= 4) {
        text[i] = u"0123456789abcdef"[number & 15];
    }
    return text;
}

inline std::uint32_t NumberOfKey(const std::u16string& digits) {
    std::uint32_t number = 0;
    for (const char16_t digit : digits) {
        number = number * 16 +
                 static_cast<std::uint32_t>(digit <= u'9' ? digit - u'0' : digit - u'a' + 10);
    }
    return number;
}

}  // namespace sim::files
