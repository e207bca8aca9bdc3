// What the operation thread does for a request of the dialog, from the busy flag to the last
// message.
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

// Each takes the request that the message stands for; while an operation runs it does nothing.
void RunInteractiveBackup(Application& app);
// `button`: the one that asked, IDC_RESTORE for the selected state, IDC_APPLY_CHANGES or
// IDC_TAKE_BACK_CHANGES for the difference list.
void RunInteractiveRestore(Application& app, int button);
// Finds out what a restore of the selected state would change. The schedule is left alone: nothing
// is written.
void PreviewRestore(Application& app);

}  // namespace tolvenar
