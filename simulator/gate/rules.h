// The device's rules for calls: faults, delays and crashes. They hold for every process of the
// device at once and until they are cleared.
#pragma once

#include <string>
#include <vector>

#include "simulator/store/device.h"

namespace sim {

enum class RuleKind { kFault = 1, kDelay, kCrash, kCrashHalf };

struct Rule {
    RuleKind kind = RuleKind::kFault;
    std::string function;  // a platform call, or "*" for any that can fail
    long first = 1;        // the first matching call that it meets, counted from 1
    long count = 1;        // and how many from there on
    long value = 0;        // a fault's error, a delay's milliseconds
    std::string match;     // part of the call's arguments as a trace shows them, in any case
    long seen = 0;         // matching calls so far
    long fired = 0;        // of these, how many the rule met
};

// Throws std::runtime_error for an unknown function or when the table is full.
void AddRule(Device& device, const Rule& rule);
std::vector<Rule> Rules(Device& device);
void ClearRules(Device& device);

const char* RuleKindName(RuleKind kind);

}  // namespace sim
