// What tells one pair of a storage's files from another without reading it, and what the search for
// a storage remembers. Platform-free.
#pragma once

#include <cstdint>

#include "storage/format/storage_header.h"

namespace tolvenar {

struct FileStamp {
    bool exists = false;
    std::uint32_t bytes = 0;
    std::uint32_t modified_low = 0;  // FILETIME
    std::uint32_t modified_high = 0;

    bool operator==(const FileStamp& other) const {
        return exists == other.exists && bytes == other.bytes &&
               modified_low == other.modified_low && modified_high == other.modified_high;
    }
};

struct PairStamp {
    FileStamp storage;
    FileStamp journal;

    bool operator==(const PairStamp& other) const {
        return storage == other.storage && journal == other.journal;
    }
};

struct StorageSearch {
    // Nothing is looked for: the main thread chooses a storage, or looks for one already.
    bool is_held = false;
    // The files of the last load that failed.
    bool has_failed = false;
    PairStamp failed;
    // Why the last storage was not opened: the user is told once.
    OpenStorageResult told = OpenStorageResult::kOpened;
};

}  // namespace tolvenar
