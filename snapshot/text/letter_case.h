// Comparing names as the device does, which keeps the case of letters and does not look at it.
// Platform-free.
#pragma once

#include <string_view>

namespace tolvenar {

// The capital of a Latin, Greek or Cyrillic letter; every other unit as it is.
char16_t Capital(char16_t unit);

// True when the texts differ in the case of letters at most.
bool EqualIgnoringCase(std::u16string_view a, std::u16string_view b);

}  // namespace tolvenar
