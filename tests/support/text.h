// Texts of one width as texts of the other. Header only and platform-free.
#pragma once

#include <string>

namespace tests {

// What is not ASCII stands as its number: "{228}".
template <typename Text>
std::string Narrow(const Text& text) {
    std::string narrow;
    for (const auto unit : text) {
        narrow += unit < 0x80 ? std::string(1, static_cast<char>(unit))
                              : "{" + std::to_string(static_cast<unsigned>(unit)) + "}";
    }
    return narrow;
}

inline std::wstring Wide(const std::u16string& text) { return {text.begin(), text.end()}; }

}  // namespace tests
