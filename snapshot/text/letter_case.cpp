#include "snapshot/text/letter_case.h"

#include <cstddef>

namespace tolvenar {
namespace {

// Small letters `first` to `last`, every `step`th unit of them, with the way back to the capital.
struct SmallLetters {
    char16_t first;
    char16_t last;
    char16_t step;
    char16_t way_back;
};
constexpr SmallLetters kSmallLetters[] = {
    {u'a', u'z', 1, 0x20},     {0x00E0, 0x00F6, 1, 0x20}, {0x00F8, 0x00FE, 1, 0x20},
    {0x0101, 0x012F, 2, 1},    {0x0133, 0x0137, 2, 1},    {0x013A, 0x0148, 2, 1},
    {0x014B, 0x0177, 2, 1},    {0x017A, 0x017E, 2, 1},    {0x03AC, 0x03AC, 1, 0x26},
    {0x03AD, 0x03AF, 1, 0x25}, {0x03B1, 0x03C1, 1, 0x20}, {0x03C3, 0x03CB, 1, 0x20},
    {0x03CC, 0x03CC, 1, 0x40}, {0x03CD, 0x03CE, 1, 0x3F}, {0x0430, 0x044F, 1, 0x20},
    {0x0450, 0x045F, 1, 0x50}, {0x0461, 0x0481, 2, 1},    {0x048B, 0x04BF, 2, 1},
};

}  // namespace

char16_t Capital(char16_t unit) {
    for (const SmallLetters& row : kSmallLetters) {
        if (unit < row.first) {
            return unit;
        }
        if (unit <= row.last) {
            return (unit - row.first) % row.step == 0 ? static_cast<char16_t>(unit - row.way_back)
                                                      : unit;
        }
    }
    return unit;
}

bool EqualIgnoringCase(std::u16string_view a, std::u16string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i] != b[i] && Capital(a[i]) != Capital(b[i])) {
            return false;
        }
    }
    return true;
}

}  // namespace tolvenar
