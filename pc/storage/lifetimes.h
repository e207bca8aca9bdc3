// Which states hold which stored versions: one replay of the journal from its first state to its
// last.
#pragma once

#include <cstdint>
#include <vector>

#include "pc/storage/stored_pair.h"
#include "snapshot/compare/state_replay.h"

namespace tolvenar::pc {

// The numbers of the states that can be rebuilt, in order.
std::vector<std::uint16_t> StatesOf(const StoredPair& pair);

class Lifetimes final : private ReplayWatcher {
public:
    // States one after the other that hold one version.
    struct Span {
        std::uint32_t propOffset;
        std::uint16_t first = 1;
        std::uint16_t last = 0;  // before the first for a version that no state holds
    };

    // `states` are those of StatesOf.
    Lifetimes(StoredPair& pair, std::vector<std::uint16_t> states);

    const std::vector<std::uint16_t>& states() const { return states_; }
    // The states that hold the version whose block is there, in order.
    std::vector<std::uint16_t> StatesOf(std::uint32_t propOffset) const;
    // Calls `take` with each span of it.
    template <typename Take>
    void ForEachSpan(std::uint32_t propOffset, Take take) const;

private:
    void Come(const ObjectRecord& record) override;
    void Go(const ObjectRecord& record) override;
    std::size_t IndexOf(std::uint32_t propOffset) const;

    std::vector<std::uint16_t> states_;
    std::vector<Span> spans_;    // the last one of each version, in the order of the file
    std::vector<Span> earlier_;  // of versions that came a second time: the journal is damaged
    std::uint16_t now_ = 0;
    mutable std::size_t last_found_ = 0;  // blocks are asked for in the order of the file
};

template <typename Take>
void Lifetimes::ForEachSpan(std::uint32_t propOffset, Take take) const {
    for (const Span& span : earlier_) {
        if (span.propOffset == propOffset) {
            take(span);
        }
    }
    const std::size_t index = IndexOf(propOffset);
    if (index != spans_.size() && spans_[index].first <= spans_[index].last) {
        take(spans_[index]);
    }
}

}  // namespace tolvenar::pc
