// What a backup reports beside its success flag. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>

#include "storage/operations/result_code.h"

namespace tolvenar {

struct BackupResult {
    ResultCode code = ResultCode::kSuccess;
    // Room on the card that the backup asks for; 0 until it is known.
    std::uint32_t bytes_needed = 0;
};

}  // namespace tolvenar
