#include "simulator/files/space.h"

#include <algorithm>
#include <windows.h>

namespace sim::files {
namespace {

constexpr std::int64_t kStoreBytes = 64 << 20;
constexpr std::int64_t kCardBytes = 512 << 20;

std::int64_t SizeSetting(Device& device, bool card) {
    return card ? device.NumberSetting("card.size", kCardBytes)
                : device.NumberSetting("store.size", kStoreBytes);
}

const char* TakenSetting(bool card) { return card ? "card.taken" : "store.taken"; }

// What files may take together.
std::int64_t Limit(Device& device, bool card) {
    return SizeSetting(device, card) - device.NumberSetting(TakenSetting(card), 0);
}

volatile long& Counter(FileTable& table, bool card) { return table.slot(card ? 1 : 0).used; }

}  // namespace

Space SpaceOf(Device& device, bool card) {
    FileTable& table = FileTable::Of(device);
    const std::int64_t free = Limit(device, card) - table.sizes().Used(card);
    return {static_cast<std::uint64_t>(SizeSetting(device, card)),
            static_cast<std::uint64_t>(std::max<std::int64_t>(free, 0))};
}

void SetFree(Device& device, bool card, std::uint64_t bytes) {
    const std::int64_t used = FileTable::Of(device).sizes().Used(card);
    device.SetSetting(TakenSetting(card), std::to_string(SizeSetting(device, card) - used -
                                                         static_cast<std::int64_t>(bytes)));
}

// The counter is raised before anything is written and lowered afterwards, so that it may say too
// much after a kill and never too little. Only when it says that nothing more fits the files'
// sizes count.
bool TakeSpace(FileTable& table, bool card, std::uint32_t bytes) {
    volatile long& counter = Counter(table, card);
    const auto before =
        static_cast<std::uint32_t>(::InterlockedExchangeAdd(&counter, static_cast<long>(bytes)));
    const std::int64_t limit = Limit(table.device(), card);
    if (static_cast<std::int64_t>(before) + bytes <= limit) {
        return true;
    }
    if (table.sizes().Used(card) + bytes <= limit) {
        return true;
    }
    GiveSpaceBack(table, card, bytes);
    return false;
}

void AddToUsed(FileTable& table, bool card, std::uint32_t bytes) {
    ::InterlockedExchangeAdd(&Counter(table, card), static_cast<long>(bytes));
}

void GiveSpaceBack(FileTable& table, bool card, std::uint32_t bytes) {
    ::InterlockedExchangeAdd(&Counter(table, card), -static_cast<long>(bytes));
}

}  // namespace sim::files
