// How much each state brought, and what of the storage file nothing refers to.
#pragma once

#include <cstdint>
#include <map>

#include "snapshot/compare/pair_check.h"

namespace tolvenar::pc {

struct StateTotals {
    std::uint32_t added = 0;    // versions of objects that the state stored
    std::uint32_t deleted = 0;  // that end with it; a changed object is one of each
    std::uint64_t bytes = 0;    // of the storage file: blocks and data, the state's own too
};

struct StorageTotals {
    std::map<std::uint16_t, StateTotals> states;
    std::uint64_t unclaimed_bytes = 0;  // of ended backups and failed items
    std::uint32_t damaged_blocks = 0;
};

// Counts while the pair is checked: a second reading of all blocks would take as long again.
class TotalsCounter final : public VersionWatcher {
public:
    TotalsCounter(const PairSizes& sizes, StorageTotals& totals)
        : sizes_(sizes), totals_(totals), claimed_end_(sizes.storage_head) {}

    void Meet(const ObjectRecord& record, const InfoBlock* block) override;
    // When every version was met.
    void Finish(const ObjectList& journal);

private:
    const PairSizes& sizes_;
    StorageTotals& totals_;
    std::uint64_t claimed_end_;
};

}  // namespace tolvenar::pc
