#include "pc/storage/salvaged_object.h"

#include <algorithm>
#include <vector>

#include "snapshot/compare/block_check.h"
#include "snapshot/compare/data_check.h"
#include "snapshot/records/checksum.h"
#include "snapshot/records/registry_objects.h"
#include "storage/format/property_encoding.h"

namespace tolvenar::pc {
namespace {

constexpr std::uint32_t kChunkBytes = 64 * 1024;
constexpr std::uint16_t kEmptyFile = 0xFFFF;  // the checksum of no bytes
constexpr std::uint32_t kDataBits = 16;       // where the identifier has its data's checksum

// False when the data cannot be read.
bool ChecksumOfData(StorageReader& reader, const ObjectRecord& record, const InfoBlock& block,
                    std::uint16_t& checksum) {
    std::vector<char> chunk(std::min(kChunkBytes, block.head().data_bytes));
    checksum = kChecksumSeed;
    for (std::uint32_t done = 0; done < block.head().data_bytes;) {
        const std::uint32_t bytes = std::min(kChunkBytes, block.head().data_bytes - done);
        std::uint32_t read = 0;
        if (!reader.ReadUpTo(record.data_offset + done, chunk.data(), bytes, read) ||
            read != bytes) {
            return false;
        }
        checksum = Checksum16(chunk.data(), bytes, checksum);
        done += bytes;
    }
    return true;
}

bool ChecksumOfRecord(StorageReader& reader, const ObjectRecord& record, const InfoBlock& block,
                      std::uint16_t& checksum) {
    const std::uint32_t bytes = block.head().data_bytes;
    const auto data = reader.ReadData(record.data_offset, bytes);
    return data != nullptr &&
           ChecksumOfProperties(data.get(), bytes, block.head().property_count, checksum);
}

bool MakeFingerprint(StorageReader& reader, const InfoBlock& block, ObjectRecord& record) {
    switch (record.type) {
        case ObjectType::kRegistryKey: record.content_fingerprint = kEmptyFile; return true;
        case ObjectType::kRegistryValue:
            return ChecksumOfData(reader, record, block, record.content_fingerprint);
        case ObjectType::kDatabaseRecord:
            return ChecksumOfRecord(reader, record, block, record.content_fingerprint);
        case ObjectType::kFile:
            if (HasStoredData(block)) {
                return ChecksumOfData(reader, record, block, record.content_fingerprint);
            }
            record.content_fingerprint =
                (block.head().attributes & kAttributesWithoutData) != 0 ? 0 : kEmptyFile;
            return true;
        default: return true;
    }
}

std::uint32_t GeneratedId(StorageReader& reader, const InfoBlock& block,
                          const ObjectRecord& record) {
    const std::u16string_view name(block.name(), block.head().name_bytes / sizeof(char16_t));
    const std::uint32_t id = MakeKeyTolvOID(block.head().hive, name);
    std::uint16_t checksum = 0;
    if (record.type == ObjectType::kRegistryKey ||
        !ChecksumOfData(reader, record, block, checksum)) {
        return id;
    }
    return (id & 0xFFFF) | (checksum & 0xFFu) << kDataBits;
}

}  // namespace

StoredObject DescribeFound(StorageReader& reader, const FoundBlock& found) {
    StoredObject object;
    InfoBlock block;
    if (!reader.GetInfoFromStorage(found.offset, block)) {
        object.is_damaged = true;
        return object;
    }
    const InfoBlockHead& head = block.head();
    object.name.assign(block.name(), head.name_bytes / sizeof(char16_t));
    object.first = head.hive;
    object.second = head.value_type;
    object.time = FileTime::Of(head.time_low, head.time_high);
    object.data_bytes = head.data_bytes;
    object.has_data = HasStoredData(block);

    ObjectRecord& record = object.record;
    record.type = block.type();
    record.propOffset = found.offset;
    record.data_offset =
        object.has_data ? found.offset + static_cast<std::uint32_t>(block.size()) : kNoData;
    record.info_checksum = Checksum16(block.bytes(), block.size());
    if (TraitsOf(record.type).id == IdSource::kObjectStore && found.proof != nullptr) {
        record.dwOID = found.proof->dwOID;
    }
    if (IsRegistryObject(record)) {
        record.TolvOID = GeneratedId(reader, block, record);
    }
    object.is_damaged =
        found.is_contradicted || !MakeFingerprint(reader, block, record) ||
        !DataAreSound(reader, found.proof != nullptr ? *found.proof : record, block);
    if (record.type == ObjectType::kDatabase && found.proof != nullptr) {
        record.content_fingerprint = found.proof->content_fingerprint;
    }
    const std::size_t separator = object.name.find(kNameSeparator);
    if (record.type == ObjectType::kRegistryValue && separator != object.name.npos) {
        object.value_name = object.name.substr(separator + 1);
        object.name.resize(separator);
    }
    return object;
}

}  // namespace tolvenar::pc
