#include "simulator/system/heap_count.h"

#include <map>
#include <mutex>

#include "simulator/gate/gate.h"

namespace sim {
namespace {

struct Held {
    long blocks;
    long bytes;
};

std::mutex lock;
std::map<void*, Held>& Heaps() {
    static std::map<void*, Held> heaps;
    return heaps;
}

void Tell(long blocks, long bytes) {
    AddToGauge(Gauge::kHeapBlocks, blocks);
    RaiseGauge(Gauge::kHeapPeak, AddToGauge(Gauge::kHeapBytes, bytes));
}

void Add(void* heap, long blocks, long bytes) {
    {
        const std::lock_guard guard(lock);
        Held& held = Heaps()[heap];
        held.blocks += blocks;
        held.bytes += bytes;
    }
    Tell(blocks, bytes);
}

}  // namespace

void NoteTaken(void* heap, std::size_t bytes) { Add(heap, 1, static_cast<long>(bytes)); }

void NoteFreed(void* heap, std::size_t bytes) { Add(heap, -1, -static_cast<long>(bytes)); }

void ForgetHeap(void* heap) {
    Held left{};
    {
        const std::lock_guard guard(lock);
        left = Heaps()[heap];
        Heaps().erase(heap);
    }
    Tell(-left.blocks, -left.bytes);
}

}  // namespace sim
