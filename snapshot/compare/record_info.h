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

// True for databases and their records.
inline bool IsOfDatabase(const ObjectRecord& record) {
    return record.type == ObjectType::kDatabase || record.type == ObjectType::kDatabaseRecord;
}

// True when the two identifiers agree but for the collision counter.
inline bool SameTolvOID(const ObjectRecord& a, const ObjectRecord& b) {
    return ((a.TolvOID ^ b.TolvOID) & kTolvOidMask) == 0;
}

// True when two registry records have one block, and so are one version of one object. Nothing is
// read: a damaged block must not make two objects of one.
inline bool HaveOneBlock(const ObjectRecord& a, const ObjectRecord& b) {
    return a.propOffset != 0 && a.propOffset == b.propOffset && SameTolvOID(a, b);
}

// What two registry records are to one another.
enum class Sameness {
    kSame,     // versions of one object: type, hive and name are equal
    kOther,    // two objects
    kUnknown,  // one of them cannot be described, which is logged
};
Sameness CompareObjects(const ObjectRecord& a, const ObjectRecord& b, InfoSource& info);

// True when the two descriptions are of one hive and one name.
bool HaveOneName(const InfoBlock& a, const InfoBlock& b);

// True when the names of the two objects are equal, case included. An object that cannot be
// described is logged and equals nothing.
bool IsEqualRegs(const ObjectRecord& a, const ObjectRecord& b, InfoSource& info);

}  // namespace tolvenar
