// The device's own time: the host's, and what slow calls took without anybody waiting for it. By it
// the device sees that no key came for long, and goes to sleep.
#pragma once

#include <cstdint>

#include "simulator/gate/gate_file.h"

namespace sim {

// What the settings say of it, for the programs that run and those to come:
//   "time.call"        milliseconds that each call for files, registry or databases takes
//   "time.bytes"       how many bytes are read or written in a second
//   "suspend.after"    milliseconds after which a device without a key sleeps
//   "suspend.started"  the same where a notification has woken it
// Absent or 0: no time, no end, never, as the one before.
void TakeTimeSettings(Device& device);

// Milliseconds, for what GetTickCount tells.
std::uint32_t DeviceTicks(const GateFile& gate);
void PassTime(GateFile& gate, std::uint32_t milliseconds);
// What a transfer of so many bytes takes.
void PassTransfer(GateFile& gate, std::uint32_t bytes);
void NoteKey(GateFile& gate);
// A notification starts a program.
void NoteStart(Device& device);

// A call begins. True when the device has gone to sleep meanwhile; it is awake again by then.
bool NoteCall(GateFile& gate, Call call);

struct Awake {
    std::uint32_t longest_quiet_ms = 0;  // between two keys, or up to the last call
    long suspends = 0;
};
Awake AwakeOf(Device& device);
void ClearAwake(GateFile& gate);

}  // namespace sim
