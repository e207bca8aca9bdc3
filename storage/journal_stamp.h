// What tells one journal file from another without reading it: a card may be taken out and another,
// with files of the same names, put in while the journal stays in memory.
#pragma once

#include <cstdint>

#include "storage/storage_names.h"

namespace tolvenar {

struct JournalStamp {
    bool exists = false;
    std::uint32_t bytes = 0;
    std::uint64_t modified = 0;  // FILETIME
};

inline bool operator==(const JournalStamp& a, const JournalStamp& b) {
    return a.exists == b.exists && a.bytes == b.bytes && a.modified == b.modified;
}

// The stamp of the journal file as it is now; that of no file when it cannot be found.
JournalStamp ReadJournalStamp(const StorageNames& names);

}  // namespace tolvenar
