// What a backup reports beside its success flag. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>

#include "storage/operations/result_code.h"

namespace tolvenar {

struct BackupResult {
    ResultCode code = ResultCode::kSuccess;
    // Room on the card that the backup asks for; 0 until it is known.
    std::uint64_t bytes_needed = 0;
    // With kNoSpace: what was free on the card, and the room that a backup of the whole device into
    // a new storage would ask for.
    std::uint64_t bytes_free = 0;
    std::uint64_t bytes_of_full_backup = 0;
    // With kNoSpace: it is not the card that lacks room. The storage file takes no more states.
    bool storage_is_full = false;
    // What the new state, or the last one with kNoDifference, does not hold as it is on the device.
    std::uint32_t held = 0;    // not read, and stored in no version
    std::uint32_t kept = 0;    // not read; the version of the state before stays
    std::uint32_t failed = 0;  // read, but could not be written
};

}  // namespace tolvenar
