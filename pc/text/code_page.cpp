#include "pc/text/code_page.h"

#include <algorithm>
#include <optional>

namespace tolvenar::pc {
namespace {

constexpr unsigned char kFirstOwn = 0x80;
// Of the bytes 0x80 to 0x9F; 0 where the code page defines none. All others are their own units.
constexpr char16_t kOwn[] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                             0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                             0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                             0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

std::optional<char> ByteOf(char16_t unit) {
    if (unit < kFirstOwn || (unit >= 0xA0 && unit <= 0xFF)) {
        return static_cast<char>(unit);
    }
    const auto own = std::find(std::begin(kOwn), std::end(kOwn), unit);
    if (own == std::end(kOwn)) {
        return std::nullopt;
    }
    return static_cast<char>(kFirstOwn + (own - std::begin(kOwn)));
}

}  // namespace

bool FitsCodePage(std::u16string_view units) {
    return std::all_of(units.begin(), units.end(),
                       [](char16_t unit) { return ByteOf(unit).has_value(); });
}

std::string ToCodePage(std::u16string_view units) {
    std::string bytes;
    bytes.reserve(units.size());
    for (const char16_t unit : units) {
        bytes += ByteOf(unit).value_or('?');
    }
    return bytes;
}

}  // namespace tolvenar::pc
