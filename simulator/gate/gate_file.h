// What all processes of a device share about their calls: the mapped file `gate` in the device's
// folder. Every word is changed with interlocked instructions, so nothing waits for a process that
// was killed. A new file is all zero; a file of another build's layout is cleared.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "call_ids.h"
#include "simulator/store/device.h"

namespace sim {

constexpr std::size_t kCallCount = static_cast<std::size_t>(Call::kCount);

// Things of a process that are counted while they exist.
enum class Gauge : unsigned char {
    kNone,
    kHandles,
    kWindows,
    kThreads,
    kGdiObjects,
    kHeapBlocks,
    kHeapBytes,
    kHeapPeak,  // the most that kHeapBytes was
    kKeyPresses,
    kCount
};
constexpr std::size_t kGaugeCount = static_cast<std::size_t>(Gauge::kCount);

struct GateRule {
    volatile long state;  // kRuleFree, kRuleFilling, kRuleLive
    long kind;            // RuleKind
    long call;            // index of a Call, or kAnyCall
    long first;           // the matching call, counted from 1, at which it begins
    long count;           // for that many calls
    long value;           // the error, or milliseconds
    volatile long seen;   // matching calls so far
    volatile long fired;
    char match[128];  // part of the arguments' text; empty matches all
};
constexpr long kRuleFree = 0;
constexpr long kRuleFilling = 1;
constexpr long kRuleLive = 2;
constexpr long kAnyCall = -1;

struct GateProcess {
    volatile long id;
    volatile long gauges[kGaugeCount];
    volatile long calls[kCallCount];
    char16_t name[128];
};

constexpr std::size_t kRuleCount = 64;
constexpr std::size_t kProcessCount = 128;  // the oldest makes room for the next

struct GateFile {
    volatile long layout;
    volatile long watch_all;        // rules for any call, plus 1 while a trace is on
    volatile long trace;            // 1 while on
    volatile long trace_bytes;      // given out in the trace file
    volatile long untraced_thread;  // runs a command: see UntracedThread; 0: none
    volatile long processes_started;
    // The device's own time (device_time.h): what the settings say, and where it stands.
    volatile long call_ms;
    volatile long bytes_per_second;
    volatile long suspend_ms;
    volatile long started_ms;
    volatile long passed_ms;         // beside the host's own
    volatile long last_key;          // 0: none yet
    volatile long longest_quiet_ms;  // without a key
    volatile long awake_until;
    volatile long suspends;
    volatile long watch[kCallCount];                  // rules for each call
    volatile long earlier_calls[kCallCount];          // of processes that made room
    alignas(8) volatile long long ticks[kCallCount];  // inside each call, of all processes
    GateRule rules[kRuleCount];
    GateProcess processes[kProcessCount];
};

// The file mapped; throws std::runtime_error when the folder holds no device.
class MappedGate {
public:
    explicit MappedGate(const std::wstring& folder);
    explicit MappedGate(const Device& device) : MappedGate(device.folder()) {}
    ~MappedGate();
    MappedGate(const MappedGate&) = delete;
    MappedGate& operator=(const MappedGate&) = delete;
    GateFile& operator*() const { return *file_; }
    GateFile* operator->() const { return file_; }

private:
    GateFile* file_ = nullptr;
};

// The file as tools and tests see it, mapped once for each device.
GateFile& GateOf(Device& device);

}  // namespace sim
