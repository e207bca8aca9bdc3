// Finds records by what their objects are called or by object-store id. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/hash_index.h"
#include "snapshot/records/object_record.h"

namespace tolvenar {

// The records are somebody else's and stay where they are. A name is found whatever the case of its
// letters; to a registry object its hive belongs too.
class ObjectFinder {
public:
    explicit ObjectFinder(InfoSource& info) : info_(info) {}
    ObjectFinder(const ObjectFinder&) = delete;
    ObjectFinder& operator=(const ObjectFinder&) = delete;

    // Room for as many records, once and before the first. False when there is no memory.
    bool Reserve(std::size_t records);
    // Enters a record under the name of its object; false when that cannot be described.
    bool AddByName(ObjectRecord& record);
    // Enters a record under its dwOID; one without is passed over.
    void AddById(ObjectRecord& record);
    // A record of an object of the same type and name, or null.
    ObjectRecord* FindByName(const InfoBlock& block) const;
    // A record of an object with this type and id, or null.
    ObjectRecord* FindById(ObjectType type, std::uint32_t dwOID) const;

private:
    struct Entry {
        ObjectRecord* record;
        std::uint32_t hash;
        Entry* bucket_next;

        std::uint32_t Hash() const { return hash; }
    };

    void Enter(ObjectRecord& record, std::uint32_t hash, HashIndex<Entry>& index);

    InfoSource& info_;
    std::unique_ptr<Entry[]> entries_;
    std::size_t used_ = 0;
    HashIndex<Entry> names_;
    HashIndex<Entry> ids_;
};

}  // namespace tolvenar
