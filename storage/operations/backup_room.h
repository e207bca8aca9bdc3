// The room that a backup asks for: whether the card has it, and whether it would have it without
// the old storage.
#pragma once

#include <cstdint>

#include "storage/opened/engine.h"
#include "storage/operations/backup_result.h"

namespace tolvenar {

// Bytes that the object will take in the storage file; 0 when it needs none or cannot be described.
std::uint32_t EstimateBlockSize(Engine& engine, const ObjectRecord& record);

// Bytes that blocks and records of the whole list will take.
std::uint64_t EstimateList(Engine& engine, const ObjectList& list);

// Holds what the card has free against journal, `estimate` and a reserve: kSuccess, kNoSpace, or
// kFailed when it cannot be told. Enters the figures in `result`.
ResultCode CheckRoom(Engine& engine, std::uint64_t estimate, BackupResult& result);

// True when a backup that found no room would find it with the storage's two files deleted, and
// both can be. `result` is that backup's.
bool DeletionMakesRoom(const StorageNames& names, const BackupResult& result);

}  // namespace tolvenar
