#include "simulator/gate/rules.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <windows.h>

#include "simulator/gate/gate_file.h"

namespace sim {
namespace {

long CallOf(const std::string& function) {
    if (function == "*") {
        return kAnyCall;
    }
    const auto found = std::find(std::begin(kCallNames), std::end(kCallNames), function);
    if (found == std::end(kCallNames)) {
        throw std::runtime_error("no such function: " + function);
    }
    return static_cast<long>(found - std::begin(kCallNames));
}

GateRule& TakeFreeRule(GateFile& file) {
    for (GateRule& rule : file.rules) {
        if (::InterlockedCompareExchange(&rule.state, kRuleFilling, kRuleFree) == kRuleFree) {
            return rule;
        }
    }
    throw std::runtime_error("too many rules");
}

Rule Told(const GateRule& row) {
    Rule rule;
    rule.kind = static_cast<RuleKind>(row.kind);
    rule.function = row.call == kAnyCall ? "*" : kCallNames[row.call];
    rule.first = row.first;
    rule.count = row.count;
    rule.value = row.value;
    rule.match = row.match;
    rule.seen = row.seen;
    rule.fired = row.fired;
    return rule;
}

}  // namespace

bool CanBeShort(const std::string& function) {
    return function == "ReadFile" || function == "WriteFile";
}

void AddRule(Device& device, const Rule& rule) {
    const long call = CallOf(rule.function);
    if (rule.kind == RuleKind::kShort && !CanBeShort(rule.function)) {
        throw std::runtime_error("only ReadFile and WriteFile can be short");
    }
    if (rule.match.size() >= sizeof GateRule::match) {
        throw std::runtime_error("the text to match is too long");
    }
    GateFile& gate = GateOf(device);
    GateRule& row = TakeFreeRule(gate);
    row.kind = static_cast<long>(rule.kind);
    row.call = call;
    row.first = rule.first;
    row.count = rule.count;
    row.value = rule.value;
    row.seen = 0;
    row.fired = 0;
    std::memset(row.match, 0, sizeof row.match);
    std::memcpy(row.match, rule.match.data(), rule.match.size());
    ::InterlockedExchange(&row.state, kRuleLive);
    ::InterlockedIncrement(call == kAnyCall ? &gate.watch_all : &gate.watch[call]);
}

std::vector<Rule> Rules(Device& device) {
    GateFile& gate = GateOf(device);
    std::vector<Rule> rules;
    for (const GateRule& row : gate.rules) {
        if (row.state == kRuleLive) {
            rules.push_back(Told(row));
        }
    }
    return rules;
}

void ClearRules(Device& device) {
    GateFile& gate = GateOf(device);
    for (GateRule& row : gate.rules) {
        if (::InterlockedCompareExchange(&row.state, kRuleFilling, kRuleLive) != kRuleLive) {
            continue;
        }
        ::InterlockedDecrement(row.call == kAnyCall ? &gate.watch_all : &gate.watch[row.call]);
        ::InterlockedExchange(&row.state, kRuleFree);
    }
}

const char* RuleKindName(RuleKind kind) {
    switch (kind) {
        case RuleKind::kFault:
        case RuleKind::kShort: return "fault";
        case RuleKind::kDelay: return "delay";
        case RuleKind::kCrash: return "crash";
        case RuleKind::kCrashHalf: return "crash-half";
    }
    return "";
}

}  // namespace sim
