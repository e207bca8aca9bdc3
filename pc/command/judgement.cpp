#include "pc/command/judgement.h"

#include "pc/command/interrupt.h"
#include "pc/command/progress_line.h"
#include "pc/storage/object_data.h"
#include "pc/storage/state_objects.h"
#include "pc/storage/versions.h"
#include "pc/text/failure.h"
#include "snapshot/text/letter_case.h"

namespace tolvenar::pc {
namespace {

const char* DamageOf(StoredPair& pair, const StoredObject& object) {
    return object.is_damaged ? "block" : DataAreSound(pair, object) ? nullptr : "contents";
}

}  // namespace

Judgement Judge(StoredPair& pair, const char* what, Console& console) {
    Judgement judgement;
    Holders holders = FindHolders(pair, StatesOf(pair));
    ProgressLine progress(console, what, pair.sizes().storage);
    for (StoredObject& object : DescribeAll(pair, AdditionsOf(pair.journal()))) {
        if (IsInterrupted()) {
            throw Failure(ExitCode::kCannot, "interrupted");
        }
        const char* const damage = DamageOf(pair, object);
        progress.Add(kInfoHeadBytes + 2 * object.name.size() + object.data_bytes);
        std::vector<std::uint16_t>& states = holders[object.record.propOffset];
        for (const std::uint16_t state : states) {
            ++judgement.states[state].objects;
            judgement.states[state].damaged += damage != nullptr ? 1 : 0;
        }
        judgement.damaged += damage != nullptr ? 1 : 0;
        judgement.objects.push_back({std::move(object), std::move(states), damage});
    }
    for (const State& state : pair.states()) {
        judgement.damaged_states += state.is_damaged ? 1 : 0;
    }
    return judgement;
}

std::vector<std::uint16_t> StatesWithWhole(const Judgement& judgement, const Judged& damaged) {
    std::vector<std::uint16_t> states;
    const std::u16string path = PathOf(damaged.object);
    for (const Judged& other : judgement.objects) {
        if (other.damage == nullptr && other.object.type() == damaged.object.type() &&
            EqualIgnoringCase(PathOf(other.object), path)) {
            states.insert(states.end(), other.states.begin(), other.states.end());
        }
    }
    return states;
}

}  // namespace tolvenar::pc
