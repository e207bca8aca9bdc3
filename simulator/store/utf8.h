// Texts of the device and the host between UTF-16, as wide or stored text, and UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace sim {

std::string Utf8(std::wstring_view text);
std::string Utf8(std::u16string_view text);
std::wstring Wide(std::string_view utf8);
std::u16string Wide16(std::string_view utf8);

}  // namespace sim
