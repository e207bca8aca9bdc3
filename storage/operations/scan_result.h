// What an operation reports whose comparison with the device failed. Header only.
#pragma once

#include "storage/opened/opened_storage.h"
#include "storage/operations/result_code.h"

namespace tolvenar {

inline ResultCode CodeWithoutDifferences(const OpenedStorage& storage) {
    return storage.left_out.lacks_memory() ? ResultCode::kNoMemory : ResultCode::kNoDifferenceList;
}

}  // namespace tolvenar
