// The identifiers that a state's registry objects have, for the scan that is compared with it: two
// objects that share one could not be told apart in the difference of state and device.
// Platform-free.
#pragma once

#include <cstdint>
#include <memory>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/hash_index.h"
#include "snapshot/records/object_list.h"

namespace tolvenar {

class StateIdentifiers final : public IdentifierHolders {
public:
    explicit StateIdentifiers(InfoSource& info) : info_(info) {}

    // `state` keeps its records for as long as this lives. False when there is no memory.
    bool Build(const ObjectList& state);
    // Reads the block of every record of the state with this very identifier, of few more than one.
    // One that cannot be read counts as another object's: nothing could match it, and under an
    // identifier of its own the object of the device is stored anew beside it.
    bool IsHeldByAnother(std::uint32_t TolvOID, const RegistryEntry& entry,
                         HolderNames& names) override;

private:
    struct Entry {
        const ObjectRecord* record;
        Entry* bucket_next;

        std::uint32_t Hash() const { return RegistryObject::HashOf(record->TolvOID); }
    };

    bool IsOther(const ObjectRecord& record, const RegistryEntry& entry, HolderNames& names);

    InfoSource& info_;
    std::unique_ptr<Entry[]> entries_;
    HashIndex<Entry> index_;
    InfoBlock holder_;  // what the names point into
};

}  // namespace tolvenar
