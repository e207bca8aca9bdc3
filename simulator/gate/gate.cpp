#include "simulator/gate/gate.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>
#include <windows.h>

#include "simulator/gate/device_time.h"
#include "simulator/gate/effects.h"
#include "simulator/gate/rules.h"
#include "simulator/gate/trace.h"
#include "simulator/store/device.h"

namespace sim {
namespace {

// This process's part in the gate of its device. It is a part of the Device and goes with it.
struct Attachment {
    explicit Attachment(const Device& device) : gate(device), trace(device.folder()) {
        const long number = ::InterlockedIncrement(&gate->processes_started) - 1;
        process = &gate->processes[static_cast<std::size_t>(number) % kProcessCount];
        TakeOver();
    }
    ~Attachment();
    Attachment(const Attachment&) = delete;
    Attachment& operator=(const Attachment&) = delete;

    void TakeOver() {
        for (std::size_t i = 0; i < kCallCount; ++i) {
            const long calls = ::InterlockedExchange(&process->calls[i], 0);
            if (calls != 0) {
                ::InterlockedExchangeAdd(&gate->earlier_calls[i], calls);
            }
        }
        for (volatile long& gauge : process->gauges) {
            gauge = 0;
        }
        process->gauges[static_cast<std::size_t>(Gauge::kThreads)] = 1;
        process->id = static_cast<long>(::GetCurrentProcessId());
        wchar_t name[MAX_PATH] = L"";
        if (::GetEnvironmentVariableW(L"CEPROGRAM", name, MAX_PATH) == 0) {
            ::GetModuleFileNameW(nullptr, name, MAX_PATH - 1);
        }
        std::memset(process->name, 0, sizeof process->name);
        std::memcpy(process->name, name, sizeof process->name - sizeof(char16_t));
    }

