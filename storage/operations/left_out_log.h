// The log's lines about what a scan could not read.
#pragma once

#include <cstdint>

#include "snapshot/records/left_out.h"
#include "snapshot/records/object_record.h"
#include "storage/format/info_block.h"

namespace tolvenar {

// The object of `record`, whose stored block is `block`, stays in the version of the state before.
void LogKept(const ObjectRecord& record, const InfoBlock& block);
// What was not read and is not kept: in no state. Answers how many.
std::uint32_t LogNotStored(const LeftOut& left_out);

// What of databases a restore left alone since the scan could not read it.
void LogLeftAlone(const LeftOut& left_out);

}  // namespace tolvenar
