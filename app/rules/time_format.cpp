#include "app/rules/time_format.h"

namespace tolvenar {
namespace {

bool IsLetter(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

bool IsSeparator(char16_t unit) { return !IsLetter(unit) && unit != u' ' && unit != u'\''; }

std::size_t WithoutSeparators(const char16_t* text, std::size_t length) {
    while (length > 0 && IsSeparator(text[length - 1])) {
        --length;
    }
    return length;
}

}  // namespace

void DropSeconds(char16_t (&pattern)[kTimeFormatUnits]) {
    std::size_t kept = 0;
    bool is_quoted = false;
    for (std::size_t i = 0; i < kTimeFormatUnits && pattern[i] != 0; ++i) {
        const char16_t unit = pattern[i];
        is_quoted = is_quoted != (unit == u'\'');
        if (unit == u's' && !is_quoted) {
            kept = WithoutSeparators(pattern, kept);
        } else {
            pattern[kept++] = unit;
        }
    }
    if (kept < kTimeFormatUnits) {
        pattern[kept] = 0;
    }
}

}  // namespace tolvenar
