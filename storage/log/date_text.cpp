#include "storage/log/date_text.h"

#include "platform/text.h"
#include "snapshot/text/text_buffer.h"

namespace tolvenar {
namespace {

constexpr int kPatternUnits = 64;
constexpr int kDateUnits = 100;
using Pattern = wchar_t[kPatternUnits];

const wchar_t* UserPattern(LCTYPE item, Pattern& pattern, const wchar_t* otherwise) {
    return ::GetLocaleInfoW(LOCALE_USER_DEFAULT, item, pattern, kPatternUnits) != 0 ? pattern
                                                                                    : otherwise;
}

}  // namespace

std::size_t FormatDateTimeText(const SYSTEMTIME& time, char16_t (&buffer)[kDateTimeTextUnits],
                               LCTYPE dateFormatItem) {
    Pattern date_pattern;
    Pattern time_pattern;
    const wchar_t* date_format = UserPattern(dateFormatItem, date_pattern, L"d MMMM yyyy");
    const wchar_t* time_format = UserPattern(LOCALE_STIMEFORMAT, time_pattern, L"H:mm:ss");
    TextBuilder text(buffer, kDateTimeTextUnits);
    text.Clear();
    wchar_t part[kDateUnits];
    if (::GetDateFormatW(LOCALE_USER_DEFAULT, 0, &time, date_format, part, kDateUnits) != 0) {
        text.Append(Utf16(part));
    }
    text.Append(u", ");
    if (::GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &time, time_format, part, kDateUnits) != 0) {
        text.Append(Utf16(part));
    }
    return text.length();
}

std::size_t FormatFileTimeText(const FILETIME& time, char16_t (&buffer)[kDateTimeTextUnits],
                               LCTYPE dateFormatItem) {
    SYSTEMTIME system_time;
    if (!::FileTimeToSystemTime(&time, &system_time)) {
        buffer[0] = 0;
        return 0;
    }
    return FormatDateTimeText(system_time, buffer, dateFormatItem);
}

void FormatPlainDateTime(const SYSTEMTIME& time, char16_t (&buffer)[kDateTimeTextUnits]) {
    ::wsprintfW(Wide(buffer), L"%04u-%02u-%02u, %02u:%02u", time.wYear, time.wMonth, time.wDay,
                time.wHour, time.wMinute);
}

void FormatPlainFileTime(const FILETIME& time, char16_t (&buffer)[kDateTimeTextUnits]) {
    buffer[0] = 0;
    SYSTEMTIME system_time;
    if (::FileTimeToSystemTime(&time, &system_time)) {
        FormatPlainDateTime(system_time, buffer);
    }
}

}  // namespace tolvenar
