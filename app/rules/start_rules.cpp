#include "app/rules/start_rules.h"

namespace tolvenar {
namespace {

struct Rule {
    Wish wish;
    bool needs_quiet;
    bool needs_storage;
    bool needs_installation;
};
constexpr Rule kRules[] = {
    {Wish::kBackUp, true, true, true},           {Wish::kRestoreState, true, true, false},
    {Wish::kPreviewRestore, true, true, false},  {Wish::kRestoreDifferences, true, true, true},
    {Wish::kShowDifferences, true, true, false}, {Wish::kShowHelp, false, false, true},
};

Refusal JudgeBy(const Rule& rule, const Situation& situation) {
    if (rule.needs_quiet && situation.is_occupied) {
        return Refusal::kOccupied;
    }
    if (rule.needs_installation && !situation.is_installed) {
        return Refusal::kNoInstallation;
    }
    return rule.needs_storage && !situation.has_storage ? Refusal::kNoStorage : Refusal::kNone;
}

}  // namespace

Refusal Judge(Wish wish, const Situation& situation) {
    for (const Rule& rule : kRules) {
        if (rule.wish == wish) {
            return JudgeBy(rule, situation);
        }
    }
    return Refusal::kNone;
}

}  // namespace tolvenar
