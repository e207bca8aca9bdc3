// Where the storage lies: on a card or in the device's own memory, and how much room there is.
#pragma once

#include <cstdint>

#include "storage/format/storage_names.h"

namespace tolvenar {

// Bytes that the caller may still write in the storage's folder. False when it cannot be told.
bool FreeBytesOfCard(const StorageNames& names, std::uint64_t& free_bytes);

// True when a folder above `path` is a mounted card's.
bool IsOnMountedCard(const char16_t* path);

}  // namespace tolvenar
