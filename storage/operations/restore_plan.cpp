#include "storage/operations/restore_plan.h"

#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"
#include "storage/operations/damage_guard.h"
#include "storage/operations/device_room.h"
#include "storage/operations/held_back.h"
#include "storage/operations/key_guard.h"
#include "storage/operations/pair_proof.h"
#include "storage/operations/restore_paths.h"
#include "storage/operations/settling.h"
#include "storage/operations/unread_databases.h"

namespace tolvenar {
namespace {

constexpr char16_t kModule[] = u"DoRestore";

void LogNumber(const char16_t* before, std::uint64_t number, const char16_t* behind) {
    TextBuffer<128> text;
    text.Append(before);
    text.AppendUnsigned(number > 0xFFFFFFFF ? 0xFFFFFFFF : static_cast<std::uint32_t>(number));
    LogMessage(text.Append(behind).text(), kModule, kLogError);
}

bool MayTakeOlderList(RestorePlan& plan, Descriptions& descriptions) {
    OlderList older{};
    return plan.questions != nullptr && FindOlderList(plan.engine, descriptions, older) &&
           plan.questions->MayTakeOlderList(older.states);
}

// What is left to do when the list, or the name of something to be written, cannot be trusted.
PlanOutcome PlanWithoutTrust(RestorePlan& plan, Descriptions& descriptions,
                             const DamageCount& damage, DamageGuard& guard, RestoreRun& run) {
    plan.is_damaged = true;
    if (damage.in_list != 0 && MayTakeOlderList(plan, descriptions)) {
        return PlanOutcome::kTakeOlderList;
    }
    if (plan.questions != nullptr && !plan.questions->MayWriteBackMissing(damage)) {
        return PlanOutcome::kLeaveAll;
    }
    guard.KeepToMissing(run.written);
    LogNumber(u"The storage is damaged: nothing is deleted or overwritten, ",
              CountPending(*plan.engine.storage.difference), u" objects are missing");
    return PlanOutcome::kGo;
}

PlanOutcome PlanForRoom(RestorePlan& plan, Descriptions& descriptions, const RestoreRun& run) {
    RoomNeed need;
    if (!FindRoomNeed(*plan.engine.storage.difference, run.database_restore, descriptions.source,
                      need)) {
        return PlanOutcome::kLeaveAll;
    }
    plan.written_bytes = need.written;
    if (need.missing == 0) {
        return PlanOutcome::kGo;
    }
    LogNumber(u"The device lacks ", need.missing, u" bytes for what is to be written back");
    const bool goes_on =
        plan.questions != nullptr && plan.questions->MayGoOnWithoutRoom(need.missing);
    if (goes_on) {
        return PlanOutcome::kGo;
    }
    plan.missing_bytes = need.missing;
    return PlanOutcome::kLeaveAll;
}

}  // namespace

PlanOutcome PlanRestore(RestorePlan& plan, Descriptions& descriptions, const PairCheck& check,
                        RestoreRun& run) {
    ObjectList& difference = *plan.engine.storage.difference;
    DamageGuard guard(plan.engine, descriptions, check, run.database_restore);
    if ((plan.target != nullptr && !guard.DropOlderDoubles(*plan.target)) ||
        (plan.tells_device && (!Settle(plan.engine, descriptions, run, plan.has_settled) ||
                               !HoldBackUnread(plan, descriptions)))) {
        return PlanOutcome::kLeaveAll;
    }
    const DamageCount damage = guard.CountUntrusted();
    if (damage.in_list + damage.objects != 0) {
        plan.trusts_list = damage.in_list == 0;
        if (CountPending(difference) == 0) {
            return PlanOutcome::kGo;
        }
        const PlanOutcome outcome = PlanWithoutTrust(plan, descriptions, damage, guard, run);
        if (outcome != PlanOutcome::kGo) {
            return outcome;
        }
    }
    if (!guard.HoldBackDamaged()) {
        return PlanOutcome::kLeaveAll;
    }
    plan.lacks_objects =
        plan.tells_device && guard.MayLackObjects(*plan.target, plan.engine.storage.aimed_state);
    plan.is_damaged |= guard.found_damage() || plan.lacks_objects;
    HoldBackOnCards(difference, plan.engine.storage.failures, descriptions.source);
    if (!KeepKeys(difference, plan.target, !plan.tells_device, descriptions.source)) {
        return PlanOutcome::kLeaveAll;
    }
    return PlanForRoom(plan, descriptions, run);
}

}  // namespace tolvenar
