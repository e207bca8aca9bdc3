// What changes with every write to a file (its size, its times) lives outside the log, in a mapped
// file of 64-byte places, one for each node: a write then costs no append. Each place is right
// after a kill: the size is trusted only while nobody writes, else the content's own size counts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace sim::files {

constexpr std::size_t kChangeLevels = 4;

struct Slot {
    volatile long long modified;  // FILETIME counts, UTC
    volatile long long created;
    volatile long long accessed;
    volatile long size;     // bytes, unsigned
    volatile long writers;  // handles open for writing, those of killed processes included
    volatile long used;     // places 0 and 1 only: bytes taken of the object store and of the card
    // Counts how often a size may have changed: that of this place, and where a group begins with
    // it, of the 64, of the 4,096 and of the 262,144 places from here. See size_sums.h.
    volatile long changes[kChangeLevels];
    long reserved[3];
};
static_assert(sizeof(Slot) == 64);

class SlotFile {
public:
    explicit SlotFile(const std::wstring& folder);
    ~SlotFile();
    SlotFile(const SlotFile&) = delete;
    SlotFile& operator=(const SlotFile&) = delete;

    // The place of a node; the file grows as needed. Throws std::runtime_error when it cannot.
    Slot& At(std::uint32_t number);

private:
    std::mutex mutex_;
    void* file_;
    std::vector<Slot*> views_;
};

// 64-bit values that another process may be writing.
std::uint64_t LoadTime(const volatile long long& place);
void StoreTime(volatile long long& place, std::uint64_t time);

}  // namespace sim::files
