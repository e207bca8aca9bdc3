#include "snapshot/records/registry_objects.h"

#include "snapshot/records/checksum.h"
#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"

namespace tolvenar {
namespace {

void LogCollision(const char16_t* full_name, const HolderNames& present, std::uint32_t TolvOID) {
    TextBuffer<1024> text;
    text.Append(full_name).Append(u"\r\n");
    text.Append(present.key_path).Append(u"!").Append(present.value_name).Append(u"\r\n");
    text.AppendHex(TolvOID, 8);
    LogMessage(text.text(), u"OID generation", kLogNote);
}

}  // namespace

std::uint32_t MakeTolvOID(const char16_t* path, const void* data, std::size_t data_bytes,
                          std::uint16_t counter) {
    const std::size_t path_bytes = (std::u16string_view(path).size() + 1) * sizeof(char16_t);
    const std::uint32_t low = Checksum16(path, path_bytes);
    const std::uint32_t high = (Checksum16(data, data_bytes) & 0xFFu) + (counter * 0x100u);
    return (high << 16) + low;
}

std::uint32_t MakeKeyTolvOID(std::uint32_t hive, std::u16string_view key_path) {
    constexpr char16_t kTerminator = 0;
    TextBuffer<9> hive_digits;
    hive_digits.AppendHex(hive);
    const std::size_t path_bytes = key_path.size() * sizeof(char16_t);
    std::uint16_t name = Checksum16(hive_digits.text(), hive_digits.length() * sizeof(char16_t));
    name = Checksum16(key_path.data(), path_bytes, name);
    name = Checksum16(&kTerminator, sizeof kTerminator, name);
    return (Checksum16(key_path.data(), path_bytes) & 0xFFu) << 16 | name;
}

// The values of a key come behind all that is below it: the first of them looks the path up.
const char16_t* RegistryObjects::PathOf(const RegistryEntry& entry) {
    const std::u16string_view path(entry.key_path);
    if (last_path_ != nullptr && path == last_path_) {
        return last_path_;
    }
    // A key under another collision counter is not found, and its path stands in the table twice.
    const RegistryObject* const key =
        entry.is_key ? nullptr : RegObjectFind(MakeKeyTolvOID(entry.hive, path));
    last_path_ =
        key != nullptr && path == key->key_path ? key->key_path : texts_.Copy(entry.key_path);
    return last_path_;
}

int RegistryObjects::RegObjectAdd(std::uint32_t TolvOID, const RegistryEntry& entry) {
    if (entry.key_path == nullptr) {
        return 0;
    }
    const char16_t* const key_path = index_.ReserveOneMore() ? PathOf(entry) : nullptr;
    const char16_t* const value_name =
        entry.value_name == nullptr ? nullptr : texts_.Copy(entry.value_name);
    const bool has_texts =
        key_path != nullptr && (entry.value_name == nullptr || value_name != nullptr);
    RegistryObject* const object = has_texts ? objects_.Take() : nullptr;
    if (object == nullptr) {
        lacks_memory_ = true;
        return 0;
    }
    object->TolvOID = TolvOID;
    object->hive = entry.hive;
    object->is_key = entry.is_key;
    object->value_type = entry.value_type;
    object->data_bytes = entry.data_bytes;
    object->key_path = key_path;
    object->value_name = value_name;
    index_.Add(*object);
    return 1;
}

const RegistryObject* RegistryObjects::RegObjectFind(std::uint32_t TolvOID) const {
    return index_.Find(RegistryObject::HashOf(TolvOID), [TolvOID](const RegistryObject& object) {
        return object.TolvOID == TolvOID;
    });
}

void RegistryObjects::RegObjectClear() {
    index_.Clear();
    objects_.Clear();
    texts_.Clear();
    last_path_ = nullptr;
    lacks_memory_ = false;
}

bool RegistryObjects::IsTaken(std::uint32_t TolvOID, const RegistryEntry& entry,
                              IdentifierHolders* holders, HolderNames& names) const {
    if (const RegistryObject* present = RegObjectFind(TolvOID)) {
        names = {present->key_path, present->value_name};
        return true;
    }
    return holders != nullptr && holders->IsHeldByAnother(TolvOID, entry, names);
}

bool RegistryObjects::Generate(const char16_t* full_name, const RegistryEntry& entry,
                               std::uint32_t& TolvOID_out, IdentifierHolders* holders) {
    if (entry.key_path == nullptr) {
        return false;
    }
    const void* data = entry.is_key ? entry.key_path : entry.data;
    const std::size_t data_bytes =
        entry.is_key ? std::u16string_view(entry.key_path).size() * sizeof(char16_t)
                     : entry.data_bytes;
    std::uint32_t TolvOID = MakeTolvOID(full_name, data, data_bytes, 0);
    for (int counter = 0; counter < kCounterValues; ++counter, TolvOID += kCounterStep) {
        HolderNames holder;
        if (!IsTaken(TolvOID, entry, holders, holder)) {
            TolvOID_out = TolvOID;
            return RegObjectAdd(TolvOID, entry) != 0;
        }
        LogCollision(full_name, holder, TolvOID);
    }
    return false;
}

}  // namespace tolvenar
