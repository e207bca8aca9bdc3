#include "tests/support/contents.h"

#include <algorithm>
#include <functional>
#include <iterator>

#include "simulator/files/files.h"
#include "simulator/registry/registry.h"

namespace tests {
namespace {

using sim::databases::DatabaseStore;
using sim::registry::KeyId;
using sim::registry::Registry;

const std::u16string kOwnKey = u"HKCU\\Software\\Kestrin2";
const std::wstring kCard = L"\\Storage Card";
constexpr std::size_t kLongBytes = 40;  // more is told by its size and hash

template <typename Text>
std::string Narrow(const Text& text) {
    std::string narrow;
    for (const auto unit : text) {
        const auto code = static_cast<unsigned>(unit);
        narrow += code >= 0x20 && code < 0x7F ? std::string(1, static_cast<char>(code))
                                              : "{" + std::to_string(code) + "}";
    }
    return narrow;
}

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

void TellFiles(sim::Device& device, Contents& contents) {
    for (const sim::files::Entry& entry : sim::files::ListAll(device)) {
        if (entry.on_card || entry.path == kCard) {
            continue;
        }
        contents.insert(entry.is_folder ? FolderLine(entry.path, entry.attributes)
                                        : FileLine(entry.path, entry.attributes, entry.modified,
                                                   sim::files::Get(device, entry.path)));
    }
}

void TellKey(const Registry& registry, const KeyId& key, Contents& contents) {
    const std::u16string path = registry.PathOf(key, true);
    if (path == kOwnKey) {
        return;
    }
    if (key.size() > 1) {  // a root is always there
        contents.insert(KeyLine(path));
    }
    for (const std::u16string& name : registry.Values(key)) {
        const auto value = registry.Find(key, name);
        contents.insert(ValueLine(path, value->name, value->type, value->data));
    }
    for (const KeyId& subkey : registry.Subkeys(key)) {
        TellKey(registry, subkey, contents);
    }
}

void TellDatabases(sim::Device& device, Contents& contents) {
    const DatabaseStore store(device);
    for (const std::uint32_t oid : store.All(0)) {
        const auto database = store.Get(oid);
        contents.insert(DatabaseLine(*database));
        for (const std::uint32_t record : store.Records(oid)) {
            contents.insert(RecordLine(database->name, *store.Read(oid, record)));
        }
    }
}

}  // namespace

Contents ContentsOf(sim::Device& device) {
    const sim::LogStore::View view(device.store());
    Contents contents;
    TellFiles(device, contents);
    const Registry registry(device);
    for (std::uint32_t root = 0; root < sim::registry::kRootCount; ++root) {
        TellKey(registry, sim::registry::RootId(root), contents);
    }
    TellDatabases(device, contents);
    return contents;
}

std::string FolderLine(const std::wstring& path, std::uint32_t attributes) {
    return "folder " + Narrow(path) + " " + std::to_string(attributes);
}

std::string FileLine(const std::wstring& path, std::uint32_t attributes, std::uint64_t modified,
                     const std::string& bytes) {
    return "file " + Narrow(path) + " " + std::to_string(attributes) + " " +
           std::to_string(modified) + " " + Hex(bytes);
}

std::string KeyLine(const std::u16string& key_path) { return "key " + Narrow(key_path); }

std::string ValueLine(const std::u16string& key_path, const std::u16string& name,
                      std::uint32_t type, const std::string& data) {
    return "value " + Narrow(key_path) + " [" + Narrow(name) + "] " + std::to_string(type) + " " +
           Hex(data);
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
