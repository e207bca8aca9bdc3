// How much room there is where the storage lies.
#pragma once

#include <cstdint>

#include "storage/format/storage_names.h"

namespace tolvenar {

// Bytes that the caller may still write in the storage's folder. False when it cannot be told.
bool FreeBytesOfCard(const StorageNames& names, std::uint64_t& free_bytes);

}  // namespace tolvenar
