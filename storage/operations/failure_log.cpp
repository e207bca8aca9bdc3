#include "storage/operations/failure_log.h"

#include "snapshot/text/log.h"
#include "storage/operations/object_line.h"

namespace tolvenar {
namespace {

struct ReasonRow {
    FailureReason reason;
    const char16_t* line;
};
constexpr ReasonRow kReasonRows[] = {
    {FailureReason::kInUse, u"Not restored, in use: "},
    {FailureReason::kProtected, u"Not restored, write-protected or in use: "},
    {FailureReason::kNoRoom, u"Not restored, no room: "},
    {FailureReason::kNoContainer, u"Not restored, no folder, key or database for it: "},
    {FailureReason::kNotEmpty, u"Not restored, something else is in it: "},
    {FailureReason::kIsThere, u"Not restored, is there already: "},
    {FailureReason::kDamaged, u"Not restored, damaged in the storage: "},
    {FailureReason::kSpared, u"Not restored, left alone for the damage: "},
    {FailureReason::kOnCard, u"Not restored, on a card now: "},
    {FailureReason::kNotStored, u"Not restored, in no state: "},
    {FailureReason::kNoOrders, u"Back without its sort orders: "},
};

const char16_t* LineOf(FailureReason reason) {
    for (const ReasonRow& row : kReasonRows) {
        if (row.reason == reason) {
            return row.line;
        }
    }
    return u"Not restored: ";
}

}  // namespace

void LogNotRestored(const OpenedStorage& storage, InfoSource& info) {
    for (const ObjectList::Node& node : *storage.difference) {
        const ObjectRecord& record = *node.record;
        LogObject(LineOf(storage.failures.Of(record)), record, info, u"DoRestore", kLogError);
    }
}

}  // namespace tolvenar
