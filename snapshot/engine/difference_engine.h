// Finds what differs between the device and a stored state, or between two stored states.
#pragma once

#include <cstdint>

#include "storage/opened/engine.h"

namespace tolvenar {

// Steps, each told with a text, of a comparison with the device and of one of two states.
constexpr int kDeviceSteps = 8;
constexpr int kStateSteps = 4;

// Compares the device now with stored state `state`: older, newer and difference of the open
// storage are made anew, and the registry-object table is filled, which stays for as long as the
// difference list is worked on. 1, or 0 when the storage file cannot be opened or memory is short.
// When the scan lacked memory the list of what was left out says so, and there is no difference
// list: what the scan lacks would count as gone.
int FindDifference(Engine& engine, std::uint32_t state);

// Compares stored states A (older) and B (newer); number 0 is an empty one. What the program keeps
// for itself is no difference. 1, or 0 as above.
int FindDifferenceEx(Engine& engine, std::uint32_t state_a, std::uint32_t state_b);

}  // namespace tolvenar
