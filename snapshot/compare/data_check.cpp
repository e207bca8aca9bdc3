#include "snapshot/compare/data_check.h"

#include <algorithm>
#include <memory>
#include <string_view>

#include "snapshot/compare/block_check.h"
#include "snapshot/records/checksum.h"
#include "storage/format/property_encoding.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kChunkBytes = 2048;

bool HasWholeName(const InfoBlock& block) {
    return std::u16string_view(block.name()).size() * sizeof(char16_t) == block.head().name_bytes;
}

// A file may be larger than the memory.
bool HasChecksum(StorageReader& stored, const ObjectRecord& record, const InfoBlock& block) {
    std::uint16_t checksum = kChecksumSeed;
    std::uint8_t chunk[kChunkBytes];
    stored.Expect(record.data_offset, block.head().data_bytes);
    for (std::uint32_t done = 0; done < block.head().data_bytes;) {
        const std::uint32_t bytes = std::min(kChunkBytes, block.head().data_bytes - done);
        std::uint32_t read = 0;
        if (!stored.ReadUpTo(record.data_offset + done, chunk, bytes, read) || read != bytes) {
            return false;
        }
        checksum = Checksum16(chunk, bytes, checksum);
        done += bytes;
    }
    return checksum == record.content_fingerprint;
}

bool HasSoundProperties(StorageReader& stored, const ObjectRecord& record, const InfoBlock& block) {
    const std::uint32_t bytes = block.head().data_bytes;
    const std::uint32_t count = block.head().property_count;
    if (count == 0) {
        return bytes == 0;
    }
    const std::unique_ptr<std::uint8_t[]> data = stored.ReadData(record.data_offset, bytes);
    std::uint16_t checksum = 0;
    // Turning the offsets at 0 changes nothing and looks at every place.
    return data != nullptr && OffsetsToPointers(data.get(), bytes, count, 0) &&
           ChecksumOfProperties(data.get(), bytes, count, checksum) &&
           checksum == record.content_fingerprint;
}

}  // namespace

bool DataAreSound(StorageReader& stored, const ObjectRecord& record, const InfoBlock& block) {
    switch (record.type) {
        case ObjectType::kRegistryValue: return HasChecksum(stored, record, block);
        case ObjectType::kDatabaseRecord: return HasSoundProperties(stored, record, block);
        case ObjectType::kFile:
            return HasWholeName(block) &&
                   (!HasStoredData(block) || HasChecksum(stored, record, block));
        default: return true;
    }
}

}  // namespace tolvenar
