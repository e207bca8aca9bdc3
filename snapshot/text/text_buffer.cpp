#include "snapshot/text/text_buffer.h"

namespace tolvenar {

void TextBuilder::Clear() {
    length_ = 0;
    cut_ = false;
    buffer_[0] = 0;
}

TextBuilder& TextBuilder::Append(const char16_t* text) {
    if (text == nullptr) {
        return *this;
    }
    while (*text != 0) {
        AppendUnit(*text++);
    }
    return *this;
}

TextBuilder& TextBuilder::Append(const char16_t* text, std::size_t units) {
    for (std::size_t i = 0; i < units; ++i) {
        AppendUnit(text[i]);
    }
    return *this;
}

TextBuilder& TextBuilder::AppendUnit(char16_t unit) {
    if (length_ + 1 >= units_) {
        cut_ = true;
        return *this;
    }
    buffer_[length_++] = unit;
    buffer_[length_] = 0;
    return *this;
}

TextBuilder& TextBuilder::AppendNumber(std::int32_t number) {
    const auto bits = static_cast<std::uint32_t>(number);
    if (number < 0) {
        AppendUnit(u'-');
    }
    return AppendDigits(number < 0 ? 0u - bits : bits, 10, 1);
}

TextBuilder& TextBuilder::AppendHex(std::uint32_t number, std::size_t digits) {
    return AppendDigits(number, 16, digits);
}

TextBuilder& TextBuilder::AppendDigits(std::uint32_t number, std::uint32_t base,
                                       std::size_t digits) {
    char16_t reversed[10];  // a 32-bit number has at most 10 digits
    std::size_t count = 0;
    for (; number != 0; number /= base) {
        reversed[count++] = u"0123456789abcdef"[number % base];
    }
    for (std::size_t i = count; i < digits; ++i) {
        AppendUnit(u'0');
    }
    while (count != 0) {
        AppendUnit(reversed[--count]);
    }
    return *this;
}

}  // namespace tolvenar
