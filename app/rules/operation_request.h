// What a page asks the operation thread for, complete. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tolvenar {

enum class OperationKind {
    kBackup,
    kRestore,
    kPreview,  // finds out what a restore would change, and changes nothing
};

constexpr std::size_t kDescriptionUnits = 260;
constexpr std::int32_t kNoState = -1;

struct OperationRequest {
    OperationKind kind = OperationKind::kBackup;
    int button = 0;                        // of a restore or preview: the one that was pressed
    std::int32_t state_number = kNoState;  // of a restore or preview: the selected state
    char16_t description[kDescriptionUnits] = {};  // of a backup: the new state's
};

}  // namespace tolvenar
