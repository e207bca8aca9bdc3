// The space of the object store and of the card: how large, how much is taken, and whether more
// fits.
//   settings "store.size", "card.size"    bytes
//            "store.taken", "card.taken"  bytes taken by what is not a file; "free" is set through
//            it
#pragma once

#include "simulator/files/file_table.h"

namespace sim::files {

struct Space {
    std::uint64_t size = 0;
    std::uint64_t free = 0;
};

// Counted from the files themselves, so that it is right after a kill too.
Space SpaceOf(Device& device, bool card);
// From now on exactly this many bytes are free.
void SetFree(Device& device, bool card, std::uint64_t bytes);

// Takes `bytes` when they are free; false when they are not, and nothing is taken.
bool TakeSpace(FileTable& table, bool card, std::uint32_t bytes);
// Takes it whether it is free or not, as a tester does.
void AddToUsed(FileTable& table, bool card, std::uint32_t bytes);
void GiveSpaceBack(FileTable& table, bool card, std::uint32_t bytes);

}  // namespace sim::files
