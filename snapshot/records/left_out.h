// What a scan met and could not read: files and databases, by name. Platform-free.
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
        bool is_kept;    // the version of an older state stays
        char16_t* name;  // owned by the list
        Entry* next;
        Entry* bucket_next;

        std::uint32_t Hash() const;
    };

    LeftOut() = default;
    ~LeftOut() { Clear(); }
    LeftOut(const LeftOut&) = delete;
    LeftOut& operator=(const LeftOut&) = delete;

    // Enters an object. Without memory it is missing.
    void Add(ObjectType type, std::u16string_view name);
    // Whether the object is in, whatever the case of the letters.
    bool Contains(ObjectType type, std::u16string_view name) const {
        return Find(type, name) != nullptr;
    }
    // Marks the object, whatever the case of the letters, if it is in.
    void MarkKept(ObjectType type, std::u16string_view name);
    // In the order of the scan; null when there is none.
    const Entry* First() const { return first_; }
    void Clear();

private:
    Entry* Find(ObjectType type, std::u16string_view name) const;

    Entry* first_ = nullptr;
    Entry* last_ = nullptr;
    HashIndex<Entry> index_;
};

}  // namespace tolvenar
