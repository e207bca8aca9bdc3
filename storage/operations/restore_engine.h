// Brings the device back to a stored state, or applies a list of differences between two states.
#pragma once

#include <cstdint>

#include "snapshot/engine/difference_engine.h"
#include "storage/opened/engine.h"
#include "storage/operations/restore_result.h"

namespace tolvenar {

// Steps of the popup's total bar: to compare, to restore, to save the journal and to load it.
constexpr int kRestoreSteps = kDeviceSteps + 3;

// Restores state `state_number` in full, after the pair of the storage's files was proved. True
// with kSuccess, kNoDifference (nothing was to be done), kFailed or kDriver (what could be restored
// is) when the journal is loaded again at the end; false otherwise. After kFailed the difference
// list holds what could not be restored or was held back, its sense reversed, and the log names it.
// Without `questions` nobody is asked.
bool DoRestore(Engine& engine, std::uint32_t state_number, RestoreQuestions* questions,
               RestoreResult& result);

// Restores the difference list of the open storage, its sense reversed first with `invert_first`.
// Databases are left alone unless the setting AdvancedDBRestoring is on. New object ids are not
// kept.
bool DoAdvancedRestore(Engine& engine, bool invert_first, RestoreQuestions* questions,
                       RestoreResult& result);

}  // namespace tolvenar
