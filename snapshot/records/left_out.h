// What a scan met and could not read: files and databases by name, database records by the name of
// their database and their id; and whether it lacked memory for anything. Platform-free.
#pragma once

#include <cstdint>
#include <string_view>

#include "snapshot/records/hash_index.h"
#include "snapshot/records/object_type.h"

namespace tolvenar {

class LeftOut {
public:
    struct Entry {
        ObjectType type;
        std::uint32_t dwOID;  // of a database record; 0 for records of which nothing is known
        bool is_kept;         // the version of an older state stays
        char16_t* name;       // owned by the list
        Entry* next;
        Entry* bucket_next;

        std::uint32_t Hash() const;
    };

    LeftOut() = default;
    ~LeftOut() { Clear(); }
    LeftOut(const LeftOut&) = delete;
    LeftOut& operator=(const LeftOut&) = delete;

    // Enters an object; without memory it is missing, which is noted.
    void Add(ObjectType type, std::u16string_view name, std::uint32_t dwOID = 0);
    // Whether the object is in, whatever the case of the letters.
    bool Contains(ObjectType type, std::u16string_view name, std::uint32_t dwOID = 0) const {
        return Find(type, name, dwOID) != nullptr;
    }
    // Marks the object, whatever the case of the letters, if it is in.
    void MarkKept(ObjectType type, std::u16string_view name, std::uint32_t dwOID = 0);
    // There may be databases that the scan did not meet.
    void NoteUnlistedDatabases() { has_unlisted_databases_ = true; }
    bool has_unlisted_databases() const { return has_unlisted_databases_; }
    // In the order of the scan; null when there is none.
    const Entry* First() const { return first_; }
    // Something that the scan met is in no list for want of memory: what the lists lack may be
    // there.
    void NoteLackOfMemory() { lacks_memory_ = true; }
    bool lacks_memory() const { return lacks_memory_; }
    void Clear();

private:
    Entry* Find(ObjectType type, std::u16string_view name, std::uint32_t dwOID) const;

    Entry* first_ = nullptr;
    Entry* last_ = nullptr;
    HashIndex<Entry> index_;
    bool has_unlisted_databases_ = false;
    bool lacks_memory_ = false;
};

}  // namespace tolvenar
