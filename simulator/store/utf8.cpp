#include "simulator/store/utf8.h"

#include <windows.h>

namespace sim {

std::string Utf8(std::wstring_view text) {
    const int units = static_cast<int>(text.size());
    const int bytes =
        ::WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(bytes), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text.data(), units, &utf8[0], bytes, nullptr, nullptr);
    return utf8;
}

std::string Utf8(std::u16string_view text) { return Utf8(std::wstring(text.begin(), text.end())); }

std::wstring Wide(std::string_view utf8) {
    const int bytes = static_cast<int>(utf8.size());
    const int units = ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, nullptr, 0);
    std::wstring text(static_cast<std::size_t>(units), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, &text[0], units);
    return text;
}

std::u16string Wide16(std::string_view utf8) {
    const std::wstring text = Wide(utf8);
    return std::u16string(text.begin(), text.end());
}

}  // namespace sim
