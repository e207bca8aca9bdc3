// Code page 1252, in which older programs write text files.
#pragma once

#include <string>
#include <string_view>

namespace tolvenar::pc {

// False when some unit has no byte there.
bool FitsCodePage(std::u16string_view units);
// What has no byte becomes "?".
std::string ToCodePage(std::u16string_view units);

}  // namespace tolvenar::pc
