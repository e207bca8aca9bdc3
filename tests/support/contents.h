// What a device holds, read past the program: as data, and as lines that tell what a restore must
// bring back. Nothing of the card and nothing of the program's own settings.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "simulator/databases/database_store.h"
#include "simulator/store/device.h"

namespace tests {

using Contents = std::multiset<std::string>;  // a line for each thing, without ids

struct ImageFile {
    bool is_folder = false;
    std::uint32_t oid = 0;
    std::uint32_t attributes = 0;
    std::uint64_t modified = 0;  // of a file
    std::string bytes;
};

using ImageValue = std::pair<std::uint32_t, std::string>;  // type and data

struct ImageDatabase {
    sim::databases::Database shape;
    std::map<std::uint32_t, sim::databases::Record> records;
};

struct DeviceImage {
    std::map<std::wstring, ImageFile> files;
    std::map<std::u16string, std::map<std::u16string, ImageValue>> keys;  // by "HKLM\\…"
    std::map<std::u16string, ImageDatabase> databases;

    Contents Lines() const;
};

DeviceImage ImageOf(sim::Device& device);
inline Contents ContentsOf(sim::Device& device) { return ImageOf(device).Lines(); }

// The lines of single things.
std::string FileLine(const std::wstring& path, const ImageFile& file);
std::string KeyLine(const std::u16string& key_path);
std::string ValueLine(const std::u16string& key_path, const std::u16string& name,
                      const ImageValue& value);
std::string DatabaseLine(const sim::databases::Database& database);
std::string RecordLine(const std::u16string& database, const sim::databases::Record& record);

// "- line" for what `after` lacks, "+ line" for what it has beyond `before`.
std::vector<std::string> Differences(const Contents& before, const Contents& after);
// The lines of `wanted` that are in `had` too and not in `now`: what was lost.
std::vector<std::string> Lost(const Contents& wanted, const Contents& had, const Contents& now);

}  // namespace tests
