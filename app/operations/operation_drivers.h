// Runs one backup or restore from its checks to its message: what the unattended launches and the
// operation window share.
#pragma once

#include "app/operations/application.h"
#include "app/operations/backup_history.h"
#include "storage/operations/restore_result.h"

namespace tolvenar {

constexpr wchar_t kRestoreTitle[] = L"Restoring in progress";

// Loads the journal. False when it cannot be loaded. A storage file whose states are missing is
// told of: by a message with the popup, in the log under the hourglass.
bool LoadUnderPopup(Application& app);
bool LoadUnderHourglass(Application& app);

// Makes state `state_number` with `description` and tells the user of the result, or nobody when
// `automatic`. A full card gives up the old storage where the settings and the user allow it. What
// could not be saved is remembered, and `end` tells of which state it was. True when a state was
// written.
bool BackupDriver(Application& app, std::uint32_t state_number, const wchar_t* description,
                  bool automatic, OperationEnd& end);

// The road that an interactive and an unattended restore share: memory check, schedule off,
// restore, schedule on. Shows nothing but what `questions` asks; null asks nothing.
RestoreResult RunStateRestore(Application& app, std::uint32_t state_number,
                              RestoreQuestions* questions);

// Steps of the popup's total bar: to compare and to build the tree.
constexpr int kPreviewSteps = 9;
// Finds out what a restore of the state would change; it is in the application's preview then.
// kSuccess, kJournalUnreadable, kNoMemory or, when the two could not be compared,
// kNoDifferenceList. Shows nothing.
ResultCode RunRestorePreview(Application& app, std::uint32_t state_number);

// Restores the difference list that the page prepared or a restore left over, its sense reversed
// first with `invert_first`. Memory and schedule are left alone (docs/oddities.md, 24). Shows what
// `questions` asks.
RestoreResult RunDifferenceRestore(Application& app, bool invert_first,
                                   RestoreQuestions* questions);

// Restores a state, tells the user of the result and puts it into `end`. True when the device is as
// the state has it.
bool RestoreDriver(Application& app, std::uint32_t state_number, OperationEnd& end);

}  // namespace tolvenar
