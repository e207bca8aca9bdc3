// What the fuzzers share: blocks and records cut out of the input.
#pragma once

#include <cstring>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/object_list.h"

namespace tolvenar {

// Parses stored blocks out of the input, as from a storage file; every live object has the name
// that its low id bits choose.
class FuzzSource : public InfoSource {
public:
    FuzzSource(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    bool GetOIDInfo(std::uint32_t TolvOID, std::uint32_t dwOID, InfoBlock& block) override {
        block.Clear();
        return (TolvOID & 1) == 0 &&
               GetInfoFromStorage((TolvOID >> 8 & 0xFF) + (dwOID & 0xFF), block);
    }
    bool GetInfoFromStorage(std::uint32_t offset, InfoBlock& block) override {
        block.Clear();
        return offset <= size_ && ParseInfoBlock(data_ + offset, size_ - offset, block);
    }

private:
    const std::uint8_t* data_;
    std::size_t size_;
};

// Every 32 bytes from `begin` on are a record; a rest is left.
inline std::unique_ptr<ObjectList> LoadRecords(const std::uint8_t* begin, std::size_t size) {
    auto list = ObjectList::CreateList();
    for (; size >= sizeof(ObjectRecord); size -= sizeof(ObjectRecord)) {
        ObjectRecord record;
        std::memcpy(&record, begin, sizeof record);
        list->AddObject(record);
        begin += sizeof record;
    }
    return list;
}

}  // namespace tolvenar
