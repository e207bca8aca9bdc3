#include "storage/operations/held_back.h"

namespace tolvenar {

void HoldBack(ObjectRecord& record, FailureReason reason, FailureTable& failures) {
    record.flags |= kHeldBack;
    failures.Set(record, reason);
}

void SetReasons(const ObjectList& list, FailureReason reason, FailureTable& failures) {
    for (const ObjectList::Node& node : list) {
        failures.Set(*node.record, reason);
    }
}

std::size_t CountPending(const ObjectList& list) {
    std::size_t count = 0;
    for (const ObjectList::Node& node : list) {
        const bool is_open = (node.record->flags & (JF_ADD | JF_DELETE)) != 0;
        count += is_open && !IsHeldBack(*node.record) ? 1 : 0;
    }
    return count;
}

bool HoldsHeldBack(const ObjectList& list) {
    for (const ObjectList::Node& node : list) {
        if (IsHeldBack(*node.record)) {
            return true;
        }
    }
    return false;
}

void ReleaseHeldBack(ObjectList& list) {
    for (ObjectList::Node& node : list) {
        node.record->flags &= static_cast<std::uint16_t>(~kHeldBack);
    }
}

void RemoveHandled(ObjectList& list) {
    list.RemoveIf([](const ObjectList::Node& node) { return node.record->flags == 0; });
}

}  // namespace tolvenar
