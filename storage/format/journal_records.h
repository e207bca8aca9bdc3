// The records of a journal file, read and written one at a time. Platform-free;
// docs/formats/journal.md.
#pragma once

#include <cstdint>

#include "snapshot/records/object_list.h"
#include "snapshot/text/progress.h"
#include "storage/format/byte_file.h"

namespace tolvenar {

class JournalRecordReader {
public:
    explicit JournalRecordReader(ByteReader& file) : file_(file) {}

    // The next record; false at the end and when a read fails. A short last record keeps the bytes
    // of the one before it behind its own (docs/oddities.md, 1).
    bool Next(ObjectRecord& record);

private:
    ByteReader& file_;
    std::uint32_t offset_ = 0;
    ObjectRecord record_{};
};

// Records that a file of `bytes` bytes holds, a short one at its end included.
constexpr std::uint32_t JournalRecordCount(std::uint32_t bytes) {
    return bytes / sizeof(ObjectRecord) + (bytes % sizeof(ObjectRecord) != 0 ? 1 : 0);
}

// Enters every record of `file` in `list` under its key and counts them in `taken`; stops at a
// failed read, which only the count tells. False when memory is short. `progress` may be null.
bool ReadJournalRecords(ByteReader& file, ObjectList& list, Progress* progress,
                        std::uint32_t& taken);
// Appends the records of `list` in the order of a walk and stops at the first failed write. Returns
// how many were written. A deletion without a stored block is logged.
std::size_t WriteJournalRecords(ByteAppender& file, const ObjectList& list, Progress* progress);

}  // namespace tolvenar
