#include "tests/model/object_versions.h"

#include <algorithm>

#include "tests/support/text.h"

namespace tests {
namespace {

// Each object's name under all that tells its version. Sort orders are told by their number alone.
std::multimap<std::string, std::string> Versions(const DeviceImage& image) {
    std::multimap<std::string, std::string> versions;
    for (const auto& [path, file] : image.files) {
        versions.emplace(FileLine(path, file) + " " + std::to_string(file.oid), FileName(path));
    }
    for (const auto& [path, values] : image.keys) {
        versions.emplace(KeyLine(path), KeyName(path));
        for (const auto& [name, value] : values) {
            versions.emplace(ValueLine(path, name, value), ValueName(path, name));
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

// An id that no device gives.
std::uint32_t StaleId() {
    static std::uint32_t id = 0xE0000000;
    return id++;
}

// Calls `act` for the states around `restored` that hold something without a gap, and for that one,
// and `give_way` for all others: a version of another life that has the new id already loses it.
template <typename Holds, typename Act, typename GiveWay>
void ForEachHolding(std::vector<DeviceImage>& states, std::size_t restored, Holds holds, Act act,
                    GiveWay give_way) {
    std::size_t first = restored;
    std::size_t last = restored;
    while (first != 0 && holds(states[first - 1])) {
        --first;
    }
    while (last + 1 != states.size() && holds(states[last + 1])) {
        ++last;
    }
    for (std::size_t state = 0; state < states.size(); ++state) {
        if (state >= first && state <= last) {
            act(states[state]);
        } else {
            give_way(states[state]);
        }
    }
}

bool HasRecord(const ImageDatabase& database, std::uint32_t oid,
               const sim::databases::Record& record) {
    const auto found = database.records.find(oid);
    return found != database.records.end() && SameRecord(found->second, record);
}

// The description alone is in it, not the contents.
bool HaveOneKey(const ImageFile& a, const ImageFile& b) {
    return a.is_folder == b.is_folder && a.oid == b.oid && a.attributes == b.attributes &&
           a.modified == b.modified && a.bytes.size() == b.bytes.size();
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
        const std::uint32_t stale = StaleId();
        const sim::databases::Record record = before.records.at(old);
        ForEachHolding(
            states, restored,
            [&](const DeviceImage& state) {
                const auto database = state.databases.find(name);
                return database != state.databases.end() &&
                       HasRecord(database->second, old, record);
            },
            [&](DeviceImage& state) {
                auto& records = state.databases.at(name).records;
                records.erase(old);
                records[given] = record;
            },
            [&](DeviceImage& state) {
                const auto database = state.databases.find(name);
                if (database != state.databases.end() &&
                    HasRecord(database->second, given, record)) {
                    database->second.records.erase(given);
                    database->second.records[stale] = record;
                }
            });
    }
}

}  // namespace

bool SameVersion(const ImageFile& a, const ImageFile& b) {
    return a.is_folder == b.is_folder && a.oid == b.oid && a.attributes == b.attributes &&
           a.modified == b.modified && a.bytes == b.bytes;
}

bool SameRecord(const sim::databases::Record& a, const sim::databases::Record& b) {
    return sim::databases::Encode(a) == sim::databases::Encode(b);
}

void FollowIds(std::vector<DeviceImage>& states, std::size_t restored, const DeviceImage& now) {
    const DeviceImage before = states.at(restored);
    for (const auto& entry : before.files) {
        const std::wstring& path = entry.first;
        const std::uint32_t stale = StaleId();
        ForEachHolding(
            states, restored,
            [&](const DeviceImage& state) {
                const auto found = state.files.find(path);
                return found != state.files.end() && SameVersion(found->second, entry.second);
            },
            [&](DeviceImage& state) { state.files.at(path).oid = now.files.at(path).oid; },
            [&](DeviceImage& state) {
                const ImageFile& present = now.files.at(path);
                const auto found = state.files.find(path);
                if (present.oid != entry.second.oid && found != state.files.end() &&
                    HaveOneKey(found->second, present)) {
                    found->second.oid = stale;
                }
            });
    }
    for (const auto& entry : before.databases) {
        const std::u16string& name = entry.first;
        const std::uint32_t stale = StaleId();
        ForEachHolding(
            states, restored,
            [&](const DeviceImage& state) {
                const auto found = state.databases.find(name);
                return found != state.databases.end() &&
                       found->second.shape.oid == entry.second.shape.oid;
            },
            [&](DeviceImage& state) {
                state.databases.at(name).shape.oid = now.databases.at(name).shape.oid;
            },
            [&](DeviceImage& state) {
                const std::uint32_t given = now.databases.at(name).shape.oid;
                const auto found = state.databases.find(name);
                if (given != entry.second.shape.oid && found != state.databases.end() &&
                    found->second.shape.oid == given) {
                    found->second.shape.oid = stale;
                }
            });
        FollowRecordIds(states, restored, name, entry.second, now.databases.at(name));
    }
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
