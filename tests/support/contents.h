// What a device holds, told without ids, one line for each thing: what a restore must bring back.
// Nothing of the card and nothing of the program's own settings.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "simulator/databases/database_store.h"
#include "simulator/store/device.h"

namespace tests {

using Contents = std::multiset<std::string>;

Contents ContentsOf(sim::Device& device);

// The lines of single things, for whoever knows what a device should hold.
std::string FolderLine(const std::wstring& path, std::uint32_t attributes);
std::string FileLine(const std::wstring& path, std::uint32_t attributes, std::uint64_t modified,
                     const std::string& bytes);
std::string KeyLine(const std::u16string& key_path);  // "HKLM\\…"
std::string ValueLine(const std::u16string& key_path, const std::u16string& name,
                      std::uint32_t type, const std::string& data);
std::string DatabaseLine(const sim::databases::Database& database);
std::string RecordLine(const std::u16string& database, const sim::databases::Record& record);

// "- line" for what `after` lacks, "+ line" for what it has beyond `before`.
std::vector<std::string> Differences(const Contents& before, const Contents& after);
// The lines of `wanted` that are in `had` too and not in `now`: what was lost.
std::vector<std::string> Lost(const Contents& wanted, const Contents& had, const Contents& now);

}  // namespace tests
