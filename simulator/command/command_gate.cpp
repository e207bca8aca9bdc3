// fault, delay, crash, crash-half, faults, trace, counters: what happens to calls, and what
// happened.
#include <algorithm>

#include "simulator/command/command_row.h"
#include "simulator/gate/counters.h"
#include "simulator/gate/device_time.h"
#include "simulator/gate/rules.h"
#include "simulator/gate/trace.h"

namespace sim {
namespace {

bool IsNumber(const std::string& word) {
    return !word.empty() &&
           std::all_of(word.begin(), word.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// In the place of an error: the call succeeds with half of the bytes.
constexpr char kShortWord[] = "short";

bool IsErrorWord(const std::string& word) { return word == kShortWord || IsNumber(word); }

Rule RuleOf(RuleKind kind, const Words& words) {
    Rule rule;
    rule.kind = kind;
    rule.function = words[0];
    rule.first = static_cast<long>(Number(words[1]));
    if (rule.first < 1) {
        throw CommandError("calls are counted from 1");
    }
    return rule;
}

Json AddCrash(RuleKind kind, Device& device, const Words& words) {
    Rule rule = RuleOf(kind, words);
    if (words.size() > 2) {
        rule.match = words[2];
    }
    AddRule(device, rule);
    return Done();
}

Json RuleAsJson(const Rule& rule) {
    Json json = {{"kind", RuleKindName(rule.kind)},
                 {"function", rule.function},
                 {"first", rule.first},
                 {"count", rule.count},
                 {"seen", rule.seen},
                 {"fired", rule.fired}};
    if (rule.kind == RuleKind::kFault) {
        json["error"] = rule.value;
    }
    if (rule.kind == RuleKind::kShort) {
        json["error"] = kShortWord;
    }
    if (rule.kind == RuleKind::kDelay) {
        json["milliseconds"] = rule.value;
    }
    if (!rule.match.empty()) {
        json["match"] = rule.match;
    }
    return json;
}

Json ShownTrace(Device& device, const std::string& function) {
    Json list = Json::array();
    for (const std::string& line : TraceLines(device)) {
        Json entry = Json::parse(line, nullptr, false);
        if (entry.is_discarded()) {
            continue;
        }
        if (function.empty() || entry["function"] == function) {
            list.push_back(std::move(entry));
        }
    }
    return list;
}

constexpr struct {
    Gauge gauge;
    const char* name;
} kGaugeNames[] = {
    {Gauge::kHandles, "handles"},       {Gauge::kWindows, "windows"},
    {Gauge::kThreads, "threads"},       {Gauge::kGdiObjects, "gdiObjects"},
    {Gauge::kHeapBlocks, "heapBlocks"}, {Gauge::kKeyPresses, "keyPresses"},
    {Gauge::kHeapBytes, "heapBytes"},   {Gauge::kHeapPeak, "heapPeak"},
};

}  // namespace

// FUNCTION N [COUNT] ERROR [MATCH]: of four words the last is the error when it can be one and the
// third a count.
Json RunFault(Device& device, const Words& words) {
    Rule rule = RuleOf(RuleKind::kFault, words);
    const bool has_count =
        words.size() == 5 || (words.size() == 4 && words[2] != kShortWord && IsErrorWord(words[3]));
    const std::size_t error_at = has_count ? 3 : 2;
    if (has_count) {
        rule.count = static_cast<long>(Number(words[2]));
    }
    if (words[error_at] == kShortWord) {
        rule.kind = RuleKind::kShort;
    } else {
        rule.value = static_cast<long>(Number(words[error_at]));
        if (rule.value == 0) {
            throw CommandError("error 0 is no failure");
        }
    }
    if (words.size() > error_at + 1) {
        rule.match = words[error_at + 1];
    }
    AddRule(device, rule);
    return Done();
}

Json RunDelay(Device& device, const Words& words) {
    Rule rule = RuleOf(RuleKind::kDelay, words);
    rule.value = static_cast<long>(Number(words[2]));
    if (words.size() > 3) {
        rule.match = words[3];
    }
    AddRule(device, rule);
    return Done();
}

Json RunCrash(Device& device, const Words& words) {
    return AddCrash(RuleKind::kCrash, device, words);
}

Json RunCrashHalf(Device& device, const Words& words) {
    if (words[0] != "WriteFile") {
        throw CommandError("only WriteFile can be left half done");
    }
    return AddCrash(RuleKind::kCrashHalf, device, words);
}

Json RunFaults(Device& device, const Words& words) {
    if (!words.empty() && words[0] == "clear") {
        ClearRules(device);
        return Done();
    }
    const bool all = !words.empty() && words[0] == "all";
    if (!words.empty() && !all) {
        throw CommandError("usage: faults [all|clear]");
    }
    Json list = Json::array();
    for (const Rule& rule : Rules(device)) {
        if (all || rule.fired == 0) {
            list.push_back(RuleAsJson(rule));
        }
    }
    return list;
}

Json RunTrace(Device& device, const Words& words) {
    if (words[0] == "show") {
        return ShownTrace(device, words.size() > 1 ? words[1] : "");
    }
    if (words[0] == "on") {
        StartTrace(device);
    } else if (words[0] == "off") {
        StopTrace(device);
    } else {
        throw CommandError("usage: trace on|off|show [FUNCTION]");
    }
    return Done();
}

Json RunPass(Device& device, const Words& words) {
    PassTime(GateOf(device), static_cast<std::uint32_t>(Number(words[0])));
    return Done();
}

Json RunCounters(Device& device, const Words& words) {
    if (!words.empty()) {
        if (words[0] != "clear") {
            throw CommandError("usage: counters [clear]");
        }
        ClearCounters(device);
        return Done();
    }
    Json processes = Json::array();
    for (const ProcessCounters& counters : CountersByProcess(device)) {
        Json process = {
            {"id", counters.id}, {"name", Utf8(counters.name)}, {"calls", counters.calls}};
        for (const auto& row : kGaugeNames) {
            process[row.name] = counters.gauge(row.gauge);
        }
        processes.push_back(std::move(process));
    }
    const CallTimes times = TimesInCalls(device);
    long simulator = 0;
    for (const auto& [function, microseconds] : times.simulated) {
        simulator += microseconds;
    }
    const Awake awake = AwakeOf(device);
    return {{"calls", TotalCalls(device)},      {"longestQuiet", awake.longest_quiet_ms},
            {"suspends", awake.suspends},       {"microseconds", times.simulated},
            {"simulator", simulator},           {"waiting", times.waiting},
            {"processes", std::move(processes)}};
}

}  // namespace sim
