#include "pc/command/judgement.h"

#include "pc/command/interrupt.h"
#include "pc/command/progress_line.h"
#include "pc/storage/lifetimes.h"
#include "pc/storage/versions.h"
#include "pc/text/failure.h"

namespace tolvenar::pc {
namespace {

// How many objects each state has, and how many of them are damaged.
void CountStates(const Lifetimes& lifetimes, const PairCheck& check,
                 const std::vector<Damage>& damage, Judgement& judgement) {
    // What comes with a state, and goes behind one.
    std::map<std::uint32_t, StateCount> coming;
    std::map<std::uint32_t, StateCount> going;
    for (std::size_t i = 0; i < damage.size(); ++i) {
        const ObjectRecord& record = *check.begin()[i].record;
        if (record.type == ObjectType::kState) {
            continue;
        }
        const std::size_t damaged = damage[i] != Damage::kNone ? 1 : 0;
        judgement.damaged += damaged;
        lifetimes.ForEachSpan(record.propOffset, [&](const Lifetimes::Span& span) {
            ++coming[span.first].objects;
            coming[span.first].damaged += damaged;
            ++going[span.last].objects;
            going[span.last].damaged += damaged;
        });
    }
    StateCount now = coming[0];
    std::uint32_t before = 0;
    for (const std::uint16_t state : lifetimes.states()) {
        for (; before < state; ++before) {
            now.objects -= going[before].objects;
            now.damaged -= going[before].damaged;
            now.objects += coming[before + 1].objects;
            now.damaged += coming[before + 1].damaged;
        }
        judgement.states[state] = now;
    }
}

// The states that hold a whole version of each object whose contents are damaged.
void FindWholeVersions(StoredPair& pair, const Lifetimes& lifetimes,
                       const std::vector<Damage>& damage, std::vector<Judged>& objects) {
    std::map<std::u16string, std::vector<std::uint16_t>> whole;
    for (const Judged& judged : objects) {
        if (judged.damage == Damage::kData) {
            whole[IdentityOf(judged.object)];
        }
    }
    for (std::size_t i = 0; i < damage.size() && !whole.empty(); ++i) {
        const ObjectRecord& record = *pair.check().begin()[i].record;
        const auto found = damage[i] == Damage::kNone && record.type != ObjectType::kState
                               ? whole.find(IdentityOf(Describe(pair, record)))
                               : whole.end();
        if (found != whole.end()) {
            const std::vector<std::uint16_t> states = lifetimes.StatesOf(record.propOffset);
            found->second.insert(found->second.end(), states.begin(), states.end());
        }
    }
    for (Judged& judged : objects) {
        if (judged.damage == Damage::kData) {
            judged.whole_in_states = whole[IdentityOf(judged.object)];
        }
    }
}

}  // namespace

const char* WordOf(Damage damage) { return damage == Damage::kBlock ? "block" : "contents"; }

Judgement Judge(StoredPair& pair, bool all, const char* what, Console& console) {
    ContentProof proof(pair);
    const Lifetimes lifetimes(pair, StatesOf(pair));
    ProgressLine progress(console, what, pair.sizes().storage);
    const std::vector<Damage>& damage = proof.Finish([&progress](std::uint64_t bytes) {
        if (IsInterrupted()) {
            throw Failure(ExitCode::kCannot, "interrupted");
        }
        progress.Add(bytes);
    });
    Judgement judgement;
    CountStates(lifetimes, pair.check(), damage, judgement);
    for (std::size_t i = 0; i < damage.size(); ++i) {
        const ObjectRecord& record = *pair.check().begin()[i].record;
        if (record.type != ObjectType::kState && (all || damage[i] != Damage::kNone)) {
            StoredObject object = Describe(pair, record);
            object.is_damaged = damage[i] == Damage::kBlock;
            judgement.objects.push_back(
                {std::move(object), lifetimes.StatesOf(record.propOffset), damage[i], {}});
        }
    }
    FindWholeVersions(pair, lifetimes, damage, judgement.objects);
    for (const State& state : pair.states()) {
        judgement.damaged_states += state.is_damaged ? 1 : 0;
    }
    return judgement;
}

}  // namespace tolvenar::pc
