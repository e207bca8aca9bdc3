#include "storage/format/storage_reader.h"

#include <new>

namespace tolvenar {

bool StorageReader::ReadHead(StorageHeader& header) {
    StorageHeader raw{};
    std::uint32_t read = 0;
    if (!file_.ReadAt(0, &raw, kStorageHeadBytes, read) ||
        !ParseStorageHeader(&raw, read, header)) {
        return false;
    }
    if (header.descriptionBytes == 0) {
        return true;
    }
    const auto bytes = static_cast<std::uint32_t>(StorageHeaderBytesToRead(header));
    return file_.ReadAt(0, &raw, bytes, read) && ParseStorageHeader(&raw, read, header);
}

bool StorageReader::GetInfoFromStorage(std::uint32_t offset, InfoBlock& block) {
    std::uint8_t bytes[kInfoBlockBytes];
    std::uint32_t read = 0;
    return ReadUpTo(offset, bytes, sizeof bytes, read) && ParseInfoBlock(bytes, read, block);
}

bool StorageReader::IsInside(std::uint32_t offset, std::uint32_t bytes) {
    is_size_known_ = is_size_known_ || file_.Size(size_);
    return is_size_known_ && offset <= size_ && bytes <= size_ - offset;
}

std::unique_ptr<std::uint8_t[]> StorageReader::ReadData(std::uint32_t offset, std::uint32_t bytes) {
    std::uint32_t read = 0;
    // A damaged block may claim any length.
    if (!IsInside(offset, bytes)) {
        return nullptr;
    }
    std::unique_ptr<std::uint8_t[]> data(new (std::nothrow) std::uint8_t[bytes + std::size_t{1}]);
    if (data == nullptr || !ReadUpTo(offset, data.get(), bytes, read) || read != bytes) {
        return nullptr;
    }
    return data;
}

}  // namespace tolvenar
