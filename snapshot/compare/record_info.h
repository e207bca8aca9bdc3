// What a record's object is called and whether two registry records mean the same object.
// Platform-free; the descriptions come through InfoSource.
#pragma once

#include "snapshot/compare/info_source.h"
#include "snapshot/records/object_record.h"
#include "snapshot/records/registry_objects.h"

namespace tolvenar {

// Describes the object of `record`: from its stored block when it has one, else from the live
// object.
bool FetchInfo(const ObjectRecord& record, InfoSource& info, InfoBlock& block);

// True when the two identifiers agree but for the collision counter.
inline bool SameTolvOID(const ObjectRecord& a, const ObjectRecord& b) {
    return ((a.TolvOID ^ b.TolvOID) & kTolvOidMask) == 0;
}

// True when the names of the two objects are equal, case included. An object that cannot be
// described is logged and equals nothing.
bool IsEqualRegs(const ObjectRecord& a, const ObjectRecord& b, InfoSource& info);

}  // namespace tolvenar
