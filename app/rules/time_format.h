// The user's time format without its seconds. Platform-free.
#pragma once

#include <cstddef>

namespace tolvenar {

constexpr std::size_t kTimeFormatUnits = 80;

// Takes every "s" with the separator before it out of a pattern such as "h:mm:ss tt". Text between
// quotes stays.
void DropSeconds(char16_t (&pattern)[kTimeFormatUnits]);

}  // namespace tolvenar
