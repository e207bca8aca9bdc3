// Finds the blocks of a storage file whose journal is lost or damaged: one behind the other from
// the head on.
#pragma once

#include <cstdint>
#include <vector>

#include "pc/storage/surviving_records.h"

namespace tolvenar::pc {

struct FoundBlock {
    std::uint32_t offset;
    std::uint32_t end;          // of its data
    const ObjectRecord* proof;  // null when no record survives that proves the block
    bool is_contradicted;       // records lead to it, but none of them proves it
    bool is_doubtful;           // not proved, and no block begins where it says that it ends
};

// Bytes that are no block.
struct Gap {
    std::uint32_t offset;
    std::uint32_t bytes;
};

struct BlockWalk {
    std::vector<FoundBlock> blocks;  // in the order of the file
    std::vector<Gap> gaps;
};

// A block is taken when a record proves it, or when it is as its type has it and ends where the
// next proved one begins or before. Only where none is taken the next head is looked for, byte by
// byte: contents may hold a storage themselves. `records` must stay for as long as the result.
BlockWalk WalkBlocks(StorageReader& reader, const SurvivingRecords& records, std::uint32_t begin,
                     std::uint32_t end);

}  // namespace tolvenar::pc
