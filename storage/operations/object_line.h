// A line of the log about one object.
#pragma once

#include <cstdint>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/object_record.h"

namespace tolvenar {

// Logs `reason`, then the object's name: of a registry object as a path behind its hive, of a
// database record with its id. The reason comes first: a line of the log ends at 260 units.
void LogObject(const char16_t* reason, const ObjectRecord& record, const InfoBlock& block,
               const char16_t* module, std::uint32_t flags);

// The same for an object that is yet to be described; without a description by its ids.
void LogObject(const char16_t* reason, const ObjectRecord& record, InfoSource& info,
               const char16_t* module, std::uint32_t flags);

}  // namespace tolvenar
