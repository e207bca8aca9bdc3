// Finding a record's counterpart in another list. Platform-free; used by the difference engine
// alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/hash_index.h"
#include "snapshot/records/object_list.h"

namespace tolvenar {

// Whether two records may be a pair at all, told from themselves.
using PairTest = bool (*)(const ObjectRecord& a, const ObjectRecord& b);

// The unmatched records of one list, arranged so that the first one from the front that matches a
// given record is found without walking the list. What is asked of whom, in which order and with
// which log lines is as if the list was walked. The list must not change meanwhile.
class CandidateIndex {
public:
    // False when there is no memory.
    bool Build(const ObjectList& against);
    // The first record of the list without JF_MATCHED that matches `a`, or null. Where `may_match`
    // does not hold nothing else is asked; it may be null.
    ObjectRecord* FirstMatch(const ObjectRecord& a, InfoSource& info, PairTest may_match);

private:
    struct Entry {
        ObjectRecord* record;
        Entry* bucket_next;

        std::uint32_t Hash() const;
    };

    // True when the list meets `a` before `b`; null stands for the list's end.
    static bool IsEarlier(const Entry* a, const Entry* b) {
        return b == nullptr || (a != nullptr && a < b);
    }

    std::unique_ptr<Entry[]> entries_;  // in the order of the list, and so is every chain
    HashIndex<Entry> index_;
};

// True when `a` and `b`, a record of the other list, describe the same object in the same version.
bool IsMatch(const ObjectRecord& a, const ObjectRecord& b, InfoSource& info);

}  // namespace tolvenar
