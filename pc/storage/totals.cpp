#include "pc/storage/totals.h"

#include <algorithm>
#include <vector>

#include "snapshot/compare/block_check.h"

namespace tolvenar::pc {
namespace {

// Bytes of the storage file up to its end that block and data of `record` take; 0 when damaged.
std::uint64_t BytesOf(StoredPair& pair, const ObjectRecord& record) {
    InfoBlock block;
    if (!pair.check().BlockIsSound(record.propOffset) ||
        !pair.reader().GetInfoFromStorage(record.propOffset, block)) {
        return 0;
    }
    const std::uint64_t bytes = block.size() + (HasStoredData(block) ? block.head().data_bytes : 0);
    return std::min<std::uint64_t>(bytes, pair.sizes().storage - record.propOffset);
}

}  // namespace

StorageTotals CountTotals(StoredPair& pair) {
    StorageTotals totals;
    std::vector<const ObjectRecord*> additions;
    for (const ObjectList::Node& node : pair.journal()) {
        const ObjectRecord& record = *node.record;
        if ((record.flags & kAdditionFlags) != 0) {
            additions.push_back(&record);
        } else {
            ++totals.states[record.state_number].deleted;
        }
    }
    std::sort(additions.begin(), additions.end(),
              [](const auto* a, const auto* b) { return a->propOffset < b->propOffset; });
    std::uint64_t claimed_end = pair.sizes().storage_head;
    for (const ObjectRecord* record : additions) {
        StateTotals& state = totals.states[record->state_number];
        const std::uint64_t bytes = BytesOf(pair, *record);
        state.added += record->type != ObjectType::kState ? 1 : 0;
        state.bytes += bytes;
        totals.damaged_blocks += bytes == 0 ? 1 : 0;
        if (record->propOffset > claimed_end) {
            totals.unclaimed_bytes += record->propOffset - claimed_end;
        }
        claimed_end = std::max(claimed_end, record->propOffset + bytes);
    }
    if (pair.sizes().storage > claimed_end) {
        totals.unclaimed_bytes += pair.sizes().storage - claimed_end;
    }
    return totals;
}

}  // namespace tolvenar::pc
