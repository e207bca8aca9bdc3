// The next moment of a daily time.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

// Adds whole seconds to a FILETIME; the fraction of a second is dropped.
void AddSecondsToFileTime(const FILETIME& in, FILETIME& out, LONG seconds);

// Moves a time on, month and year ends included. False when the date cannot be computed.
bool AddSeconds(SYSTEMTIME& time, LONG seconds);

// The local time at which hour:minute comes next: today when it is still ahead after
// `passed_seconds` more, else tomorrow (an exact hit is tomorrow). False when the date cannot be
// computed. `start` may be null.
bool NextOccurrence(WORD hour, WORD minute, SYSTEMTIME* start, LONG passed_seconds = 0);

}  // namespace tolvenar
