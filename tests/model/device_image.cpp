#include "tests/model/device_image.h"

#include <algorithm>

#include "simulator/files/files.h"
#include "simulator/registry/registry.h"

namespace tests {
namespace {

using sim::databases::DatabaseStore;
using sim::registry::KeyId;
using sim::registry::Registry;

const std::u16string kOwnKey = u"HKCU\\Software\\Kestrin2";
const std::wstring kCard = L"\\Storage Card";

template <typename Text>
std::string Narrow(const Text& text) {
    std::string narrow;
    for (const auto unit : text) {
        narrow += unit < 0x7F ? std::string(1, static_cast<char>(unit))
                              : "{" + std::to_string(static_cast<unsigned>(unit)) + "}";
    }
    return narrow;
}

void AddFiles(sim::Device& device, DeviceImage& image) {
    for (const sim::files::Entry& entry : sim::files::ListAll(device)) {
        if (entry.on_card || entry.path == kCard) {
            continue;
        }
        ImageFile& file = image.files[entry.path];
        file.is_folder = entry.is_folder;
        file.oid = entry.oid;
        file.content.attributes = entry.attributes;
        if (!entry.is_folder) {
            file.content.modified = entry.modified;
            file.content.bytes = sim::files::Get(device, entry.path);
        }
    }
}

void AddKey(const Registry& registry, const KeyId& key, DeviceImage& image) {
    const std::u16string path = registry.PathOf(key, true);
    if (path == kOwnKey) {
        return;
    }
    if (key.size() > 1) {  // a root is always there
        auto& values = image.keys[path];
        for (const std::u16string& name : registry.Values(key)) {
            const auto value = registry.Find(key, name);
            values[value->name] = {value->type, value->data};
        }
    }
    for (const KeyId& subkey : registry.Subkeys(key)) {
        AddKey(registry, subkey, image);
    }
}

void AddDatabases(sim::Device& device, DeviceImage& image) {
    const DatabaseStore store(device);
    for (const std::uint32_t oid : store.All(0)) {
        const auto shape = store.Get(oid);
        ImageDatabase& database = image.databases[shape->name];
        database.shape = *shape;
        for (const std::uint32_t record : store.Records(oid)) {
            database.records[record] = *store.Read(oid, record);
        }
    }
}

// Each object's name under all that tells its version. Sort orders are told by their number alone.
std::multimap<std::string, std::string> Versions(const DeviceImage& image) {
    std::multimap<std::string, std::string> versions;
    for (const auto& [path, file] : image.files) {
        const std::string line = file.is_folder
                                     ? FolderLine(path, file.content.attributes)
                                     : FileLine(path, file.content.attributes,
                                                file.content.modified, file.content.bytes);
        versions.emplace(line + " " + std::to_string(file.oid), FileName(path));
    }
    for (const auto& [path, values] : image.keys) {
        versions.emplace(KeyLine(path), KeyName(path));
        for (const auto& [name, value] : values) {
            versions.emplace(ValueLine(path, name, value.first, value.second),
                             ValueName(path, name));
        }
    }
    for (const auto& [name, database] : image.databases) {
        versions.emplace(DatabaseName(name) + " " + std::to_string(database.shape.oid) + " " +
                             std::to_string(database.shape.type) + " " +
                             std::to_string(database.shape.sort_orders.size()),
                         DatabaseName(name));
        for (const auto& [oid, record] : database.records) {
            versions.emplace(RecordLine(name, record) + " " + std::to_string(oid),
                             RecordName(name, oid));
        }
    }
    return versions;
}

// Calls `act` for the states around `restored` that hold something without a gap, and for that one.
template <typename Holds, typename Act>
void ForEachHolding(std::vector<DeviceImage>& states, std::size_t restored, Holds holds, Act act) {
    std::size_t first = restored;
    std::size_t last = restored;
    while (first != 0 && holds(states[first - 1])) {
        --first;
    }
    while (last + 1 != states.size() && holds(states[last + 1])) {
        ++last;
    }
    for (std::size_t state = first; state <= last; ++state) {
        act(states[state]);
    }
}

// The new id of each record whose id is gone: that of a record that has none yet, of the same
// contents.
std::map<std::uint32_t, std::uint32_t> NewIds(const ImageDatabase& before,
                                              const ImageDatabase& now) {
    std::map<std::uint32_t, sim::databases::Record> free = now.records;
    for (const auto& [oid, record] : before.records) {
        free.erase(oid);
    }
    std::map<std::uint32_t, std::uint32_t> ids;
    for (const auto& [oid, record] : before.records) {
        const sim::databases::Record& wanted = record;
        const auto found = std::find_if(free.begin(), free.end(), [&](const auto& other) {
            return SameRecord(other.second, wanted);
        });
        if (now.records.count(oid) == 0 && found != free.end()) {
            ids[oid] = found->first;
            free.erase(found);
        }
    }
    return ids;
}

void FollowRecordIds(std::vector<DeviceImage>& states, std::size_t restored,
                     const std::u16string& name, const ImageDatabase& before,
                     const ImageDatabase& now) {
    for (const auto& [old_id, new_id] : NewIds(before, now)) {
        const std::uint32_t old = old_id;
        const std::uint32_t given = new_id;
        const sim::databases::Record record = before.records.at(old);
        ForEachHolding(
            states, restored,
            [&](const DeviceImage& state) {
                const auto database = state.databases.find(name);
                if (database == state.databases.end()) {
                    return false;
                }
                const auto found = database->second.records.find(old);
                return found != database->second.records.end() && SameRecord(found->second, record);
            },
            [&](DeviceImage& state) {
                auto& records = state.databases.at(name).records;
                records.erase(old);
                records[given] = record;
            });
    }
}

}  // namespace

bool SameVersion(const ImageFile& a, const ImageFile& b) {
    return a.is_folder == b.is_folder && a.oid == b.oid &&
           a.content.attributes == b.content.attributes &&
           a.content.modified == b.content.modified && a.content.bytes == b.content.bytes;
}

bool SameRecord(const sim::databases::Record& a, const sim::databases::Record& b) {
    return sim::databases::Encode(a) == sim::databases::Encode(b);
}

void FollowIds(std::vector<DeviceImage>& states, std::size_t restored, const DeviceImage& now) {
    const DeviceImage before = states.at(restored);
    for (const auto& entry : before.files) {
        const std::wstring& path = entry.first;
        ForEachHolding(
            states, restored,
            [&](const DeviceImage& state) {
                const auto found = state.files.find(path);
                return found != state.files.end() && SameVersion(found->second, entry.second);
            },
            [&](DeviceImage& state) { state.files.at(path).oid = now.files.at(path).oid; });
    }
    for (const auto& entry : before.databases) {
        const std::u16string& name = entry.first;
        ForEachHolding(
            states, restored,
            [&](const DeviceImage& state) {
                const auto found = state.databases.find(name);
                return found != state.databases.end() &&
                       found->second.shape.oid == entry.second.shape.oid;
            },
            [&](DeviceImage& state) {
                state.databases.at(name).shape.oid = now.databases.at(name).shape.oid;
            });
        FollowRecordIds(states, restored, name, entry.second, now.databases.at(name));
    }
}

DeviceModel DeviceImage::Model() const {
    DeviceModel model;
    for (const auto& [path, file] : files) {
        if (file.is_folder) {
            model.folders[path] = file.content.attributes;
        } else {
            model.files[path] = file.content;
        }
    }
    model.keys = keys;
    for (const auto& [name, database] : databases) {
        ModelDatabase& made = model.databases[name];
        made.shape = database.shape;
        for (const auto& [oid, record] : database.records) {
            made.records.push_back(record);
        }
    }
    return model;
}

DeviceImage ImageOf(sim::Device& device) {
    const sim::LogStore::View view(device.store());
    DeviceImage image;
    AddFiles(device, image);
    const Registry registry(device);
    for (std::uint32_t root = 0; root < sim::registry::kRootCount; ++root) {
        AddKey(registry, sim::registry::RootId(root), image);
    }
    AddDatabases(device, image);
    return image;
}

std::string FileName(const std::wstring& path) { return "file " + Narrow(path); }
std::string KeyName(const std::u16string& path) { return "key " + Narrow(path); }
std::string ValueName(const std::u16string& path, const std::u16string& name) {
    return "value " + Narrow(path) + " [" + Narrow(name) + "]";
}
std::string DatabaseName(const std::u16string& name) { return "database " + Narrow(name); }
std::string RecordName(const std::u16string& database, std::uint32_t oid) {
    return "record " + Narrow(database) + " " + std::to_string(oid);
}

std::multiset<std::string> ExpectedBackup(const DeviceImage& last, const DeviceImage& now) {
    const auto before = Versions(last);
    const auto after = Versions(now);
    std::multiset<std::string> lines;
    for (const auto& [version, name] : before) {
        if (after.count(version) == 0) {
            lines.insert("- " + name);
        }
    }
    for (const auto& [version, name] : after) {
        if (before.count(version) == 0) {
            lines.insert("+ " + name);
        }
    }
    return lines;
}

}  // namespace tests
