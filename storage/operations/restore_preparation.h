// What stands between a difference list and its restore: what is never restored goes, and what may
// be restored is decided.
#pragma once

#include "storage/operations/restore_plan.h"

namespace tolvenar {

// Works on the difference list of the open storage, after its pair of files was proved. Nothing on
// the device or in the storage is changed; new ids of what is settled go into the journal of `run`.
// `plan.target` is found out here. Without the storage file nothing may be done.
PlanOutcome PrepareRestore(RestorePlan& plan, RestoreRun& run);

}  // namespace tolvenar
