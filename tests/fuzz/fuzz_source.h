// What the fuzzers share: blocks and records cut out of the input.
#pragma once

#include <cstdlib>
#include <cstring>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/object_list.h"
#include "storage/format/storage_reader.h"
#include "tests/support/memory_bytes.h"

namespace tolvenar {

// The input as a storage file; every live object has the block that its low id bits choose.
class FuzzSource : public LiveObjects, public InfoSource {
public:
    FuzzSource(const std::uint8_t* data, std::size_t size)
        : InfoSource(storage_, static_cast<LiveObjects&>(*this)),
          file_(std::string(reinterpret_cast<const char*>(data), size)) {}

    bool GetOIDInfo(std::uint32_t TolvOID, std::uint32_t dwOID, InfoBlock& block) override {
        block.Clear();
        return (TolvOID & 1) == 0 &&
               storage_.GetInfoFromStorage((TolvOID >> 8 & 0xFF) + (dwOID & 0xFF), block);
    }
    const RegistryObject* FindRegistryObject(std::uint32_t) override { return nullptr; }

private:
    MemoryBytes file_;
    StorageReader storage_{file_};
};

inline void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

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
