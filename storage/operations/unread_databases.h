// Databases and database records that are on the device and that a scan could not read.
#pragma once

#include "snapshot/records/left_out.h"
#include "storage/operations/restore_plan.h"

namespace tolvenar {

// The id under which the object of a record is left out.
std::uint32_t IdInLeftOut(const ObjectRecord& record);

// Whether the scan met the database or database record of a stored record, described by `block`,
// and could not read it. Of a database that was read in part any record may be meant.
bool IsLeftOut(const LeftOut& left_out, const ObjectRecord& record, const InfoBlock& block);

// Holds back, in the list of a full restore, what would be written back and may be on the device
// unread: it would be there twice. Tells the plan when something was not read at all. False when
// there is no memory.
bool HoldBackUnread(RestorePlan& plan, Descriptions& descriptions);

}  // namespace tolvenar
