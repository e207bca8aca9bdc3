// A storage's UTF-16 as this machine's UTF-8 and back, and the two forms in which a name is told.
#pragma once

#include <string>
#include <string_view>

namespace tolvenar::pc {

// False when a surrogate stands alone: such units are no text.
bool IsWellFormed(std::u16string_view units);
// A surrogate that stands alone becomes U+FFFD.
std::string ToUtf8(std::u16string_view units);
// What is no UTF-8 becomes U+FFFD.
std::u16string ToUtf16(std::string_view bytes);

// Four hexadecimal digits for each unit: exact whatever the units are.
std::string ExactUnits(std::u16string_view units);
// One line for people: what would move a terminal's cursor, colour it, or turn the direction of
// reading stands as its number, "<U+001B>".
std::string Printable(std::u16string_view units);

}  // namespace tolvenar::pc
