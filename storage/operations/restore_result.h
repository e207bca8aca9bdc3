// What a restore came to, and what it may ask meanwhile.
#pragma once

#include <cstdint>

#include "storage/operations/result_code.h"

namespace tolvenar {

struct RestoreResult {
    ResultCode code = ResultCode::kSuccess;
    // With kFailed: what was left alone is damaged in the storage. Otherwise it is in use.
    bool is_damaged = false;
    // With kFailed: nothing was done because the device lacks so many bytes. 0 where somebody was
    // asked.
    std::uint64_t missing_bytes = 0;
    // With kNotStarted: the older list of states is in use now, and nothing was restored.
    bool took_older_list = false;
};

// How much of a storage is damaged.
struct DamageCount {
    std::uint32_t in_list;  // places of the journal
    std::uint32_t objects;  // blocks that were to be written back
};

// Asks the user on the way; a restore without somebody to ask goes the way that takes nothing.
class RestoreQuestions {
public:
    // Nothing is going to be deleted or overwritten: whether to write back what is whole in the
    // storage and missing on the device.
    virtual bool MayWriteBackMissing(const DamageCount& damage) = 0;
    // A list that was moved aside is whole and has so many states: whether it is to be used.
    virtual bool MayTakeOlderList(std::uint32_t states) = 0;
    // So many bytes are missing for everything that is to be written back: whether to go on.
    virtual bool MayGoOnWithoutRoom(std::uint64_t missing_bytes) = 0;

protected:
    ~RestoreQuestions() = default;
};

}  // namespace tolvenar
