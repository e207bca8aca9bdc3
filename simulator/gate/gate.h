// Every call that the program makes passes here on its way into the simulator: it is counted,
// traced, delayed, made to fail, or is where the process dies, as the device's rules (rules.h) say.
// Included by sources of either side, so it names no platform type.
#pragma once

#include <cstdint>
#include <string>

#include "simulator/gate/call_time.h"
#include "simulator/gate/gate_file.h"

namespace sim {

// The text of one argument or result in a trace. Safe for any pointer, also one to nothing.
std::string Describe(const wchar_t* text);
std::string Describe(const void* pointer);
std::string DescribeNumber(long long number);
template <typename T>
std::string Describe(const T& value) {
    return DescribeNumber(static_cast<long long>(value));
}
template <typename T>
std::string Describe(T* pointer) {
    return Describe(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(pointer)));
}
inline std::string Describe(wchar_t* text) { return Describe(static_cast<const wchar_t*>(text)); }

// One call on its way through. Costs a few instructions while nothing watches it.
class GateEntry {
public:
    // A call that cannot fail meets delays and crashes, but no faults.
    explicit GateEntry(Call call, bool can_fail = true);
    GateEntry(const GateEntry&) = delete;
    GateEntry& operator=(const GateEntry&) = delete;
    // True when arguments must be told: a trace is on, or a rule of this call matches by argument.
    bool wants_arguments() const { return watched_; }
    void AddArgument(const std::string& text);
    // After the arguments: waits, dies, or answers the error that this call must fail with (0:
    // none).
    std::uint32_t Decide() { return watched_ ? DecideByRules() : 0; }
    bool traces() const { return traces_; }
    // Keeps the thread's last error as it is.
    void Finish(const std::string& result);
    // Counts what the call has made or ended.
    void Note(bool succeeded);

private:
    std::uint32_t DecideByRules();
    void WriteTrace(const std::string& result);

    Call call_;
    bool can_fail_;
    bool watched_ = false;
    bool traces_ = false;
    CallTime time_;
    std::string arguments_;
};

// Adds to a gauge of this process, for what the calls themselves do not tell; what it is now.
long AddToGauge(Gauge gauge, long count);
// Makes it at least so many.
void RaiseGauge(Gauge gauge, long least);

// What a process ends with where a rule says that it dies.
constexpr unsigned kCrashExitCode = 0xCD;

// True once in the call that a "crash-half" rule chose: whoever writes then writes half of it and
// ends the process.
bool TakeHalfWrite();

// How many of the `bytes` that are asked for a read or write takes: half in a call that a "short"
// rule chose, but at least one.
std::uint32_t BytesToTransfer(std::uint32_t bytes);

void SetHostError(std::uint32_t error);

// The device's own time, which a program asks for and which a transfer or a key moves on.
std::uint32_t DeviceTicks();
void NoteTransfer(std::uint32_t bytes);
void NoteKey();
// What happens to a device that goes to sleep before a call.
void OnSuspend(void (*suspend)(Device&));

// Runs `body` as the platform call `call`. A failing rule sets the last error and gives `failure`.
template <typename Result, typename Body, typename... Arguments>
Result Gated(Call call, Result failure, Body&& body, const Arguments&... arguments) {
    GateEntry entry(call);
    if (entry.wants_arguments()) {
        (entry.AddArgument(Describe(arguments)), ...);
    }
    if (const std::uint32_t error = entry.Decide()) {
        SetHostError(error);
        return failure;
    }
    Result result = body();
    entry.Note(result != failure);
    if (entry.traces()) {
        entry.Finish(Describe(result));
    }
    return result;
}

// The same for calls that answer an error code, as the registry's do.
template <typename Body, typename... Arguments>
long GatedStatus(Call call, Body&& body, const Arguments&... arguments) {
    GateEntry entry(call);
    if (entry.wants_arguments()) {
        (entry.AddArgument(Describe(arguments)), ...);
    }
    if (const std::uint32_t error = entry.Decide()) {
        return static_cast<long>(error);
    }
    const long result = body();
    entry.Note(result == 0);
    if (entry.traces()) {
        entry.Finish(Describe(result));
    }
    return result;
}

// The same for calls without a result; a failing rule makes them do nothing.
template <typename Body, typename... Arguments>
void GatedVoid(Call call, Body&& body, const Arguments&... arguments) {
    Gated(
        call, 0,
        [&] {
            body();
            return 1;
        },
        arguments...);
}

}  // namespace sim
