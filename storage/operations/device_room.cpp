#include "storage/operations/device_room.h"

#include "platform/file_entry.h"
#include "snapshot/compare/block_check.h"
#include "snapshot/compare/object_finder.h"
#include "snapshot/compare/record_info.h"
#include "storage/operations/held_back.h"

namespace tolvenar {
namespace {

std::uint64_t FreeBytes() {
    MEMORYSTATUS memory{};
    memory.dwLength = sizeof memory;
    ::GlobalMemoryStatus(&memory);
    STORE_INFORMATION store{};
    ::GetStoreInformation(&store);
    return std::uint64_t{store.dwFreeSize} + memory.dwAvailPhys;
}

// What a file of the device gives back when it goes or is overwritten.
std::uint64_t SizeOnDevice(const InfoBlock& block) {
    WIN32_FIND_DATAW found{};
    const bool is_file = block.type() == ObjectType::kFile && FindEntry(block.name(), found) &&
                         !IsFolder(found) && !IsInRom(found.dwFileAttributes);
    return is_file ? found.nFileSizeLow : 0;
}

bool IsInDatabase(const ObjectRecord& record) {
    return record.type == ObjectType::kDatabase || record.type == ObjectType::kDatabaseRecord;
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

bool FindMissingRoom(const ObjectList& difference, DatabaseRestore database_restore,
                     InfoSource& info, std::uint64_t& missing) {
    ObjectFinder overwritten(info);
    if (!overwritten.Reserve(difference.CountRecords())) {
        return false;
    }
    std::uint64_t needed = 0;
    std::uint64_t room = FreeBytes();
    ForEachPending(difference, IsPendingVersion, info,
                   [&](ObjectRecord& record, const InfoBlock& block) {
                       if (IsInDatabase(record) && database_restore == DatabaseRestore::kNone) {
                           return;
                       }
                       needed += HasStoredData(block) ? block.head().data_bytes : 0;
                       room += SizeOnDevice(block);
                       if (record.type == ObjectType::kFile) {
                           overwritten.AddByName(record);
                       }
                   });
    ForEachPending(difference, IsPendingDeletion, info, [&](ObjectRecord&, const InfoBlock& block) {
        // The deleted and the overwritten one may be one file.
        const bool is_counted = overwritten.FindByName(block) != nullptr;
        room += is_counted ? 0 : SizeOnDevice(block);
    });
    missing = needed > room ? needed - room : 0;
    return true;
}

}  // namespace tolvenar
