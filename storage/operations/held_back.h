// Records of a difference list that a restore leaves alone.
#pragma once

#include <cstddef>

#include "snapshot/records/failure_reasons.h"
#include "snapshot/records/object_list.h"

namespace tolvenar {

// In a difference list the flag of a failed backup item has no other meaning. What is held back
// counts as what could not be restored.
constexpr std::uint16_t kHeldBack = JF_FAILED;

inline bool IsHeldBack(const ObjectRecord& record) { return (record.flags & kHeldBack) != 0; }
void HoldBack(ObjectRecord& record, FailureReason reason, FailureTable& failures);

inline bool IsPendingDeletion(const ObjectRecord& record) {
    return (record.flags & (JF_ADD | kHeldBack)) == JF_ADD;
}
// To be written back from the storage file.
inline bool IsPendingVersion(const ObjectRecord& record) {
    return (record.flags & (JF_ADD | JF_DELETE | kHeldBack)) == JF_DELETE && record.propOffset != 0;
}

inline bool IsPending(const ObjectRecord& record) {
    return IsPendingVersion(record) || IsPendingDeletion(record);
}

// Those of which a restore made something or may yet.
std::size_t CountPending(const ObjectList& list);
bool HoldsHeldBack(const ObjectList& list);
// Gives every record this reason.
void SetReasons(const ObjectList& list, FailureReason reason, FailureTable& failures);
// Nothing is held back any more.
void ReleaseHeldBack(ObjectList& list);
// Takes out what is done.
void RemoveHandled(ObjectList& list);

}  // namespace tolvenar
