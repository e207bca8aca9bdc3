// What the fuzzers share: values, blocks and records cut out of the input.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/object_list.h"
#include "storage/format/storage_reader.h"
#include "tests/support/bytes.h"
#include "tests/support/memory_bytes.h"

namespace tolvenar {

inline void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// The input from its front; what is missing at its end is zero.
class FuzzInput {
public:
    FuzzInput(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    std::uint8_t Byte() { return Take<std::uint8_t>(); }
    std::uint16_t Half() { return Take<std::uint16_t>(); }
    std::uint32_t Word() { return Take<std::uint32_t>(); }
    // Up to as many bytes.
    Bytes TakeBytes(std::size_t bytes) {
        const Bytes taken(reinterpret_cast<const char*>(data_), std::min(bytes, size_));
        data_ += taken.size();
        size_ -= taken.size();
        return taken;
    }
    Bytes Rest() { return TakeBytes(size_); }
    // Units of one byte each, none of them zero.
    std::u16string Text(std::size_t units) {
        std::u16string text;
        for (const char unit : TakeBytes(units)) {
            text += unit == 0 ? u'0' : static_cast<char16_t>(static_cast<std::uint8_t>(unit));
        }
        return text;
    }
    bool empty() const { return size_ == 0; }

private:
    template <typename T>
    T Take() {
        T value{};
        const Bytes bytes = TakeBytes(sizeof value);
        std::memcpy(&value, bytes.data(), bytes.size());
        return value;
    }

    const std::uint8_t* data_;
    std::size_t size_;
};

// The input as a storage file; every live object has the block that its low id bits choose, and
// some stand in a table of registry objects, where key path and value name are apart.
class FuzzSource : public StoredObjects, public LiveObjects, public InfoSource {
public:
    explicit FuzzSource(Bytes file)
        : InfoSource(static_cast<StoredObjects&>(*this), static_cast<LiveObjects&>(*this)),
          file_(std::move(file)) {}
    FuzzSource(const std::uint8_t* data, std::size_t size)
        : FuzzSource(Bytes(reinterpret_cast<const char*>(data), size)) {}

    bool GetInfoFromStorage(std::uint32_t offset, InfoBlock& block) override {
        block.Clear();
        if (failing_reads > 0) {
            --failing_reads;
            return false;
        }
        return storage_.GetInfoFromStorage(offset, block);
    }
    bool GetOIDInfo(std::uint32_t TolvOID, std::uint32_t dwOID, InfoBlock& block) override {
        block.Clear();
        return (TolvOID & 1) == 0 &&
               storage_.GetInfoFromStorage((TolvOID >> 8 & 0xFF) + (dwOID & 0xFF), block);
    }
    const RegistryObject* FindRegistryObject(std::uint32_t TolvOID) override {
        if ((TolvOID & 2) == 0 || !GetOIDInfo(TolvOID, 0, named_)) {
            return nullptr;
        }
        char16_t* const name = named_.name();
        const std::size_t separator = std::u16string_view(name).rfind(kNameSeparator);
        object_.key_path = name;
        object_.value_name = nullptr;
        if (separator != std::u16string_view::npos) {
            name[separator] = 0;
            object_.value_name = name + separator + 1;
        }
        return &object_;
    }

    StorageReader& storage() { return storage_; }

    int failing_reads = 0;  // so many stored blocks cannot be read for a moment

private:
    MemoryBytes file_;
    StorageReader storage_{file_};
    InfoBlock named_;
    RegistryObject object_{};
};

// Every 32 bytes are a record; a rest is left.
inline std::unique_ptr<ObjectList> LoadRecords(const void* bytes, std::size_t size) {
    auto list = ObjectList::CreateList();
    const auto* begin = static_cast<const std::uint8_t*>(bytes);
    for (; size >= sizeof(ObjectRecord); size -= sizeof(ObjectRecord)) {
        ObjectRecord record;
        std::memcpy(&record, begin, sizeof record);
        list->AddObject(record);
        begin += sizeof record;
    }
    return list;
}

}  // namespace tolvenar
