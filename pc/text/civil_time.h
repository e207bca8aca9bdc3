// Days and hours as this machine's calendar has them.
#pragma once

#include <optional>

#include "pc/text/file_time.h"

namespace tolvenar::pc {

struct CivilTime {
    int year;
    int month;
    int day;
    int hour;
    int minute;
    int second;
};

// Nothing where the calendar of this machine ends.
std::optional<CivilTime> LocalPartsOf(FileTime time);
std::optional<CivilTime> UtcPartsOf(FileTime time);
// Nothing for what is no day of the calendar.
std::optional<FileTime> FromLocalParts(const CivilTime& parts);

}  // namespace tolvenar::pc
