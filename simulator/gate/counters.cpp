#include "simulator/gate/counters.h"

#include <cmath>
#include <windows.h>

#include "simulator/gate/call_time.h"
#include "simulator/gate/device_time.h"

namespace sim {
namespace {

void AddCalls(const volatile long (&calls)[kCallCount], std::map<std::string, long>& sums) {
    for (std::size_t i = 0; i < kCallCount; ++i) {
        if (calls[i] != 0) {
            sums[kCallNames[i]] += calls[i];
        }
    }
}

ProcessCounters Told(const GateProcess& process) {
    ProcessCounters told;
    told.id = static_cast<std::uint32_t>(process.id);
    told.name = process.name;
    AddCalls(process.calls, told.calls);
    for (std::size_t i = 0; i < kGaugeCount; ++i) {
        told.gauges[i] = process.gauges[i];
    }
    return told;
}

}  // namespace

std::vector<ProcessCounters> CountersByProcess(Device& device) {
    GateFile& gate = GateOf(device);
    std::vector<ProcessCounters> all;
    const auto started = static_cast<std::size_t>(gate.processes_started);
    const std::size_t oldest = started > kProcessCount ? started - kProcessCount : 0;
    for (std::size_t i = oldest; i < started; ++i) {
        all.push_back(Told(gate.processes[i % kProcessCount]));
    }
    return all;
}

std::map<std::string, long> TotalCalls(Device& device) {
    GateFile& gate = GateOf(device);
    std::map<std::string, long> sums;
    AddCalls(gate.earlier_calls, sums);
    for (const GateProcess& process : gate.processes) {
        AddCalls(process.calls, sums);
    }
    return sums;
}

CallTimes TimesInCalls(Device& device) {
    GateFile& gate = GateOf(device);
    CallTimes times;
    for (std::size_t i = 0; i < kCallCount; ++i) {
        const long long ticks = ::InterlockedCompareExchange64(&gate.ticks[i], 0, 0);
        if (ticks == 0) {
            continue;
        }
        auto& kind = IsWaiting(static_cast<Call>(i)) ? times.waiting : times.simulated;
        kind[kCallNames[i]] = std::lround(static_cast<double>(ticks) / TicksInMicrosecond());
    }
    return times;
}

void ClearCounters(Device& device) {
    GateFile& gate = GateOf(device);
    ClearAwake(gate);
    for (std::size_t i = 0; i < kCallCount; ++i) {
        ::InterlockedExchange(&gate.earlier_calls[i], 0);
        ::InterlockedExchange64(&gate.ticks[i], 0);
        for (GateProcess& process : gate.processes) {
            ::InterlockedExchange(&process.calls[i], 0);
        }
    }
}

}  // namespace sim
