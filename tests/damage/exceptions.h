// Damage that no checksum of the format shows. What a restore makes of it is counted apart.
#pragma once

#include "tests/damage/damage_kinds.h"

namespace tolvenar {

// Null when something is damaged that the format can tell. A deletion in the journal points at no
// block of its own, so nothing tells that it is missing.
const char* ExceptionOf(const Damaged& damaged);

// What the first damaged place is in the sound pair; "" when nothing can be said.
std::string DescribePlace(const Damaged& damaged);

}  // namespace tolvenar
