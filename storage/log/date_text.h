// Date and time as text, after the user's locale.
#pragma once

#include "platform/win32.h"

#include <cstddef>

namespace tolvenar {

constexpr std::size_t kDateTimeTextUnits = 200;

// The date by `dateFormatItem` (LOCALE_SSHORTDATE or LOCALE_SLONGDATE), ", " and the time by the
// user's time format. Patterns that cannot be read are "d MMMM yyyy" and "H:mm:ss". Returns the
// length.
std::size_t FormatDateTimeText(const SYSTEMTIME& time, char16_t (&buffer)[kDateTimeTextUnits],
                               LCTYPE dateFormatItem);
// The same for a FILETIME, without any change of time zone. 0 and an empty text when it is no date.
std::size_t FormatFileTimeText(const FILETIME& time, char16_t (&buffer)[kDateTimeTextUnits],
                               LCTYPE dateFormatItem);

// Digits alone, such as "2026-09-30, 22:58", for places where a pattern with names has no room.
void FormatPlainDateTime(const SYSTEMTIME& time, char16_t (&buffer)[kDateTimeTextUnits]);
// The same for a FILETIME; an empty text when it is no date.
void FormatPlainFileTime(const FILETIME& time, char16_t (&buffer)[kDateTimeTextUnits]);

}  // namespace tolvenar
