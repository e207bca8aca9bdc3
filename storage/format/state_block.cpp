#include "storage/format/state_block.h"

#include <algorithm>

namespace tolvenar {
namespace {

// Takes what is there of the description: a block may claim more than the file holds.
void ReadDescription(StorageReader& storage, const ObjectRecord& record, std::uint32_t data_bytes,
                     char16_t (&text)[kStateDescriptionUnits]) {
    constexpr std::uint32_t kRoom = sizeof text - sizeof(char16_t);
    std::uint32_t read = 0;
    if (record.data_offset != kNoData) {
        storage.ReadUpTo(record.data_offset, text, std::min(data_bytes, kRoom), read);
    }
    text[read / sizeof(char16_t)] = 0;
}

}  // namespace

bool ReadStateBlock(StorageReader& storage, const ObjectRecord& record, StateBlock& block) {
    block = {};
    InfoBlockHead head{};
    std::uint32_t read = 0;
    if (!storage.ReadUpTo(record.propOffset, &head, sizeof head, read) || read != sizeof head) {
        return false;
    }
    block.time_low = head.time_low;
    block.time_high = head.time_high;
    ReadDescription(storage, record, head.data_bytes, block.description);
    return true;
}

}  // namespace tolvenar
