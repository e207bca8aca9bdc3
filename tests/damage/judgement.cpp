#include "tests/damage/judgement.h"

namespace tolvenar {
namespace {

bool HasOneOf(const Objects& objects, const std::string& name,
              const std::set<std::string>& versions) {
    const auto found = objects.find(name);
    if (found == objects.end()) {
        return false;
    }
    for (const std::string& version : found->second) {
        if (versions.count(version) != 0) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::vector<std::string> LostObjects(const Objects& before, const Objects& wanted,
                                     const Objects& after) {
    std::vector<std::string> lost;
    for (const auto& [name, versions] : before) {
        const auto in_state = wanted.find(name);
        if (in_state != wanted.end() && !HasOneOf(after, name, versions) &&
            !HasOneOf(after, name, in_state->second)) {
            lost.push_back(name);
        }
    }
    return lost;
}

Verdict Judge(const Outcome& outcome, const Holdings& before, const Holdings& wanted,
              const Holdings& after) {
    const bool says_all_is_well = outcome.began && (outcome.code == ResultCode::kSuccess ||
                                                    outcome.code == ResultCode::kNoDifference);
    if (says_all_is_well && after.lines == wanted.lines) {
        return outcome.is_earlier ? Verdict::kOlder : Verdict::kExact;
    }
    if (!LostObjects(before.objects, wanted.objects, after.objects).empty()) {
        return Verdict::kLost;
    }
    if (says_all_is_well) {
        return Verdict::kSilent;
    }
    return after.lines == before.lines ? Verdict::kRefused : Verdict::kTold;
}

}  // namespace tolvenar
