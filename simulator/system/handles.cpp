#include "simulator/system/handles.h"

#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>
#include <windows.h>

#include "simulator/gate/gate.h"

namespace sim::handles {
namespace {

struct Entry {
    Kind kind = Kind::kOther;
    bool held = false;
    std::uint32_t round = 0;  // how often this place was used
    std::shared_ptr<void> object;
};

// A value: mark in the top bits, round, index, two bits that callers may use. The host's handles
// are small numbers and its pseudo handles are near 2^32.
constexpr std::uint32_t kMark = 0x50000000;
constexpr std::uint32_t kMarkMask = 0xF0000000;
constexpr std::uint32_t kRoundMask = 0xFFF;
constexpr unsigned kRoundShift = 16;
constexpr unsigned kIndexShift = 2;
constexpr std::uint32_t kIndexMask = 0x3FFF;

std::mutex mutex;
std::vector<Entry> entries;
std::vector<std::uint32_t> free_places;

std::uint32_t Value(const void* handle) {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle));
}

// The open entry of `handle`, or null. The mutex is held.
Entry* Open(const void* handle) {
    const std::uint32_t value = Value(handle);
    const std::uint32_t index = (value >> kIndexShift) & kIndexMask;
    if (!IsOurs(handle) || index >= entries.size()) {
        return nullptr;
    }
    Entry& entry = entries[index];
    const bool same_round = ((value >> kRoundShift) & kRoundMask) == (entry.round & kRoundMask);
    return same_round && entry.object ? &entry : nullptr;
}

// Empties the place; the object is let go of by the caller, outside the mutex.
std::shared_ptr<void> Empty(Entry& entry) {
    AddToGauge(Gauge::kHandles, -1);
    entry.held = false;
    ++entry.round;
    free_places.push_back(static_cast<std::uint32_t>(&entry - entries.data()));
    return std::exchange(entry.object, nullptr);
}

}  // namespace

void* Register(Kind kind, std::shared_ptr<void> object) {
    AddToGauge(Gauge::kHandles, 1);
    std::lock_guard guard(mutex);
    if (free_places.empty()) {
        free_places.push_back(static_cast<std::uint32_t>(entries.size()));
        entries.emplace_back();
    }
    const std::uint32_t index = free_places.back();
    free_places.pop_back();
    Entry& entry = entries[index];
    entry.kind = kind;
    entry.object = std::move(object);
    const std::uint32_t value =
        kMark | ((entry.round & kRoundMask) << kRoundShift) | (index << kIndexShift);
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(value));
}

bool IsOurs(const void* handle) {
    const std::uint32_t value = Value(handle);
    return (value & kMarkMask) == kMark && (value & ((1u << kIndexShift) - 1)) == 0;
}

std::shared_ptr<void> LookupAny(Kind kind, const void* handle) {
    std::lock_guard guard(mutex);
    const Entry* entry = Open(handle);
    return entry != nullptr && entry->kind == kind ? entry->object : nullptr;
}

bool Close(Kind kind, const void* handle) {
    std::shared_ptr<void> object;
    std::lock_guard guard(mutex);
    Entry* entry = Open(handle);
    if (entry == nullptr || entry->kind != kind) {
        return false;
    }
    object = Empty(*entry);
    return true;
}

bool CloseAnyKind(void* handle) {
    if (!IsOurs(handle)) {
        if (!::CloseHandle(handle)) {
            return false;
        }
        AddToGauge(Gauge::kHandles, -1);
        return true;
    }
    std::shared_ptr<void> object;
    {
        std::lock_guard guard(mutex);
        Entry* entry = Open(handle);
        const bool has_own_call =
            entry != nullptr && (entry->kind == Kind::kFind || entry->kind == Kind::kRegistryKey);
        if (entry != nullptr && !has_own_call && !entry->held) {
            object = Empty(*entry);
        }
    }
    if (!object) {
        ::SetLastError(ERROR_INVALID_HANDLE);
    }
    return object != nullptr;
}

void SetHeld(const void* handle, bool held) {
    std::lock_guard guard(mutex);
    if (Entry* entry = Open(handle)) {
        entry->held = held;
    }
}

int OpenCount() {
    std::lock_guard guard(mutex);
    return static_cast<int>(entries.size() - free_places.size());
}

void CloseAll() {
    std::vector<std::shared_ptr<void>> objects;
    std::lock_guard guard(mutex);
    for (Entry& entry : entries) {
        if (entry.object) {
            objects.push_back(Empty(entry));
        }
    }
}

}  // namespace sim::handles
