// The files of a profile folder: `files` holds the object store's tree, `card` the card's, and
// `files.json` what host files cannot say, by device path:
//   {"\\Windows\\shell.exe": {"attributes": 8257, "modified": 126227808000000000}}
// Absent values are the defaults: 32 for a file, 16 for a folder, the time of the import.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "simulator/store/asked_ids.h"
#include "simulator/store/device.h"

namespace sim::files {

// The ids that files ask for, by path.
using FileIds = std::map<std::wstring, std::uint32_t>;

// Fills the device from a profile; what it lacks is not touched. Mounts the card. One step in the
// log. With `asked` the files get the ids that `ids` has. Throws std::exception when a file cannot
// be read.
void ImportFiles(Device& device, const std::wstring& profile, const FileIds& ids = {},
                 AskedIds* asked = nullptr);
// Writes the files as a profile's `files`, `card` and `files.json`; older ones there are replaced.
void ExportFiles(Device& device, const std::wstring& profile);

// The `files` section of a dump: path, oid, attributes and for files size, modified and sha256,
// sorted by path.
nlohmann::json DumpFiles(Device& device);

}  // namespace sim::files
