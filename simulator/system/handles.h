// The handles that the simulated device gives out itself (files, mappings, searches, databases,
// ...). A handle is a number that no handle of the host has and that is not used again soon, so
// that a second close is seen. Handles of the host (threads, events, mutexes, processes) are not
// kept here.
#pragma once

#include <memory>

namespace sim::handles {

enum class Kind { kFile, kMapping, kFind, kDatabase, kDatabaseFind, kRegistryKey, kOther };

// Takes `object` into the table; it is let go of when the handle is closed, and its destructor is
// what closing means. Never fails.
void* Register(Kind kind, std::shared_ptr<void> object);

// Whether the value is one that this table gives out, whether it is still open or not.
bool IsOurs(const void* handle);

// The object of an open handle of this kind; null for every other value.
std::shared_ptr<void> LookupAny(Kind kind, const void* handle);
template <typename T>
std::shared_ptr<T> Lookup(Kind kind, const void* handle) {
    return std::static_pointer_cast<T>(LookupAny(kind, handle));
}

// Takes an open handle of this kind out of the table. False when there is none.
bool Close(Kind kind, const void* handle);
// The platform's CloseHandle: every kind but a search, which has a call of its own, and a file that
// a mapping holds. Values that are not ours go to the host. False with the last error set.
bool CloseAnyKind(void* handle);

// Marks a file's handle as held by a mapping (CloseAnyKind refuses it) or as free again.
void SetHeld(const void* handle, bool held);

// How many are open, and letting go of all of them when the process moves to another device.
int OpenCount();
void CloseAll();

}  // namespace sim::handles
