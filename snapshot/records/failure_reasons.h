// Why records of a difference list could not be restored, kept beside the list. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>

#include "snapshot/records/hash_index.h"
#include "snapshot/records/object_record.h"

namespace tolvenar {

// Bits: an item of the difference tree may stand for several records.
enum class FailureReason : std::uint16_t {
    kNone = 0,
    kInUse = 0x0001,        // another program has it open
    kProtected = 0x0002,    // read-only, or kept by the system
    kNoRoom = 0x0004,       // on the device
    kNoContainer = 0x0008,  // its folder, key or database is missing
    kNotEmpty = 0x0010,     // something else is in it
    kIsThere = 0x0020,      // and cannot be replaced
    kDamaged = 0x0040,      // in the storage
    kSpared = 0x0080,       // whole itself, but the storage is damaged
    kOnCard = 0x0100,       // a card is mounted where it stood
    kNotStored = 0x0200,    // no state holds it
    kNotTried = 0x0400,     // nothing was restored at all
    kOther = 0x0800,
    kNoOrders = 0x1000,  // the database is back without its sort orders
};

// Records are known by their place in memory: clear the table before their list goes.
class FailureTable {
public:
    FailureTable() = default;
    ~FailureTable() { Clear(); }
    FailureTable(const FailureTable&) = delete;
    FailureTable& operator=(const FailureTable&) = delete;

    // Enters a reason, in the place of an earlier one. Without memory it is missing.
    void Set(const ObjectRecord& record, FailureReason reason);
    // kNone for a record that has no entry.
    FailureReason Of(const ObjectRecord& record) const;
    void Clear();

private:
    struct Entry {
        const ObjectRecord* record;
        FailureReason reason;
        Entry* next;
        Entry* bucket_next;

        std::uint32_t Hash() const;
    };
    Entry* Find(const ObjectRecord& record) const;

    Entry* first_ = nullptr;
    HashIndex<Entry> index_;
};

}  // namespace tolvenar
