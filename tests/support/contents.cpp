#include "tests/support/contents.h"

#include <algorithm>
#include <functional>
#include <iterator>

#include "simulator/files/files.h"
#include "simulator/registry/registry.h"
#include "tests/support/text.h"

namespace tests {
namespace {

using sim::databases::DatabaseStore;
using sim::registry::KeyId;
using sim::registry::Registry;

const std::u16string kOwnKey = u"HKCU\\Software\\Kestrin2";
const std::wstring kCard = L"\\Storage Card";
constexpr std::size_t kLongBytes = 40;  // more is told by its size and hash

// A root is always there.
bool IsRoot(const std::u16string& key_path) { return key_path.find(u'\\') == key_path.npos; }

std::string Hex(const std::string& bytes) {
    if (bytes.size() > kLongBytes) {
        return std::to_string(bytes.size()) + "#" + std::to_string(std::hash<std::string>()(bytes));
    }
    std::string hex;
    for (const char byte : bytes) {
        hex += "0123456789abcdef"[(static_cast<unsigned char>(byte)) >> 4];
        hex += "0123456789abcdef"[byte & 15];
    }
    return hex;
}

void AddFiles(sim::Device& device, DeviceImage& image) {
    for (const sim::files::Entry& entry : sim::files::ListAll(device)) {
        if (entry.on_card || entry.path == kCard) {
            continue;
        }
        ImageFile& file = image.files[entry.path];
        file.is_folder = entry.is_folder;
        file.oid = entry.oid;
        file.attributes = entry.attributes;
        if (!entry.is_folder) {
            file.modified = entry.modified;
            file.bytes = sim::files::Get(device, entry.path);
        }
    }
}

void AddKey(const Registry& registry, const KeyId& key, DeviceImage& image) {
    const std::u16string path = registry.PathOf(key, true);
    if (path == kOwnKey) {
        return;
    }
    const auto names = registry.Values(key);
    if (!IsRoot(path) || !names.empty()) {
        auto& values = image.keys[path];
        for (const std::u16string& name : names) {
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

}  // namespace

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

Contents DeviceImage::Lines() const {
    Contents contents;
    for (const auto& [path, file] : files) {
        contents.insert(FileLine(path, file));
    }
    for (const auto& [path, values] : keys) {
        if (!IsRoot(path)) {
            contents.insert(KeyLine(path));
        }
        for (const auto& [name, value] : values) {
            contents.insert(ValueLine(path, name, value));
        }
    }
    for (const auto& [name, database] : databases) {
        contents.insert(DatabaseLine(database.shape));
        for (const auto& [oid, record] : database.records) {
            contents.insert(RecordLine(name, record));
        }
    }
    return contents;
}

std::string FileLine(const std::wstring& path, const ImageFile& file) {
    const std::string line = Narrow(path) + " " + std::to_string(file.attributes);
    return file.is_folder
               ? "folder " + line
               : "file " + line + " " + std::to_string(file.modified) + " " + Hex(file.bytes);
}

std::string KeyLine(const std::u16string& key_path) { return "key " + Narrow(key_path); }

std::string ValueLine(const std::u16string& key_path, const std::u16string& name,
                      const ImageValue& value) {
    return "value " + Narrow(key_path) + " [" + Narrow(name) + "] " + std::to_string(value.first) +
           " " + Hex(value.second);
}

std::string DatabaseLine(const sim::databases::Database& database) {
    std::string line = "database " + Narrow(database.name) + " " + std::to_string(database.type) +
                       " " + std::to_string(database.flags);
    for (const sim::databases::SortOrder& order : database.sort_orders) {
        line += " " + std::to_string(order.propid) + "/" + std::to_string(order.flags);
    }
    return line;
}

std::string RecordLine(const std::u16string& database, const sim::databases::Record& record) {
    std::string line = "record " + Narrow(database);
    for (const sim::databases::Property& property : record) {
        line += " " + std::to_string(property.propid) + "=" + Hex(property.value);
    }
    return line;
}

std::vector<std::string> Differences(const Contents& before, const Contents& after) {
    std::vector<std::string> gone;
    std::vector<std::string> fresh;
    std::set_difference(before.begin(), before.end(), after.begin(), after.end(),
                        std::back_inserter(gone));
    std::set_difference(after.begin(), after.end(), before.begin(), before.end(),
                        std::back_inserter(fresh));
    std::vector<std::string> lines;
    for (const std::string& line : gone) {
        lines.push_back("- " + line);
    }
    for (const std::string& line : fresh) {
        lines.push_back("+ " + line);
    }
    return lines;
}

std::vector<std::string> Lost(const Contents& wanted, const Contents& had, const Contents& now) {
    Contents both;
    std::set_intersection(wanted.begin(), wanted.end(), had.begin(), had.end(),
                          std::inserter(both, both.end()));
    std::vector<std::string> lost;
    std::set_difference(both.begin(), both.end(), now.begin(), now.end(), std::back_inserter(lost));
    return lost;
}

}  // namespace tests
