// The device's registry: four roots with keys and values, case-insensitive and case-preserving.
// Kept in the device's log, never in the host's registry:
//   r/k/<key>                     a key: sequence, name, class
//   r/v/<key> U+0002 <name>       a value: sequence, type, name, data
//   r/l/<key>                     the key is held open by another program
//   r/gen                         counts every key and value that came or went
// where <key> is the root's digit, then U+0001 and the folded name for each level.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/store/device.h"
#include "simulator/store/names.h"

namespace sim::registry {

// The platform's error codes that registry calls answer.
enum Error : long {
    kOk = 0,
    kNotFound = 2,
    kAccessDenied = 5,
    kInvalidHandle = 6,
    kInvalidParameter = 87,
    kMoreData = 234,
    kNoMoreItems = 259,
};

// The platform's value types that texts name.
enum Type : std::uint32_t {
    kNone = 0,
    kSz = 1,
    kExpandSz = 2,
    kBinary = 3,
    kDword = 4,
    kMultiSz = 7,
};

constexpr std::size_t kMaxNameUnits = 255;
constexpr std::size_t kMaxLevels = 16;
constexpr std::uint32_t kRootCount = 4;

// A key's place in the log, the same for every spelling of its name. The root's digit alone is a
// root.
using KeyId = std::u16string;

KeyId RootId(std::uint32_t root);
// HKEY_LOCAL_MACHINE and HKLM, in any case; the rest of `path` behind the root in `rest`.
std::optional<KeyId> RootOfPath(std::u16string_view path, std::u16string& rest);
// "HKEY_LOCAL_MACHINE" of a key below it, or "HKLM".
std::u16string RootName(const KeyId& key, bool in_short);
bool IsAtOrBelow(const KeyId& key, const KeyId& ancestor);

struct Value {
    std::u16string name;
    std::uint32_t type = kNone;
    std::string data;
};

struct KeyNames {
    std::u16string name;
    std::u16string class_name;
};

class Registry {
public:
    explicit Registry(Device& device) : device_(device) {}

    // Where `subkey` of `key` is, whether it is there or not. kInvalidParameter when the text is no
    // key path: an empty or too long name, a control character, too many levels.
    Error Place(const KeyId& key, std::u16string_view subkey, KeyId& place) const;
    bool Exists(const KeyId& key) const;
    // Makes the key and the keys above it. `created` tells whether the last one is new.
    Error Create(const KeyId& key, std::u16string_view subkey, std::u16string_view class_name,
                 KeyId& place, bool& created);
    // Deletes the key with everything below it; false when there is none.
    bool Delete(const KeyId& key);

    // Another program holds the key open, or no longer. False when it is not there.
    bool Hold(const KeyId& key, bool is_held);
    // Whether another program holds the key or one below it.
    bool IsHeld(const KeyId& key) const;

    KeyNames NamesOf(const KeyId& key) const;
    // "HKLM\Software\…" or with the root's full name.
    std::u16string PathOf(const KeyId& key, bool short_root) const;
    std::optional<Value> Find(const KeyId& key, std::u16string_view name) const;
    void Set(const KeyId& key, const Value& value);
    bool DeleteValue(const KeyId& key, std::u16string_view name);

    // What a key holds, in the order that the device's setting "order" tells. The keys of `Values`
    // are the folded names. Whoever keeps the result compares `Generation` before using it again.
    std::vector<KeyId> Subkeys(const KeyId& key) const;
    std::vector<std::u16string> Values(const KeyId& key) const;
    std::uint32_t Generation() const;

    Device& device() const { return device_; }

private:
    std::uint32_t NextSequence();

    Device& device_;
};

}  // namespace sim::registry
