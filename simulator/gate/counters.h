// How often each process of a device made which call, and what it holds; also after it has ended.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "simulator/gate/gate_file.h"

namespace sim {

struct ProcessCounters {
    std::uint32_t id = 0;
    std::u16string name;
    std::map<std::string, long> calls;  // by function, those above 0
    long gauges[kGaugeCount] = {};
    long gauge(Gauge which) const { return gauges[static_cast<std::size_t>(which)]; }
};

// The last processes of the device, oldest first.
std::vector<ProcessCounters> CountersByProcess(Device& device);
// Calls of all processes since the device was made or its counters were cleared.
std::map<std::string, long> TotalCalls(Device& device);
// Microseconds inside the calls of all processes, without the calls inside them.
struct CallTimes {
    std::map<std::string, long> simulated;
    std::map<std::string, long> waiting;  // those whose time is not the simulator's
};
CallTimes TimesInCalls(Device& device);
// Sets every number of calls and every time to 0; what is held stays counted.
void ClearCounters(Device& device);

}  // namespace sim
