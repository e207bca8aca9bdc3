#include "pc/report/report_data.h"

#include <algorithm>
#include <iterator>

namespace tolvenar::pc {
namespace {

constexpr std::size_t kRanked = 20;
// Finding the whole version of each takes a walk through all objects.
constexpr std::size_t kMostLosses = 200;

template <typename Map, typename Key>
auto ValueOf(const Map& map, const Key& key) {
    const auto found = map.find(key);
    return found == map.end() ? typename Map::mapped_type{} : found->second;
}

std::vector<ReportState> StatesIn(const StoredPair& pair, const StorageTotals& totals,
                                  const Judgement& judgement) {
    std::vector<ReportState> states;
    std::uint64_t bytes = pair.sizes().storage_head;
    for (const State& state : pair.states()) {
        const StateTotals of_state = ValueOf(totals.states, state.number);
        bytes += of_state.bytes;
        states.push_back({state, of_state, ValueOf(judgement.states, state.number), bytes});
    }
    return states;
}

bool IsIn(const Judged& judged, std::uint16_t state) {
    return std::binary_search(judged.states.begin(), judged.states.end(), state);
}

std::vector<LargeObject> LargestIn(const Judgement& judgement, std::uint16_t state) {
    std::vector<const StoredObject*> objects;
    for (const Judged& judged : judgement.objects) {
        if (judged.object.has_data && IsIn(judged, state)) {
            objects.push_back(&judged.object);
        }
    }
    const auto end =
        objects.begin() + static_cast<std::ptrdiff_t>(std::min(kRanked, objects.size()));
    std::partial_sort(objects.begin(), end, objects.end(),
                      [](const auto* a, const auto* b) { return a->data_bytes > b->data_bytes; });
    std::vector<LargeObject> largest;
    std::transform(objects.begin(), end, std::back_inserter(largest), [](const auto* object) {
        return LargeObject{PathOf(*object), KindOf(*object), object->data_bytes};
    });
    return largest;
}

std::vector<ChangedObject> MostChanged(const Judgement& judgement) {
    std::map<std::u16string, ChangedObject> by_identity;
    for (const Judged& judged : judgement.objects) {
        if (!judged.object.is_damaged) {
            ChangedObject& changed = by_identity[IdentityOf(judged.object)];
            changed.path = PathOf(judged.object);
            changed.kind = KindOf(judged.object);
            changed.stored_by.push_back(judged.object.record.state_number);
        }
    }
    std::vector<ChangedObject> most;
    for (auto& [identity, changed] : by_identity) {
        if (changed.stored_by.size() > 1) {
            most.push_back(std::move(changed));
        }
    }
    std::stable_sort(most.begin(), most.end(), [](const auto& a, const auto& b) {
        return a.stored_by.size() > b.stored_by.size();
    });
    most.resize(std::min(kRanked, most.size()));
    return most;
}

std::vector<Loss> LossesIn(const Judgement& judgement) {
    std::vector<Loss> losses;
    for (const Judged& judged : judgement.objects) {
        if (judged.damage != Damage::kNone && losses.size() < kMostLosses) {
            losses.push_back({PathOf(judged.object), WordOf(judged.damage), judged.states,
                              judged.whole_in_states});
        }
    }
    return losses;
}

}  // namespace

ReportData GatherReport(StoredPair& pair, Console& console) {
    const StorageTotals& totals = pair.totals();
    const Judgement judgement = Judge(pair, true, "report", console);
    ReportData data;
    data.states = StatesIn(pair, totals, judgement);
    data.unclaimed_bytes = totals.unclaimed_bytes;
    if (!data.states.empty()) {
        data.largest = LargestIn(judgement, data.states.back().state.number);
    }
    data.most_changed = MostChanged(judgement);
    data.losses = LossesIn(judgement);
    data.damaged = judgement.damaged;
    data.damaged_states = judgement.damaged_states;
    data.list_is_sound = pair.list_is_sound();
    data.findings = pair.findings();
    return data;
}

}  // namespace tolvenar::pc
