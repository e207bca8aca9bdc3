// The registry-object table of one operation: what a registry scan met, found by generated
// identifier, and the making of those identifiers. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "snapshot/records/hash_index.h"
#include "snapshot/records/slabs.h"
#include "snapshot/records/text_slabs.h"

namespace tolvenar {

constexpr char16_t kNameSeparator = 0x00FF;  // between key path and value name

// Identifier of a registry object: checksum of the full name with its terminator in bits 0-15, low
// byte of the data's checksum in bits 16-23, collision counter in bits 24-31. The data of a key are
// its path without terminator.
std::uint32_t MakeTolvOID(const char16_t* path, const void* data, std::size_t data_bytes,
                          std::uint16_t counter);

// The same of a key, without counter.
std::uint32_t MakeKeyTolvOID(std::uint32_t hive, std::u16string_view key_path);

// Only these bits are compared between scans: the collision counter depends on the order of a scan.
constexpr std::uint32_t kTolvOidMask = 0x00FFFFFF;
constexpr std::uint32_t kCounterStep = 0x01000000;
constexpr int kCounterValues = 256;  // the counter has 8 bits

// A key or a value as a walk of the registry meets it; text and data are the walk's.
struct RegistryEntry {
    bool is_key;
    std::uint32_t hive;                    // root key handle value
    const char16_t* key_path;              // empty for the hive's root
    const char16_t* value_name = nullptr;  // this and the following are a value's
    std::uint32_t value_type = 0;
    const void* data = nullptr;
    std::uint32_t data_bytes = 0;
};

// An entry of the table.
struct RegistryObject {
    std::uint32_t TolvOID;
    std::uint32_t hive;  // root key handle value
    bool is_key;
    std::uint32_t value_type;  // 0 for a key
    std::uint32_t data_bytes;
    const char16_t* key_path;    // the table's; those of one key may share it
    const char16_t* value_name;  // the table's; null for a key
    RegistryObject* bucket_next;

    std::uint32_t Hash() const { return HashOf(TolvOID); }
    // Colliding identifiers differ in their upper bits alone.
    static std::uint32_t HashOf(std::uint32_t TolvOID) {
        return MixBits(0, TolvOID ^ TolvOID >> 16);
    }
};

// Names as the log of a collision tells them; null for what there is not.
struct HolderNames {
    const char16_t* key_path = nullptr;
    const char16_t* value_name = nullptr;
};

// The identifiers that objects outside the table have: those of the state that a scan is compared
// with.
class IdentifierHolders {
public:
    // Whether an object other than `entry` has this identifier. Its names are in `names` then,
    // until the next call.
    virtual bool IsHeldByAnother(std::uint32_t TolvOID, const RegistryEntry& entry,
                                 HolderNames& names) = 0;

protected:
    ~IdentifierHolders() = default;
};

class RegistryObjects {
public:
    RegistryObjects() = default;
    RegistryObjects(const RegistryObjects&) = delete;
    RegistryObjects& operator=(const RegistryObjects&) = delete;

    // Enters an object with copies of the texts. 0 when the key path is absent or memory is short;
    // nothing is entered then.
    int RegObjectAdd(std::uint32_t TolvOID, const RegistryEntry& entry);
    // The newest entry with this identifier, or null.
    const RegistryObject* RegObjectFind(std::uint32_t TolvOID) const;
    // An object could not be entered for want of memory since the table was cleared.
    bool lacks_memory() const { return lacks_memory_; }
    void RegObjectClear();

    // Takes the first identifier that neither the table nor `holders` (may be null) have for
    // another object, logging each collision, and enters the object. False when 256 tries found
    // none (the counter has 8 bits) or memory is short; else the identifier is in `TolvOID_out`.
    bool Generate(const char16_t* full_name, const RegistryEntry& entry, std::uint32_t& TolvOID_out,
                  IdentifierHolders* holders = nullptr);

private:
    const char16_t* PathOf(const RegistryEntry& entry);
    bool IsTaken(std::uint32_t TolvOID, const RegistryEntry& entry, IdentifierHolders* holders,
                 HolderNames& names) const;

    Slabs<RegistryObject> objects_;
    TextSlabs texts_;
    const char16_t* last_path_ = nullptr;  // of the object that was entered last
    HashIndex<RegistryObject> index_;      // of equal identifiers the newest stands first
    bool lacks_memory_ = false;
};

}  // namespace tolvenar
