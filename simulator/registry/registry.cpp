#include "simulator/registry/registry.h"

#include <algorithm>

#include "simulator/store/byte_stream.h"

namespace sim::registry {
namespace {

constexpr char16_t kLevel = u'\x01';
constexpr char16_t kValueMark = u'\x02';
constexpr char16_t kBehindLevels = u'\x02';  // sorts behind everything below a key
constexpr std::size_t kMarkUnits = 1;
const std::u16string kKeys = u"r/k/";
const std::u16string kValues = u"r/v/";
const std::u16string kHeld = u"r/l/";
const std::u16string kGeneration = u"r/gen";

struct RootRow {
    const char16_t* long_name;
    const char16_t* short_name;
};
// In the order of the platform's handle values.
constexpr RootRow kRoots[kRootCount] = {
    {u"HKEY_CLASSES_ROOT", u"HKCR"},
    {u"HKEY_CURRENT_USER", u"HKCU"},
    {u"HKEY_LOCAL_MACHINE", u"HKLM"},
    {u"HKEY_USERS", u"HKU"},
};

std::uint32_t SequenceOf(const std::string& entry) { return ByteReader(entry).Number(); }

std::u16string KeyEntry(const KeyId& key) { return kKeys + key; }
std::u16string ValuesOf(const KeyId& key) { return kValues + key + kValueMark; }
std::u16string ValueEntry(const KeyId& key, std::u16string_view name) {
    return ValuesOf(key) + FoldName(name);
}

bool StartsWith(const std::u16string& text, const std::u16string& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

bool IsKeyName(std::u16string_view name) {
    return !name.empty() && name.size() <= kMaxNameUnits &&
           std::none_of(name.begin(), name.end(), [](char16_t unit) { return unit < u' '; });
}

// The names of a key path; one trailing backslash is taken as none. Empty path: no names.
std::vector<std::u16string_view> Split(std::u16string_view path) {
    std::vector<std::u16string_view> names;
    if (!path.empty() && path.back() == u'\\') {
        path.remove_suffix(1);
    }
    if (path.empty()) {
        return names;
    }
    for (;;) {
        const std::size_t end = path.find(u'\\');
        names.push_back(path.substr(0, end));
        if (end == std::u16string_view::npos) {
            return names;
        }
        path.remove_prefix(end + 1);
    }
}

std::size_t LevelsOf(const KeyId& key) {
    return static_cast<std::size_t>(std::count(key.begin(), key.end(), kLevel));
}

Error Check(const KeyId& key, const std::vector<std::u16string_view>& names) {
    const bool good = std::all_of(names.begin(), names.end(), IsKeyName) &&
                      LevelsOf(key) + names.size() <= kMaxLevels;
    return good ? kOk : kInvalidParameter;
}

void EraseRange(LogStore::Change& change, const std::u16string& prefix) {
    std::vector<std::u16string> gone;
    change.ForEach(prefix,
                   [&](const std::u16string& key, const std::string&) { gone.push_back(key); });
    for (const std::u16string& key : gone) {
        change.Erase(key);
    }
}

std::vector<std::u16string> Arranged(const Device& device, std::vector<Enumerated>& items) {
    Arrange(items, device.Setting("order", "stored"));
    std::vector<std::u16string> keys;
    keys.reserve(items.size());
    for (Enumerated& item : items) {
        keys.push_back(std::move(item.key));
    }
    return keys;
}

}  // namespace

KeyId RootId(std::uint32_t root) { return KeyId(1, static_cast<char16_t>(u'0' + root)); }

std::optional<KeyId> RootOfPath(std::u16string_view path, std::u16string& rest) {
    const std::size_t end = std::min(path.find(u'\\'), path.size());
    const std::u16string name = FoldName(path.substr(0, end));
    for (std::uint32_t root = 0; root < kRootCount; ++root) {
        if (name == kRoots[root].long_name || name == kRoots[root].short_name) {
            rest = path.substr(std::min(end + 1, path.size()));
            return RootId(root);
        }
    }
    return std::nullopt;
}

std::u16string RootName(const KeyId& key, bool in_short) {
    const RootRow& row = kRoots[key[0] - u'0'];
    return in_short ? row.short_name : row.long_name;
}

bool IsAtOrBelow(const KeyId& key, const KeyId& ancestor) {
    return StartsWith(key, ancestor) &&
           (key.size() == ancestor.size() || key[ancestor.size()] == kLevel);
}

Error Registry::Place(const KeyId& key, std::u16string_view subkey, KeyId& place) const {
    const std::vector<std::u16string_view> names = Split(subkey);
    place = key;
    for (const std::u16string_view name : names) {
        place += kLevel + FoldName(name);
    }
    return Check(key, names);
}

bool Registry::Exists(const KeyId& key) const {
    if (LevelsOf(key) == 0) {
        return true;
    }
    LogStore::View view(device_.store());
    return view.Find(KeyEntry(key)) != nullptr;
}

Error Registry::Create(const KeyId& key, std::u16string_view subkey, std::u16string_view class_name,
                       KeyId& place, bool& created) {
    const std::vector<std::u16string_view> names = Split(subkey);
    created = false;
    if (const Error error = Check(key, names)) {
        return error;
    }
    LogStore::Change change(device_.store());
    if (!Exists(key)) {
        return kNotFound;
    }
    place = key;
    for (const std::u16string_view name : names) {
        place += kLevel + FoldName(name);
        created = change.Find(KeyEntry(place)) == nullptr;
        if (!created) {
            continue;
        }
        std::string entry;
        PutNumber(entry, NextSequence());
        PutText(entry, name);
        PutText(entry, class_name);
        change.Set(KeyEntry(place), std::move(entry));
    }
    return kOk;
}

bool Registry::Delete(const KeyId& key) {
    LogStore::Change change(device_.store());
    if (change.Find(KeyEntry(key)) == nullptr) {
        return false;
    }
    change.Erase(KeyEntry(key));
    EraseRange(change, KeyEntry(key) + kLevel);
    EraseRange(change, ValuesOf(key));
    EraseRange(change, kValues + key + kLevel);
    change.Erase(kHeld + key);
    EraseRange(change, kHeld + key + kLevel);
    NextSequence();
    return true;
}

bool Registry::Hold(const KeyId& key, bool is_held) {
    LogStore::Change change(device_.store());
    if (change.Find(KeyEntry(key)) == nullptr) {
        return false;
    }
    if (is_held) {
        change.Set(kHeld + key, "");
    } else {
        change.Erase(kHeld + key);
    }
    return true;
}

bool Registry::IsHeld(const KeyId& key) const {
    LogStore::View view(device_.store());
    const std::u16string below = kHeld + key + kLevel;
    const auto at = view.map().lower_bound(below);
    return view.Find(kHeld + key) != nullptr ||
           (at != view.map().end() && StartsWith(at->first, below));
}

KeyNames Registry::NamesOf(const KeyId& key) const {
    LogStore::View view(device_.store());
    const std::string* entry = view.Find(KeyEntry(key));
    KeyNames names;
    if (entry == nullptr) {
        return names;
    }
    ByteReader reader(*entry);
    reader.Number();
    names.name = reader.Text();
    names.class_name = reader.Text();
    return names;
}

std::u16string Registry::PathOf(const KeyId& key, bool short_root) const {
    LogStore::View view(device_.store());
    std::u16string path = RootName(key, short_root);
    for (std::size_t at = key.find(kLevel); at < key.size();) {
        const std::size_t end = std::min(key.find(kLevel, at + kMarkUnits), key.size());
        path += u"\\" + NamesOf(key.substr(0, end)).name;
        at = end;
    }
    return path;
}

std::optional<Value> Registry::Find(const KeyId& key, std::u16string_view name) const {
    LogStore::View view(device_.store());
    const std::string* entry = view.Find(ValueEntry(key, name));
    if (entry == nullptr) {
        return std::nullopt;
    }
    ByteReader reader(*entry);
    reader.Number();
    Value value;
    value.type = reader.Number();
    value.name = reader.Text();
    value.data = reader.Rest();
    return value;
}

// A value that is there keeps its place and the spelling of its name.
void Registry::Set(const KeyId& key, const Value& value) {
    LogStore::Change change(device_.store());
    const std::u16string place = ValueEntry(key, value.name);
    const std::string* old = change.Find(place);
    std::string entry;
    PutNumber(entry, old != nullptr ? SequenceOf(*old) : NextSequence());
    PutNumber(entry, value.type);
    PutText(entry, old != nullptr ? Find(key, value.name)->name : value.name);
    entry += value.data;
    change.Set(place, std::move(entry));
}

bool Registry::DeleteValue(const KeyId& key, std::u16string_view name) {
    LogStore::Change change(device_.store());
    const std::u16string place = ValueEntry(key, name);
    if (change.Find(place) == nullptr) {
        return false;
    }
    change.Erase(place);
    NextSequence();
    return true;
}

std::vector<KeyId> Registry::Subkeys(const KeyId& key) const {
    LogStore::View view(device_.store());
    std::vector<Enumerated> items;
    const std::u16string prefix = KeyEntry(key) + kLevel;
    auto at = view.map().lower_bound(prefix);
    while (at != view.map().end() && StartsWith(at->first, prefix)) {
        device_.store().CountStep();
        items.push_back({SequenceOf(at->second), at->first.substr(kKeys.size())});
        // What stands below a subkey comes right behind it and is passed over.
        const std::u16string below = at->first + kLevel;
        ++at;
        if (at != view.map().end() && StartsWith(at->first, below)) {
            at = view.map().lower_bound(KeyEntry(items.back().key) + kBehindLevels);
        }
    }
    return Arranged(device_, items);
}

std::vector<std::u16string> Registry::Values(const KeyId& key) const {
    LogStore::View view(device_.store());
    std::vector<Enumerated> items;
    const std::u16string prefix = ValuesOf(key);
    view.ForEach(prefix, [&](const std::u16string& place, const std::string& entry) {
        items.push_back({SequenceOf(entry), place.substr(prefix.size())});
    });
    return Arranged(device_, items);
}

std::uint32_t Registry::Generation() const {
    LogStore::View view(device_.store());
    const std::string* stored = view.Find(kGeneration);
    return stored != nullptr ? SequenceOf(*stored) : 0;
}

std::uint32_t Registry::NextSequence() {
    LogStore::Change change(device_.store());
    const std::uint32_t next = Generation() + 1;
    std::string entry;
    PutNumber(entry, next);
    change.Set(kGeneration, std::move(entry));
    return next;
}

}  // namespace sim::registry
