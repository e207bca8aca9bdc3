// Writes a new state: finds what changed, appends it to the storage file, enters it in the journal.
#pragma once

#include <cstddef>
#include <cstdint>

#include "snapshot/engine/difference_engine.h"
#include "storage/format/storage_appender.h"
#include "storage/opened/engine.h"
#include "storage/operations/backup_result.h"

namespace tolvenar {

// Steps of the popup's total bar: to compare, to write, to save the journal and to load it.
constexpr int kBackupSteps = kDeviceSteps + 3;

// Makes state `state_number`. On success the code is kSuccess or kNoDifference. The journal in
// memory is written and loaded again, or left closed when `keep_journal_closed`.
bool DoBackup(Engine& engine, std::uint32_t state_number, const char16_t* description,
              bool keep_journal_closed, BackupResult& result);

// Appends every record of `list`, none in a folder, key or database that could not be written. A
// record that cannot be written is marked JF_FAILED, logged and counted. 1, or 0 as soon as the
// state's own record is one of them: nothing would find the others.
int BackupItems(Engine& engine, StorageAppender& storage, ObjectList& list,
                std::size_t& failed_count);

// Writes one object and enters its offsets and checksums in `record`; a record without JF_ADD needs
// nothing. On failure the writing end is back where it was, so that the next block overwrites what
// was written.
bool BackupItem(Engine& engine, StorageAppender& storage, ObjectRecord& record);

}  // namespace tolvenar
