// Reads a storage file: its head, the blocks that records point to, and their data. Platform-free;
// docs/formats/storage-file.md.
#pragma once

#include <cstdint>
#include <memory>

#include "storage/format/byte_file.h"
#include "storage/format/info_block.h"
#include "storage/format/page_cache.h"
#include "storage/format/storage_header.h"
#include "storage/format/stored_objects.h"

namespace tolvenar {

class StorageReader final : public StoredObjects {
public:
    // `file` is borrowed and must not change for as long as this lives.
    explicit StorageReader(ByteReader& file, std::uint32_t page_bytes = PageCache::kPageBytes)
        : file_(file), pages_(file, page_bytes) {}

    // The head, in two reads: one tells the length of the description, one takes it. False when a
    // read fails or the head is not whole.
    bool ReadHead(StorageHeader& header);
    // The block at `offset`. False when it cannot be read, is not whole or has a name that does not
    // fit.
    bool GetInfoFromStorage(std::uint32_t offset, InfoBlock& block) override;
    // Up to `bytes` bytes at `offset`, as ByteReader::ReadAt.
    bool ReadUpTo(std::uint32_t offset, void* buffer, std::uint32_t bytes, std::uint32_t& read) {
        return pages_.ReadAt(offset, buffer, bytes, read);
    }
    // All of `bytes` bytes at `offset` in a buffer of their own; null when they are not all there,
    // or there is no memory.
    std::unique_ptr<std::uint8_t[]> ReadData(std::uint32_t offset, std::uint32_t bytes);
    // So many bytes at `offset` are read next, in pieces: the first of them may fetch the others.
    void Expect(std::uint32_t offset, std::uint32_t bytes) { pages_.Expect(offset, bytes); }

private:
    bool IsInside(std::uint32_t offset, std::uint32_t bytes);

    ByteReader& file_;
    PageCache pages_;
    std::uint32_t size_ = 0;  // of the file; asked for when it is first needed
    bool is_size_known_ = false;
};

}  // namespace tolvenar
