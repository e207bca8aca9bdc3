#include "simulator/system/heap_count.h"

#include <map>
#include <mutex>

#include "simulator/gate/gate.h"

namespace sim {
namespace {

std::mutex lock;
std::map<void*, long>& Blocks() {
    static std::map<void*, long> blocks;
    return blocks;
}

}  // namespace

void CountBlocks(void* heap, long count) {
    {
        const std::lock_guard guard(lock);
        Blocks()[heap] += count;
    }
    AddToGauge(Gauge::kHeapBlocks, count);
}

void ForgetHeap(void* heap) {
    long left = 0;
    {
        const std::lock_guard guard(lock);
        left = Blocks()[heap];
        Blocks().erase(heap);
    }
    AddToGauge(Gauge::kHeapBlocks, -left);
}

}  // namespace sim
