#include "pc/storage/block_walk.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "snapshot/compare/block_check.h"
#include "snapshot/compare/exclusion.h"
#include "snapshot/records/registry_objects.h"
#include "storage/format/property_encoding.h"
#include "storage/format/state_block.h"

namespace tolvenar::pc {
namespace {

constexpr std::uint32_t kFolderAttribute = 0x10;
constexpr std::uint32_t kSortOrderBytes = 32;
constexpr std::uint32_t kMostSortOrders = 4;
constexpr std::uint32_t kWindowBytes = 4096;

// What no backup writes differently.
bool IsAsItsTypeHasIt(const InfoBlock& block) {
    const InfoBlockHead& head = block.head();
    const std::u16string_view name(block.name(), head.name_bytes / sizeof(char16_t));
    if (head.zero != 0 || name.find(u'\0') != name.npos) {
        return false;
    }
    switch (block.type()) {
        case ObjectType::kRegistryKey:
            return IsHive(head.hive) && head.value_type == 0 && head.data_bytes == 0;
        case ObjectType::kRegistryValue:
            return IsHive(head.hive) && name.find(kNameSeparator) != name.npos;
        case ObjectType::kDatabase:
            return !name.empty() && head.data_bytes == kSortOrderBytes &&
                   head.sort_order_count <= kMostSortOrders;
        case ObjectType::kDatabaseRecord:
            return !name.empty() && head.value_type == 0 &&
                   std::uint64_t{head.property_count} * sizeof(StoredProperty) <= head.data_bytes;
        case ObjectType::kFile:
            return name.substr(0, 1) == u"\\" && head.value_type == 0 &&
                   ((head.attributes & kFolderAttribute) == 0 || head.data_bytes == 0);
        case ObjectType::kState:
            return name == kStateBlockName && head.hive == 0 && head.value_type == 0 &&
                   head.data_bytes <= kStateDescriptionUnits * sizeof(char16_t);
        default: return false;
    }
}

// So much of a head that hardly any other bytes pass.
bool MayBeHead(const std::uint8_t* bytes) {
    std::uint16_t type = 0;
    std::uint16_t name_bytes = 0;
    std::uint16_t zero = 0;
    std::memcpy(&type, bytes + 20, sizeof type);
    std::memcpy(&name_bytes, bytes + 22, sizeof name_bytes);
    std::memcpy(&zero, bytes + 24, sizeof zero);
    return type < 0x100 && IsKnownType(static_cast<ObjectType>(type)) && name_bytes % 2 == 0 &&
           name_bytes <= kMaxNameBytes && zero == 0;
}

class Walker {
public:
    Walker(StorageReader& reader, const SurvivingRecords& records, std::uint32_t end)
        : reader_(reader), records_(records), end_(end) {
        for (const std::uint32_t place : records.Places()) {
            FoundBlock block{};
            if (Read(place, end, block) && block.proof != nullptr) {
                proved_.push_back(place);
            }
        }
    }

    BlockWalk Walk(std::uint32_t begin) {
        for (std::uint32_t place = begin; place < end_;) {
            FoundBlock block{};
            if (Read(place, LimitBehind(place), block)) {
                walk_.blocks.push_back(block);
                place = block.end;
                continue;
            }
            if (!walk_.blocks.empty()) {
                FoundBlock& last = walk_.blocks.back();
                last.is_doubtful = last.proof == nullptr;
            }
            const std::uint32_t next = FindHead(place + 1);
            walk_.gaps.push_back({place, next - place});
            place = next;
        }
        return std::move(walk_);
    }

private:
    // A block that is not proved gives way to the next one that is.
    std::uint32_t LimitBehind(std::uint32_t place) const {
        const auto next = std::upper_bound(proved_.begin(), proved_.end(), place);
        return next == proved_.end() ? end_ : *next;
    }

    bool Read(std::uint32_t place, std::uint32_t limit, FoundBlock& found) {
        InfoBlock block;
        if (!reader_.GetInfoFromStorage(place, block)) {
            return false;
        }
        const std::uint64_t data = HasStoredData(block) ? block.head().data_bytes : 0;
        const std::uint64_t end = place + block.size() + data;
        found.proof = records_.ProofOf(place, block);
        if (end > (found.proof != nullptr ? end_ : limit)) {
            return false;
        }
        if (found.proof == nullptr && !(IsAsItsTypeHasIt(block) && IsTerminated(place, block))) {
            return false;
        }
        found.offset = place;
        found.end = static_cast<std::uint32_t>(end);
        found.is_contradicted = found.proof == nullptr && records_.LeadTo(place);
        return true;
    }

    // The parsed name always is.
    bool IsTerminated(std::uint32_t place, const InfoBlock& block) {
        char16_t terminator = 0;
        std::uint32_t read = 0;
        return reader_.ReadUpTo(place + static_cast<std::uint32_t>(block.size()) - 2, &terminator,
                                sizeof terminator, read) &&
               read == sizeof terminator && terminator == 0;
    }

    // How many places from `place` on have their heads in the window. Where some of it cannot be
    // read only the first is looked at.
    std::uint32_t ReadHeads(std::uint32_t place, std::uint8_t* window) {
        std::uint32_t read = 0;
        if (!reader_.ReadUpTo(place, window, std::min(kWindowBytes, end_ - place), read) &&
            !reader_.ReadUpTo(place, window, kInfoHeadBytes, read)) {
            return 0;
        }
        return read < kInfoHeadBytes ? 0 : read - kInfoHeadBytes + 1;
    }

    // The next place from `place` on where a block is taken, or the end.
    std::uint32_t FindHead(std::uint32_t place) {
        std::vector<std::uint8_t> window(kWindowBytes);
        while (place < end_) {
            const std::uint32_t heads = ReadHeads(place, window.data());
            for (std::uint32_t i = 0; i < heads; ++i) {
                FoundBlock block{};
                if (MayBeHead(window.data() + i) &&
                    Read(place + i, LimitBehind(place + i), block)) {
                    return place + i;
                }
            }
            place += std::max<std::uint32_t>(heads, 1);
        }
        return end_;
    }

    StorageReader& reader_;
    const SurvivingRecords& records_;
    const std::uint32_t end_;
    std::vector<std::uint32_t> proved_;  // places, in order
    BlockWalk walk_;
};

}  // namespace

BlockWalk WalkBlocks(StorageReader& reader, const SurvivingRecords& records, std::uint32_t begin,
                     std::uint32_t end) {
    return Walker(reader, records, end).Walk(begin);
}

}  // namespace tolvenar::pc
