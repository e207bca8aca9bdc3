#include "storage/operations/backup_room.h"

#include "platform/unique_resource.h"
#include "storage/files/card_space.h"
#include "storage/files/handle_bytes.h"
#include "storage/opened/journal.h"

namespace tolvenar {
namespace {

// Left on the card beside the new blocks and the rewritten journal.
constexpr std::uint64_t kSpareBytes = 10000;
// More than what the head of a new storage and the block of its first state take, each file in
// whole clusters of the card, and the log meanwhile.
constexpr std::uint64_t kFirstBytes = 0x10000;

std::uint32_t BytesInStorage(Engine& engine, const ObjectRecord& record) {
    InfoBlock block;
    if (!engine.info.GetOIDInfo(record.TolvOID, record.dwOID, block)) {
        return 0;
    }
    return static_cast<std::uint32_t>(block.size()) + block.head().data_bytes;
}

// Everything that the scan met, in a storage of its own.
std::uint64_t EstimateFullBackup(Engine& engine) {
    const ObjectInfo::KeptOpen until_counted(engine.info);
    std::uint64_t total = kFirstBytes + kSpareBytes;
    for (const ObjectList::Node& node : *engine.storage.newer) {
        total += std::uint64_t{BytesInStorage(engine, *node.record)} + sizeof(ObjectRecord);
    }
    return total;
}

// Only the low half of what is free is looked at (docs/oddities.md, 6).
bool HasRoomFor(std::uint64_t bytes, std::uint64_t bytes_free) {
    return static_cast<std::uint32_t>(bytes_free) >= bytes;
}

// Bytes of a file that nobody else holds and that may be deleted.
bool SizeOfDeletable(const char16_t* path, std::uint64_t& total) {
    const UniqueHandle file = OpenFile(path, GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING);
    std::uint32_t bytes = 0;
    if (!file || !HandleBytes(file.get()).Size(bytes)) {
        return false;
    }
    total += bytes;
    return true;
}

}  // namespace

std::uint32_t EstimateBlockSize(Engine& engine, const ObjectRecord& record) {
    return (record.flags & JF_ADD) == 0 ? 0 : BytesInStorage(engine, record);
}

std::uint64_t EstimateList(Engine& engine, const ObjectList& list) {
    const ObjectInfo::KeptOpen until_counted(engine.info);
    std::uint64_t total = 0;
    for (const ObjectList::Node& node : list) {
        total += std::uint64_t{EstimateBlockSize(engine, *node.record)} + sizeof(ObjectRecord);
    }
    return total;
}

ResultCode CheckRoom(Engine& engine, std::uint64_t estimate, BackupResult& result) {
    const StorageNames& names = engine.storage.names;
    const std::uint32_t journal_bytes = JournalFileSize(names);
    if (!FreeBytesOfCard(names, result.bytes_free) || journal_bytes == kNoFileSize) {
        return ResultCode::kFailed;
    }
    result.bytes_needed = journal_bytes + estimate + kSpareBytes;
    if (HasRoomFor(result.bytes_needed, result.bytes_free)) {
        return ResultCode::kSuccess;
    }
    result.bytes_of_full_backup = EstimateFullBackup(engine);
    return ResultCode::kNoSpace;
}

bool DeletionMakesRoom(const StorageNames& names, const BackupResult& result) {
    const bool has_room_already = result.bytes_free >= result.bytes_needed;
    // What could not be read has its only version in the old storage, and its size is not known.
    const bool was_all_read = result.held == 0 && result.kept == 0;
    std::uint64_t freed = 0;
    if (result.storage_is_full || has_room_already || !was_all_read ||
        !SizeOfDeletable(names.sav, freed) || !SizeOfDeletable(names.journal, freed)) {
        return false;
    }
    const std::uint64_t free_then = result.bytes_free + freed;
    return free_then >= result.bytes_of_full_backup &&
           HasRoomFor(result.bytes_of_full_backup, free_then);
}

}  // namespace tolvenar
