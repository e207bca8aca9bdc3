#include "simulator/gate/device_time.h"

#include <array>
#include <windows.h>

namespace sim {
namespace {

// Calls that go to the device's storage.
constexpr Call kSlowCalls[] = {
    Call::CeCreateDatabaseEx,
    Call::CeDeleteDatabaseEx,
    Call::CeDeleteRecord,
    Call::CeFindFirstDatabaseEx,
    Call::CeFindNextDatabaseEx,
    Call::CeOidGetInfoEx,
    Call::CeOpenDatabaseEx,
    Call::CeReadRecordPropsEx,
    Call::CeSeekDatabase,
    Call::CeSeekDatabaseEx,
    Call::CeSetDatabaseInfoEx,
    Call::CeWriteRecordProps,
    Call::CreateDirectoryW,
    Call::CreateFileForMappingW,
    Call::CreateFileW,
    Call::DeleteFileW,
    Call::FindFirstFileW,
    Call::FindNextFileW,
    Call::FlushFileBuffers,
    Call::GetFileAttributesW,
    Call::MapViewOfFile,
    Call::MoveFileW,
    Call::ReadFile,
    Call::RegCreateKeyExW,
    Call::RegDeleteKeyW,
    Call::RegDeleteValueW,
    Call::RegEnumKeyExW,
    Call::RegEnumValueW,
    Call::RegOpenKeyExW,
    Call::RegQueryInfoKeyW,
    Call::RegQueryValueExW,
    Call::RegSetValueExW,
    Call::RemoveDirectoryW,
    Call::SetFileAttributesW,
    Call::WriteFile,
};

// A test's own process makes these within commands, and no device sleeps then.
constexpr Call kTimelessCalls[] = {
    Call::HeapAlloc, Call::HeapFree,     Call::HeapReAlloc, Call::HeapSize,     Call::LocalAlloc,
    Call::LocalFree, Call::LocalReAlloc, Call::LocalSize,   Call::GetLastError, Call::SetLastError,
};

enum class Kind : unsigned char { kQuick, kSlow, kTimeless };

constexpr std::array<Kind, kCallCount> MakeKinds() {
    std::array<Kind, kCallCount> kinds{};
    for (const Call call : kSlowCalls) {
        kinds[static_cast<std::size_t>(call)] = Kind::kSlow;
    }
    for (const Call call : kTimelessCalls) {
        kinds[static_cast<std::size_t>(call)] = Kind::kTimeless;
    }
    return kinds;
}
constexpr std::array<Kind, kCallCount> kKinds = MakeKinds();

constexpr std::uint64_t kMsPerSecond = 1000;

// The count wraps, so moments are compared by their distance.
long Distance(std::uint32_t from, std::uint32_t to) { return static_cast<long>(to - from); }

void RaiseTo(volatile long& word, long least) {
    for (long now = word; now < least;) {
        now = ::InterlockedCompareExchange(&word, least, now);
    }
}

// A device that was never used has no key to count from.
void NoteQuiet(GateFile& gate, std::uint32_t now) {
    ::InterlockedCompareExchange(&gate.last_key, static_cast<long>(now), 0);
    RaiseTo(gate.longest_quiet_ms, Distance(static_cast<std::uint32_t>(gate.last_key), now));
}

void StayAwakeUntil(GateFile& gate, std::uint32_t moment) {
    gate.awake_until = static_cast<long>(moment);
}

}  // namespace

void TakeTimeSettings(Device& device) {
    GateFile& gate = GateOf(device);
    const auto setting = [&device](const char* name) {
        return static_cast<long>(device.NumberSetting(name, 0));
    };
    gate.call_ms = setting("time.call");
    gate.bytes_per_second = setting("time.bytes");
    gate.started_ms = setting("suspend.started");
    const long suspend_ms = setting("suspend.after");
    if (::InterlockedExchange(&gate.suspend_ms, suspend_ms) != suspend_ms) {
        StayAwakeUntil(gate, DeviceTicks(gate) + static_cast<std::uint32_t>(suspend_ms));
    }
}

std::uint32_t DeviceTicks(const GateFile& gate) {
    return ::GetTickCount() + static_cast<std::uint32_t>(gate.passed_ms);
}

void PassTime(GateFile& gate, std::uint32_t milliseconds) {
    ::InterlockedExchangeAdd(&gate.passed_ms, static_cast<long>(milliseconds));
}

void PassTransfer(GateFile& gate, std::uint32_t bytes) {
    if (const long speed = gate.bytes_per_second) {
        PassTime(gate, static_cast<std::uint32_t>(bytes * kMsPerSecond /
                                                  static_cast<std::uint32_t>(speed)));
    }
}

void NoteKey(GateFile& gate) {
    const std::uint32_t now = DeviceTicks(gate);
    NoteQuiet(gate, now);
    gate.last_key = static_cast<long>(now);
    StayAwakeUntil(gate, now + static_cast<std::uint32_t>(gate.suspend_ms));
}

void NoteStart(Device& device) {
    GateFile& gate = GateOf(device);
    const long awake_ms = gate.started_ms != 0 ? gate.started_ms : gate.suspend_ms;
    StayAwakeUntil(gate, DeviceTicks(gate) + static_cast<std::uint32_t>(awake_ms));
}

bool NoteCall(GateFile& gate, Call call) {
    const Kind kind = kKinds[static_cast<std::size_t>(call)];
    if (kind == Kind::kTimeless) {
        return false;
    }
    if (kind == Kind::kSlow && gate.call_ms != 0) {
        PassTime(gate, static_cast<std::uint32_t>(gate.call_ms));
    }
    const std::uint32_t now = DeviceTicks(gate);
    NoteQuiet(gate, now);
    const long until = gate.awake_until;
    if (gate.suspend_ms == 0 || Distance(static_cast<std::uint32_t>(until), now) <= 0) {
        return false;
    }
    // Of several threads one sees the device fall asleep.
    const long next = static_cast<long>(now + static_cast<std::uint32_t>(gate.suspend_ms));
    if (::InterlockedCompareExchange(&gate.awake_until, next, until) != until) {
        return false;
    }
    ::InterlockedIncrement(&gate.suspends);
    return true;
}

Awake AwakeOf(Device& device) {
    const GateFile& gate = GateOf(device);
    return {static_cast<std::uint32_t>(gate.longest_quiet_ms), gate.suspends};
}

void ClearAwake(GateFile& gate) {
    gate.last_key = static_cast<long>(DeviceTicks(gate));
    gate.longest_quiet_ms = 0;
    gate.suspends = 0;
}

}  // namespace sim
