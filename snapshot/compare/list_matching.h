// Finding a record's counterpart in another list. Platform-free; used by the difference engine
// alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/object_list.h"

namespace tolvenar {

// The unmatched records of one list, arranged so that the first one from the front that matches a
// given record is found without walking the list. What is asked of whom, in which order and with
// which log lines is as if the list was walked. The list must not change meanwhile.
class CandidateIndex {
public:
    // False when there is no memory.
    bool Build(const ObjectList& against);
    // The first record of the list without JF_MATCHED that matches `a`, or null.
    ObjectRecord* FirstMatch(const ObjectRecord& a, InfoSource& info);

private:
    struct Entry {
        ObjectRecord* record;
        std::uint32_t next;
    };

    std::uint32_t& BucketOf(std::uint32_t hash) { return buckets_[hash & (bucket_count_ - 1)]; }

    std::unique_ptr<Entry[]> entries_;  // in the order of the list
    std::unique_ptr<std::uint32_t[]> buckets_;
    std::size_t bucket_count_ = 0;
};

// True when `a` and `b`, a record of the other list, describe the same object in the same version.
bool IsMatch(const ObjectRecord& a, const ObjectRecord& b, InfoSource& info);

}  // namespace tolvenar
