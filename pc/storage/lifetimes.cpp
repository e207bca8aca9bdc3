#include "pc/storage/lifetimes.h"

#include <algorithm>
#include <new>

#include "snapshot/compare/states.h"

namespace tolvenar::pc {
namespace {

constexpr std::uint16_t kStillThere = 0xFFFF;

}  // namespace

std::vector<std::uint16_t> StatesOf(const StoredPair& pair) {
    const std::uint32_t last = LastStoredState(&pair.journal());
    std::vector<bool> is_there(last + std::size_t{1});
    for (const ObjectList::Node& node : pair.journal()) {
        if (node.record->state_number <= last) {
            is_there[node.record->state_number] = true;
        }
    }
    std::vector<std::uint16_t> states;
    for (std::uint32_t number = 1; number <= last; ++number) {
        if (is_there[number]) {
            states.push_back(static_cast<std::uint16_t>(number));
        }
    }
    return states;
}

Lifetimes::Lifetimes(StoredPair& pair, std::vector<std::uint16_t> states)
    : states_(std::move(states)) {
    for (const StoredVersion& version : pair.check()) {
        if (spans_.empty() || spans_.back().propOffset != version.record->propOffset) {
            spans_.push_back({version.record->propOffset});
        }
    }
    if (states_.empty()) {
        return;
    }
    const std::unique_ptr<ObjectList> state = ObjectList::CreateList();
    NodesByState nodes;
    const auto first = static_cast<std::uint16_t>(pair.journal().MinStateNumber());
    if (state == nullptr || !nodes.Build(pair.journal(), first, states_.back())) {
        throw std::bad_alloc();
    }
    StateReplay replay(*state, pair.info(), this);
    bool has_memory = replay.Reserve(nodes.size());
    for (std::size_t i = 0; i < nodes.size() && has_memory; ++i) {
        now_ = nodes[i].record->state_number;
        has_memory = nodes[i].record->type == ObjectType::kState || replay.Apply(nodes[i]);
    }
    if (!has_memory) {
        throw std::bad_alloc();
    }
}

std::size_t Lifetimes::IndexOf(std::uint32_t propOffset) const {
    for (const std::size_t near : {last_found_, last_found_ + 1, last_found_ - 1}) {
        if (near < spans_.size() && spans_[near].propOffset == propOffset) {
            return last_found_ = near;
        }
    }
    const auto found = std::lower_bound(
        spans_.begin(), spans_.end(), propOffset,
        [](const Span& span, std::uint32_t offset) { return span.propOffset < offset; });
    if (found == spans_.end() || found->propOffset != propOffset) {
        return spans_.size();
    }
    return last_found_ = static_cast<std::size_t>(found - spans_.begin());
}

void Lifetimes::Come(const ObjectRecord& record) {
    const std::size_t index = IndexOf(record.propOffset);
    if (index == spans_.size()) {
        return;
    }
    Span& span = spans_[index];
    if (span.first <= span.last) {
        earlier_.push_back(span);
    }
    span.first = now_;
    span.last = kStillThere;
}

void Lifetimes::Go(const ObjectRecord& record) {
    const std::size_t index = IndexOf(record.propOffset);
    if (index == spans_.size()) {
        return;
    }
    Span* open = &spans_[index];
    for (Span& span : earlier_) {
        const bool is_sought = open->last != kStillThere && span.propOffset == record.propOffset;
        open = is_sought ? &span : open;
    }
    open->last = static_cast<std::uint16_t>(now_ - 1);
}

std::vector<std::uint16_t> Lifetimes::StatesOf(std::uint32_t propOffset) const {
    std::vector<std::uint16_t> found;
    ForEachSpan(propOffset, [this, &found](const Span& span) {
        const auto begin = std::lower_bound(states_.begin(), states_.end(), span.first);
        const auto end = std::upper_bound(begin, states_.end(), span.last);
        found.insert(found.end(), begin, end);
    });
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

}  // namespace tolvenar::pc
