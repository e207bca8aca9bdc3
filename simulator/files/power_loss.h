// A card that loses its power, as when it is pulled out or the battery fails: of what was not
// flushed (unsynced.h) it keeps an arbitrary part.
#pragma once

#include <cstdint>

#include "simulator/store/device.h"

namespace sim::files {

constexpr std::uint32_t kAfterAllChanges = 0xFFFFFFFF;

// Ends every program of the device, then brings the card into a state that it can be left in when
// the power goes after the first `moment` changes. Each sector of a file holds what it held after
// any of its changes since the last flush; size, times and attributes are those of one moment, the
// name is that of another; a sector that was never written holds zeros or what the medium had there
// before. What was made may be missing, what was deleted may be back. Of two files that would have
// one name one is lost. `seed` chooses. The object store stays as it is. Afterwards everything is
// certain. Returns how many changes were noted, those behind `moment` included.
std::uint32_t LosePower(Device& device, std::uint32_t seed,
                        std::uint32_t moment = kAfterAllChanges);

}  // namespace sim::files
