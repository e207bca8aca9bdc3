// What tells one journal file from another without reading it: a card may be taken out and another,
// with files of the same names, put in while the journal stays in memory.
#pragma once

#include <cstdint>

#include "storage/format/storage_names.h"

namespace tolvenar {

struct JournalStamp {
    bool exists = false;
    std::uint32_t bytes = 0;
    std::uint64_t modified = 0;  // FILETIME
};

// A card keeps local times, which the platform turns into UTC: a change of the time zone or to
// summer time moves them all by quarter hours.
constexpr std::uint64_t kTimeZoneStep = 15ull * 60 * 10000000;

inline bool IsSameJournal(const JournalStamp& a, const JournalStamp& b) {
    const std::uint64_t moved =
        a.modified > b.modified ? a.modified - b.modified : b.modified - a.modified;
    return a.exists && b.exists && a.bytes == b.bytes && moved % kTimeZoneStep == 0;
}

// The stamp of the journal file as it is now; that of no file when it cannot be found.
JournalStamp ReadJournalStamp(const StorageNames& names);

}  // namespace tolvenar
