#include "pc/storage/totals.h"

#include <algorithm>

namespace tolvenar::pc {
namespace {

// Bytes that a block and its data take, as far as the file goes.
std::uint64_t BytesOf(const InfoBlock& block, std::uint64_t to_the_end) {
    const std::uint64_t bytes = block.size() + (HasStoredData(block) ? block.head().data_bytes : 0);
    return std::min(bytes, to_the_end);
}

}  // namespace

void TotalsCounter::Meet(const ObjectRecord& record, const InfoBlock* block) {
    StateTotals& state = totals_.states[record.state_number];
    const std::uint64_t bytes =
        block == nullptr ? 0 : BytesOf(*block, sizes_.storage - record.propOffset);
    state.added += record.type != ObjectType::kState ? 1 : 0;
    state.bytes += bytes;
    totals_.damaged_blocks += bytes == 0 ? 1 : 0;
    if (record.propOffset > claimed_end_) {
        totals_.unclaimed_bytes += record.propOffset - claimed_end_;
    }
    claimed_end_ = std::max(claimed_end_, record.propOffset + bytes);
}

void TotalsCounter::Finish(const ObjectList& journal) {
    for (const ObjectList::Node& node : journal) {
        if ((node.record->flags & kAdditionFlags) == 0) {
            ++totals_.states[node.record->state_number].deleted;
        }
    }
    if (sizes_.storage > claimed_end_) {
        totals_.unclaimed_bytes += sizes_.storage - claimed_end_;
    }
}

}  // namespace tolvenar::pc
