// The contents of stored objects: proved before anything is handed out.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "pc/storage/stored_object.h"

namespace tolvenar::pc {

// True when the data have the checksum that the record keeps of them and can be handed out whole.
// Of a folder, a key, a database and a file of the ROM no checksum is kept.
bool DataAreSound(StoredPair& pair, const StoredObject& object);

// Calls `take` with the data piece by piece, in order, until it refuses. False when it did, or the
// data cannot be read: they were sound when they were proved, but the card may be gone.
using TakeData = std::function<bool(std::string_view bytes)>;
bool StreamData(StoredPair& pair, const StoredObject& object, const TakeData& take);

// All of it; a Failure when it cannot be read.
std::vector<std::uint8_t> ReadData(StoredPair& pair, const StoredObject& object);

}  // namespace tolvenar::pc
