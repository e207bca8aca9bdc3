// Decides, before a restore takes anything from the device, what of its list it may do.
#pragma once

#include "snapshot/compare/pair_check.h"
#include "snapshot/engine/descriptions.h"
#include "storage/operations/restore_list.h"
#include "storage/operations/restore_result.h"

namespace tolvenar {

enum class PlanOutcome {
    kGo,             // the list holds what may be done; what may not is held back
    kLeaveAll,       // nothing may be done: no, no room or no memory
    kTakeOlderList,  // the user wants the list of states that was moved aside
};

struct RestorePlan {
    Engine& engine;
    RestoreQuestions* questions;  // null when nobody is there to be asked
    const ObjectList* target;     // the state that the list leads to; null is none
    bool tells_device;            // the list tells what the device has
    // Results.
    bool is_damaged = false;     // something was held back for damage
    bool trusts_list = true;     // the list of states may be saved again
    bool lacks_objects = false;  // the state may have had what no list tells of
    bool leaves_unread = false;  // of the databases something could not be read
    bool has_settled = false;
    std::uint64_t written_bytes = 0;  // of what is written back, when that is decided
    std::uint64_t missing_bytes = 0;  // for want of which nothing may be done
};

// Works on the difference list of the open storage, which is proved before with `check`.
PlanOutcome PlanRestore(RestorePlan& plan, Descriptions& descriptions, const PairCheck& check,
                        RestoreRun& run);

}  // namespace tolvenar