    MappedGate gate;
    TraceFile trace;
    GateProcess* process;
};

std::mutex device_lock;
std::atomic<Attachment*> attached{nullptr};
thread_local bool half_write = false;
thread_local bool short_transfer = false;
void (*suspend_device)(Device&) = nullptr;

// The next call asks for the device of this process again.
Attachment::~Attachment() { attached = nullptr; }

// The first call of several threads at once opens the device once.
bool HasDevice() {
    const std::lock_guard guard(device_lock);
    return Device::HasCurrent();
}

Attachment* Attach() {
    const DWORD error = ::GetLastError();
    if (HasDevice()) {
        attached = &Device::Current().Part<Attachment>();
    }
    ::SetLastError(error);
    return attached;
}

Attachment* Attached() {
    Attachment* here = attached.load(std::memory_order_acquire);
    return here != nullptr ? here : Attach();
}

char LowerLetter(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool Contains(const std::string& text, const char* part) {
    const std::size_t length = std::strlen(part);
    for (std::size_t at = 0; at + length <= text.size(); ++at) {
        std::size_t same = 0;
        while (same < length && LowerLetter(text[at + same]) == LowerLetter(part[same])) {
            ++same;
        }
        if (same == length) {
            return true;
        }
    }
    return length == 0;
}

// Waits for the milliseconds of a rule that has just fired, or until the rule is taken away. A new
// rule in its place has not fired and ends the wait too.
void HoldUp(const GateRule& rule) {
    const DWORD begin = ::GetTickCount();
    const auto milliseconds = static_cast<DWORD>(rule.value);
    while (rule.state == kRuleLive && rule.fired != 0) {
        const DWORD waited = ::GetTickCount() - begin;
        if (waited >= milliseconds) {
            return;
        }
        ::Sleep(std::min<DWORD>(milliseconds - waited, 10));
    }
}

// Whether `rule` meets this call; counts it.
bool Meets(GateRule& rule, Call call, bool can_fail, const std::string& arguments) {
    if (rule.state != kRuleLive) {
        return false;
    }
    if (rule.call == kAnyCall ? !can_fail : rule.call != static_cast<long>(call)) {
        return false;
    }
    if (!can_fail && rule.kind == static_cast<long>(RuleKind::kFault)) {
        return false;
    }
    if (!Contains(arguments, rule.match)) {
        return false;
    }
    const long number = ::InterlockedIncrement(&rule.seen);
    if (number < rule.first || number - rule.first >= rule.count) {
        return false;
    }
    ::InterlockedIncrement(&rule.fired);
    return true;
}

// A call's caller finds the last error that it had.
void Suspend() {
    const DWORD error = ::GetLastError();
    if (suspend_device != nullptr) {
        suspend_device(Device::Current());
    }
    ::SetLastError(error);
}

long long HostMicroseconds() {
    FILETIME now;
    ::GetSystemTimeAsFileTime(&now);
    return ((static_cast<long long>(now.dwHighDateTime) << 32) | now.dwLowDateTime) / 10;
}

}  // namespace

GateEntry::GateEntry(Call call, bool can_fail) : call_(call), can_fail_(can_fail) {
    Attachment* here = Attached();
    if (here == nullptr) {
        return;
    }
    const auto index = static_cast<std::size_t>(call);
    ::InterlockedIncrement(&here->process->calls[index]);
    watched_ = (here->gate->watch_all | here->gate->watch[index]) != 0;
    traces_ = here->gate->trace != 0 &&
              here->gate->untraced_thread != static_cast<long>(::GetCurrentThreadId());
    if (NoteCall(*here->gate, call)) {
        Suspend();
    }
    time_.Begin(*here->gate, call);
}

void GateEntry::AddArgument(const std::string& text) {
    if (!arguments_.empty()) {
        arguments_ += ", ";
    }
    arguments_ += text;
}

std::uint32_t GateEntry::DecideByRules() {
    Attachment* here = attached;
    std::uint32_t error = 0;
    for (GateRule& rule : here->gate->rules) {
        if (!Meets(rule, call_, can_fail_, arguments_)) {
            continue;
        }
        switch (static_cast<RuleKind>(rule.kind)) {
            case RuleKind::kFault: error = static_cast<std::uint32_t>(rule.value); break;
            case RuleKind::kDelay: HoldUp(rule); break;
            case RuleKind::kCrash: WriteTrace("crash"); EndThisProcess(kCrashExitCode);
            case RuleKind::kCrashHalf: half_write = true; break;
            case RuleKind::kShort: short_transfer = true; break;
        }
    }
    short_transfer = short_transfer && error == 0;
    if (error != 0 && traces_) {
        ::SetLastError(error);
        WriteTrace("fault");
    }
    return error;
}

void GateEntry::Finish(const std::string& result) { WriteTrace(result); }

void GateEntry::WriteTrace(const std::string& result) {
    const DWORD error = ::GetLastError();
    if (traces_) {
        Attachment& here = *attached.load();
        here.trace.Append(*here.gate,
                          "{\"time\":" + std::to_string(HostMicroseconds()) +
                              ",\"process\":" + std::to_string(::GetCurrentProcessId()) +
                              ",\"thread\":" + std::to_string(::GetCurrentThreadId()) +
                              ",\"function\":\"" + kCallNames[static_cast<std::size_t>(call_)] +
                              "\",\"arguments\":" + JsonText(arguments_) + ",\"result\":" +
                              JsonText(result) + ",\"error\":" + std::to_string(error) + "}");
    }
    ::SetLastError(error);
}

void GateEntry::Note(bool succeeded) {
    const Effect effect = kEffects[static_cast<std::size_t>(call_)];
    if (succeeded && effect.change != 0) {
        AddToGauge(effect.gauge, effect.change);
    }
}

long AddToGauge(Gauge gauge, long count) {
    Attachment* here = Attached();
    if (here == nullptr) {
        return 0;
    }
    volatile long& held = here->process->gauges[static_cast<std::size_t>(gauge)];
    return ::InterlockedExchangeAdd(&held, count) + count;
}

void RaiseGauge(Gauge gauge, long least) {
    Attachment* here = Attached();
    if (here == nullptr) {
        return;
    }
    volatile long& held = here->process->gauges[static_cast<std::size_t>(gauge)];
    for (long now = held; now < least;) {
        now = ::InterlockedCompareExchange(&held, least, now);
    }
}

bool TakeHalfWrite() {
    const bool taken = half_write;
    half_write = false;
    return taken;
}

std::uint32_t BytesToTransfer(std::uint32_t bytes) {
    const bool is_short = short_transfer && bytes > 1;
    short_transfer = false;
    return is_short ? bytes / 2 : bytes;
}

void SetHostError(std::uint32_t error) { ::SetLastError(error); }

std::uint32_t DeviceTicks() {
    const Attachment* here = Attached();
    return here != nullptr ? DeviceTicks(*here->gate) : ::GetTickCount();
}

void NoteTransfer(std::uint32_t bytes) {
    if (const Attachment* here = Attached()) {
        PassTransfer(*here->gate, bytes);
    }
}

void NoteKey() {
    if (const Attachment* here = Attached()) {
        NoteKey(*here->gate);
    }
}

void OnSuspend(void (*suspend)(Device&)) { suspend_device = suspend; }

}  // namespace sim
