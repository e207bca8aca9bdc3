// Databases as JSON: `databases/*.json` of a profile, `db-import`, `db-export` and the dump.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "simulator/store/asked_ids.h"
#include "simulator/store/device.h"

namespace sim::databases {

// [{"name", "oid", "type", "flags", "sortOrders": [{"propid", "flags"}], "records":
// [{"oid", "props": [{"propid", "flags", "value"}]}]}], sorted by name, records by their
// properties. A value is the lower-case hex of its little-endian bytes, a text's without
// terminator.
nlohmann::json DumpJson(Device& device);

// Takes one database or an array of them, as above; absent parts are empty, and ids are ignored
// without `asked`. A database of the same name is replaced. Throws std::runtime_error when the text
// is damaged or a record breaks its database's own rules; then nothing was changed.
void ImportJson(Device& device, const nlohmann::json& databases, AskedIds* asked = nullptr);

// Whether there was one of that name; it goes even when it is open.
bool DeleteByName(Device& device, const std::string& name);

}  // namespace sim::databases
