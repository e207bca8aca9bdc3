// The device's rules for calls: faults, delays and crashes. They hold for every process of the
// device at once and until they are cleared.
#pragma once

#include <string>
#include <vector>

#include "simulator/store/device.h"

namespace sim {

enum class RuleKind { kFault = 1, kDelay, kCrash, kCrashHalf, kShort };

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

// Whether a call of this function may succeed with fewer bytes than were asked for, as a kShort
// rule makes it do.
bool CanBeShort(const std::string& function);

// Throws std::runtime_error for an unknown function, for a kShort rule of one that cannot be short,
// or when the table is full.
void AddRule(Device& device, const Rule& rule);
std::vector<Rule> Rules(Device& device);
void ClearRules(Device& device);

const char* RuleKindName(RuleKind kind);

}  // namespace sim
