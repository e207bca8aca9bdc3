#include "storage/operations/restore_preparation.h"

#include "snapshot/compare/kept_objects.h"
#include "snapshot/compare/prune.h"
#include "snapshot/engine/program_values.h"
#include "storage/operations/aimed_state.h"
#include "storage/operations/held_back.h"
#include "storage/operations/pair_proof.h"
#include "storage/operations/restore_paths.h"

namespace tolvenar {
namespace {

// Takes out what is never restored, but files. False when there is no memory.
bool TakeOutUnrestored(OpenedStorage& storage, Descriptions& descriptions) {
    ObjectList& difference = *storage.difference;
    TakeOutOwnValues(difference, kOwnValues, descriptions.source);
    PruneDifferences(difference, kRestorePruning, descriptions.source);
    if (!KeepStoredObjects(difference, descriptions.source)) {
        return false;
    }
    RemoveHandled(difference);
    return true;
}

// The state that a list of two states leads to, in `aimed`. False when there is no memory.
bool AimAtState(RestorePlan& plan, Descriptions& descriptions, std::unique_ptr<ObjectList>& aimed) {
    OpenedStorage& storage = plan.engine.storage;
    aimed = AimedState(storage, descriptions.source);
    plan.target = aimed.get();
    return aimed != nullptr &&
           WriteBackAimedVersions(*storage.difference, *aimed, descriptions.source);
}

}  // namespace

PlanOutcome PrepareRestore(RestorePlan& plan, RestoreRun& run) {
    OpenedStorage& storage = plan.engine.storage;
    Descriptions descriptions(plan.engine);
    if (!descriptions.sav_file || storage.journal == nullptr || storage.header == nullptr ||
        !TakeOutUnrestored(storage, descriptions)) {
        return PlanOutcome::kLeaveAll;
    }
    PairCheck check(*storage.journal, descriptions.stored);
    if (!CheckOpenPair(plan.engine, descriptions, check)) {
        return PlanOutcome::kLeaveAll;
    }
    descriptions.blocks.Prove(check, storage.names.sav);
    TakeOutOwnFiles(*storage.difference, storage.names, descriptions.source);
    std::unique_ptr<ObjectList> aimed;
    plan.target = storage.older.get();
    if ((!plan.tells_device && !AimAtState(plan, descriptions, aimed)) ||
        !ProtectMatchedRecords(storage.newer.get(), run.written)) {
        return PlanOutcome::kLeaveAll;
    }
    const PlanOutcome outcome = PlanRestore(plan, descriptions, check, run);
    plan.target = nullptr;
    return outcome;
}

}  // namespace tolvenar
