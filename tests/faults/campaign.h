// How much a test tries: a sample in ./test, more in a run of its own (scripts/kill_restores,
// scripts/more_faults).
#pragma once

#include <cstdlib>

namespace tests {

// The number in the environment variable, or `sample`.
inline long Tries(const char* variable, long sample) {
    const char* tries = std::getenv(variable);
    return tries != nullptr ? std::atol(tries) : sample;
}

}  // namespace tests
