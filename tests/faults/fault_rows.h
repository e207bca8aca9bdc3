// The calls that the engine's operations make, and the error that each fails with in these tests.
#pragma once

#include <cstdint>
#include <vector>

namespace tests {

enum class FaultKind : unsigned char {
    kPlain,
    kCloses,  // what stays open or allocated is the fault's own doing
    kShort,   // the call succeeds with half of the bytes
};

struct FaultRow {
    const char* function;
    std::uint32_t error;
    FaultKind kind = FaultKind::kPlain;
};

const std::vector<FaultRow>& FaultRows();
// Those that read and write, to be made short.
const std::vector<FaultRow>& ShortRows();
// Whether a call of this name has no failure that its caller could see.
bool CannotFail(const char* function);

}  // namespace tests
