#include "pc/storage/kept_states.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "pc/text/failure.h"

namespace tolvenar::pc {
namespace {

constexpr std::size_t kDayLetters = 10;  // "2026-11-16"
constexpr std::size_t kMonthLetters = 7;

// Adds the newest state of each of the newest `count` periods. What has no time is in none.
void KeepByPeriod(const std::vector<State>& states, std::size_t count, std::size_t letters,
                  std::set<std::uint16_t>& kept) {
    std::set<std::string> periods;
    for (auto state = states.rbegin(); state != states.rend() && periods.size() < count; ++state) {
        if (state->made.ticks != 0 &&
            periods.insert(LocalText(state->made).substr(0, letters)).second) {
            kept.insert(state->number);
        }
    }
}

}  // namespace

std::vector<State> ChooseStates(const StoredPair& pair, const KeepRules& rules) {
    const std::vector<State>& states = pair.states();
    std::set<std::uint16_t> kept;
    for (std::size_t i = 0; i < std::min(rules.last, states.size()); ++i) {
        kept.insert(states[states.size() - 1 - i].number);
    }
    KeepByPeriod(states, rules.daily, kDayLetters, kept);
    KeepByPeriod(states, rules.monthly, kMonthLetters, kept);
    for (const std::string& text : rules.states) {
        kept.insert(pair.FindState(text));
    }
    std::vector<State> chosen;
    std::copy_if(states.begin(), states.end(), std::back_inserter(chosen),
                 [&kept](const State& state) { return kept.count(state.number) != 0; });
    if (chosen.empty() || chosen.size() < kept.size()) {
        throw Failure(ExitCode::kUsage,
                      kept.empty() ? "say which states to keep: --keep, --keep-last, --keep-daily "
                                     "or --keep-monthly"
                                   : "a state without a record of its own cannot be kept");
    }
    return chosen;
}

}  // namespace tolvenar::pc
