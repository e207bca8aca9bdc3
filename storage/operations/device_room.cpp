#include "storage/operations/device_room.h"

#include <algorithm>

#include "platform/file_entry.h"
#include "platform/file_mapping.h"
#include "snapshot/compare/block_check.h"
#include "snapshot/compare/object_finder.h"
#include "snapshot/compare/record_info.h"
#include "storage/operations/held_back.h"

namespace tolvenar {
namespace {

struct Room {
    std::uint64_t store;
    std::uint64_t memory;
};

Room FreeRoom() {
    MEMORYSTATUS memory{};
    memory.dwLength = sizeof memory;
    ::GlobalMemoryStatus(&memory);
    STORE_INFORMATION store{};
    ::GetStoreInformation(&store);
    return {store.dwFreeSize, memory.dwAvailPhys};
}

std::uint64_t MissingOf(std::uint64_t needed, std::uint64_t room) {
    return needed > room ? needed - room : 0;
}

// Files are copied in whole granules of both kinds of memory; with less than one of either none is.
std::uint64_t RoomForFiles(const Room& room) {
    const std::uint64_t granule = AllocationGranularity();
    const std::uint64_t store = room.store - room.store % granule;
    const std::uint64_t memory = room.memory - room.memory % granule;
    return store != 0 && memory != 0 ? store + memory : 0;
}

bool IsFileDeletion(const ObjectRecord& record) {
    return record.type == ObjectType::kFile && IsPendingDeletion(record);
}

// What a file of the device gives back when it goes or is overwritten.
std::uint64_t SizeOnDevice(const InfoBlock& block) {
    WIN32_FIND_DATAW found{};
    const bool is_file = block.type() == ObjectType::kFile && FindEntry(block.name(), found) &&
                         !IsFolder(found) && !IsInRom(found.dwFileAttributes);
    return is_file ? found.nFileSizeLow : 0;
}

template <typename Action>
void ForEachPending(const ObjectList& difference, bool (*is_meant)(const ObjectRecord&),
                    InfoSource& info, Action action) {
    for (const ObjectList::Node& node : difference) {
        InfoBlock block;
        if (is_meant(*node.record) && FetchInfo(*node.record, info, block)) {
            action(*node.record, block);
        }
    }
}

}  // namespace

bool FindRoomNeed(const ObjectList& difference, DatabaseRestore database_restore, InfoSource& info,
                  RoomNeed& need) {
    ObjectFinder overwritten(info);
    if (!overwritten.Reserve(difference.CountRecords())) {
        return false;
    }
    std::uint64_t for_files = 0;
    std::uint64_t for_others = 0;
    Room room = FreeRoom();
    ForEachPending(difference, IsPendingVersion, info,
                   [&](ObjectRecord& record, const InfoBlock& block) {
                       if (IsOfDatabase(record) && database_restore == DatabaseRestore::kNone) {
                           return;
                       }
                       const bool is_file = record.type == ObjectType::kFile;
                       (is_file ? for_files : for_others) +=
                           HasStoredData(block) ? block.head().data_bytes : 0;
                       room.store += SizeOnDevice(block);
                       if (is_file) {
                           overwritten.AddByName(record);
                       }
                   });
    ForEachPending(difference, IsFileDeletion, info, [&](ObjectRecord&, const InfoBlock& block) {
        // The deleted and the overwritten one may be one file.
        const bool is_counted = overwritten.FindByName(block) != nullptr;
        room.store += is_counted ? 0 : SizeOnDevice(block);
    });
    need.written = for_files + for_others;
    need.missing = std::max(MissingOf(for_files, RoomForFiles(room)),
                            MissingOf(need.written, room.store + room.memory));
    return true;
}

}  // namespace tolvenar
