// What an object is called: its type, its name and, in the registry, its hive. The case of letters
// does not count. Platform-free.
#pragma once

#include <cstdint>

#include "storage/format/info_block.h"

namespace tolvenar {

// Equal for two descriptions of one object.
std::uint32_t HashOfObject(const InfoBlock& block);

// True when both descriptions are of one type, hive and name. The records of one database share
// its name.
bool IsOneObject(const InfoBlock& a, const InfoBlock& b);

}  // namespace tolvenar
