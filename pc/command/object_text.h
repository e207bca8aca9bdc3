// What an object holds as lines for people.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pc/storage/stored_object.h"

namespace tolvenar::pc {

// A value as the device's program shows it, a record with a line for each property, a file that is
// text. No lines for a file that is none, and for an object without data.
std::vector<std::string> LinesOf(const StoredObject& object, const std::vector<std::uint8_t>& data);

// Whether a file's contents are shown as lines.
bool IsText(const std::vector<std::uint8_t>& data);

}  // namespace tolvenar::pc
