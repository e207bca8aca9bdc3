// How long a call is inside, without the calls that are made inside it: a window procedure that
// runs within one call makes others. Counted in ticks of the processor's own clock, the cheapest to
// read.
#pragma once

#include "simulator/gate/gate_file.h"

namespace sim {

class CallTime {
public:
    CallTime() = default;
    ~CallTime() { End(); }
    CallTime(const CallTime&) = delete;
    CallTime& operator=(const CallTime&) = delete;
    // The time goes to `call` in `gate`, which outlives the call.
    void Begin(GateFile& gate, Call call);

private:
    void End();

    volatile long long* sum_ = nullptr;  // null: not begun
    long long* inside_ = nullptr;        // of this thread: ticks of the calls made in this one
    long long begin_ = 0;
    long long beside_ = 0;  // the same for the call around this one, so far
};

// Measures for some milliseconds at the first use.
double TicksInMicrosecond();

// Whether the time of a call is not the simulator's: it waits, or the host runs the program's own
// window procedures within it.
bool IsWaiting(Call call);

}  // namespace sim
