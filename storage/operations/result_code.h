// What a backup or a restore reports beside its success flag. Platform-free.
#pragma once

#include <cstdint>

namespace tolvenar {

// The numbers are the system's own: messages and logs tell them.
enum class ResultCode : std::uint32_t {
    kSuccess = 1,           // also the initial value: a failure before anything else was decided
    kNoDifference = 2,      // nothing to back up, nothing to restore
    kNoDifferenceList = 3,  // the differences could not be found
    kFailed = 4,            // backup: storage or journal not opened or written; restore: some items
    kJournalUnreadable = 5,
    kNoSpace = 6,  // backup: the card is too full; restore: the storage is empty
    kDriver = 7,   // restore: the storage file could not be mapped
    kNotStarted = 8,
    kNoMemory = 9,
    kWriteProtected = 10,  // backup: the pair of files can be read only
    kNoStorage = 11,       // an unattended run could not open the storage file
};

}  // namespace tolvenar
