// What a state's block tells besides its objects: when the state was made, and its description.
// Platform-free; docs/formats/storage-file.md.
#pragma once

#include <cstdint>
#include <string_view>

#include "snapshot/records/object_record.h"
#include "storage/format/info_block.h"
#include "storage/format/storage_reader.h"

namespace tolvenar {

// What every state's block is called.
constexpr std::u16string_view kStateBlockName = u"Title";

struct StateBlock {
    std::uint32_t time_low;  // FILETIME, UTC
    std::uint32_t time_high;
    char16_t description[kStateDescriptionUnits];  // cut when a damaged block claims more
};

// Reads the head of the block of a state's record and the description that it leads to. False, and
// an empty block, when the head cannot be read whole; a description that cannot be read is empty.
bool ReadStateBlock(StorageReader& storage, const ObjectRecord& record, StateBlock& block);

}  // namespace tolvenar
