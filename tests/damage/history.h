// What a device goes through before its storage is damaged: some of every kind of object, and
// changes of every kind from state to state.
#pragma once

#include "tests/support/device_test.h"

namespace tolvenar {

constexpr std::uint32_t kStates = 3;

// What makes the device hold state 1, 2 or 3, the one before being on it.
void ReachState(tests::TestDevice& device, std::uint32_t state);
// What the user does behind the last state.
void ChangeSince(tests::TestDevice& device);
// Another device, some of whose objects have the same names.
void FillForeignDevice(tests::TestDevice& device);

}  // namespace tolvenar
