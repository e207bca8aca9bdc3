#include "storage/objects/object_data_writers.h"

#include <algorithm>

#include "platform/file_mapping.h"
#include "platform/text.h"
#include "snapshot/records/checksum.h"
#include "storage/format/property_encoding.h"

namespace tolvenar {
namespace {

constexpr std::uint16_t kNoContents = 0xFFFF;  // fingerprint of keys and empty files

bool Append(const DataWriter& writer, const void* bytes, StoredData& data) {
    return writer.storage.WriteBlock(bytes, writer.block.head().data_bytes, data.offset, false);
}

bool BackupSortOrders(const DataWriter& writer, StoredData& data) {
    CEOIDINFO info;
    if (!writer.databases.GetObjectInfo(writer.oid, info) || info.wObjType != OBJTYPE_DATABASE) {
        return false;
    }
    const std::uint32_t bytes = writer.block.head().data_bytes;
    const auto& sort_specs = info.infDatabase.rgSortSpecs;
    if (bytes != sizeof sort_specs) {
        return false;
    }
    data.checksum = Checksum16(sort_specs, bytes);
    return Append(writer, sort_specs, data);
}

bool BackupRecordProperties(const DataWriter& writer, StoredData& data) {
    RecordBuffer* const record = writer.live.DescribedRecord(writer.oid);
    if (record == nullptr || record->count() != writer.block.head().property_count ||
        record->size() != writer.block.head().data_bytes) {
        return false;
    }
    if (record->count() == 0) {
        // No byte of it is written.
        return record->size() == 0 && Append(writer, writer.block.bytes(), data);
    }
    const auto base = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(record->bytes()));
    return PointersToOffsets(record->bytes(), record->size(), record->count(), base) &&
           ChecksumOfProperties(record->bytes(), record->size(), record->count(), data.checksum) &&
           Append(writer, record->bytes(), data);
}

// The most that is mapped at once: the free memory in whole granules; 0 when there is not one.
DWORD ChunkBytes() {
    MEMORYSTATUS memory{};
    memory.dwLength = sizeof memory;
    ::GlobalMemoryStatus(&memory);
    const DWORD available = static_cast<DWORD>(memory.dwAvailPhys);
    return available - available % AllocationGranularity();
}

bool CopyChunk(const DataWriter& writer, HANDLE mapping, DWORD offset, DWORD bytes,
               std::uint16_t& checksum) {
    UniqueView view(::MapViewOfFile(mapping, FILE_MAP_READ, 0, offset, bytes));
    if (!view) {
        return false;
    }
    checksum = Checksum16(view.get(), bytes, checksum);
    return writer.storage.Write(view.get(), bytes) && view.Close();
}

// A file that grew or shrank since it was described fails: cut to the described size it would be no
// version that ever was.
bool CopyFileContents(const DataWriter& writer, StoredData& data) {
    const DWORD total = writer.block.head().data_bytes;
    DWORD size = 0;
    UniqueHandle mapping = MapFileForReading(
        Wide(writer.block.name()), 0, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_RANDOM_ACCESS, &size);
    if (!mapping || size != total) {
        return false;
    }
    const DWORD chunk = ChunkBytes();
    if (chunk == 0) {
        return false;
    }
    data.offset = writer.storage.position();
    data.checksum = kChecksumSeed;
    for (DWORD done = 0; done < total;) {
        const DWORD bytes = std::min(chunk, total - done);
        if (!CopyChunk(writer, mapping.get(), done, bytes, data.checksum)) {
            return false;
        }
        done += bytes;
    }
    mapping.Close();
    return true;
}

}  // namespace

bool BackupRegistryData(const DataWriter& writer, StoredData& data) {
    if (writer.block.type() == ObjectType::kRegistryKey) {
        data.checksum = kNoContents;
        return true;
    }
    const std::uint32_t bytes = writer.block.head().data_bytes;
    const std::uint8_t* const value = writer.live.ReadValue(writer.TolvOID, bytes);
    if (value == nullptr) {
        return false;
    }
    data.checksum = Checksum16(value, bytes);
    return Append(writer, value, data);
}

bool BackupDatabaseData(const DataWriter& writer, StoredData& data) {
    return writer.block.type() == ObjectType::kDatabase ? BackupSortOrders(writer, data)
                                                        : BackupRecordProperties(writer, data);
}

bool BackupFileData(const DataWriter& writer, StoredData& data) {
    data = {};
    if ((writer.block.head().attributes & kAttributesWithoutData) != 0) {
        return true;
    }
    if (writer.block.head().data_bytes != 0 && CopyFileContents(writer, data)) {
        return true;
    }
    data.offset = kNoData;
    data.checksum = kNoContents;
    return writer.block.head().data_bytes == 0;
}

bool BackupStateData(const DataWriter& writer, StoredData& data) {
    data.checksum = 0;
    return Append(writer, writer.live.state_description(), data);
}

bool BackupObjectData(const DataWriter& writer, StoredData& data) {
    switch (writer.block.type()) {
        case ObjectType::kRegistryValue:
        case ObjectType::kRegistryKey: return BackupRegistryData(writer, data);
        case ObjectType::kDatabase:
        case ObjectType::kDatabaseRecord: return BackupDatabaseData(writer, data);
        case ObjectType::kFile: return BackupFileData(writer, data);
        case ObjectType::kState: return BackupStateData(writer, data);
        default: return false;
    }
}

}  // namespace tolvenar
