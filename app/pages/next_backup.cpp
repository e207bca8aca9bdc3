#include "app/pages/next_backup.h"

#include "autobackup/notification_reader.h"
#include "autobackup/notification_scheduler.h"
#include "autobackup/notification_table.h"
#include "platform/resource_text.h"
#include "platform/text.h"
#include "res/resource.h"
#include "storage/log/date_text.h"

namespace tolvenar {
namespace {

constexpr int kPartUnits = 64;
static_assert(2 * kPartUnits + kResourceTextUnits <= kNextBackupUnits);

// A start that has passed belongs to a schedule that was not moved on.
bool IsAhead(const SYSTEMTIME& start) {
    SYSTEMTIME now;
    FILETIME start_time;
    FILETIME now_time;
    ::GetLocalTime(&now);
    return ::SystemTimeToFileTime(&start, &start_time) && ::SystemTimeToFileTime(&now, &now_time) &&
           ::CompareFileTime(&start_time, &now_time) > 0;
}

bool ReadRegisteredStart(SYSTEMTIME& start) {
    CE_NOTIFICATION_TRIGGER daily{};
    daily.dwType = CNT_TIME;
    daily.dwEvent = NOTIFICATION_EVENT_NONE;
    daily.lpszApplication = const_cast<wchar_t*>(kAgentProgram);
    daily.lpszArguments = const_cast<wchar_t*>(kRunAtTime);
    const HANDLE notification = FindNotification(daily);
    NotificationReader reader;
    const CE_NOTIFICATION_INFO_HEADER* const record =
        notification != nullptr ? reader.Read(notification) : nullptr;
    if (record == nullptr) {
        return false;
    }
    start = record->pcent->stStartTime;
    return IsAhead(start);
}

void PutStart(const Application& app, const wchar_t* start, wchar_t (&line)[kNextBackupUnits]) {
    ::wsprintfW(line, ResourceText(app.instance, IDS_NEXT_BACKUP).text(), start);
}

void FormatStart(const Application& app, const SYSTEMTIME& start, NextBackup& next) {
    wchar_t date[kPartUnits] = L"";
    wchar_t time[kPartUnits] = L"";
    ::GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &start, nullptr, date, kPartUnits);
    ::GetTimeFormatW(LOCALE_USER_DEFAULT, TIME_NOSECONDS, &start, nullptr, time, kPartUnits);
    wchar_t whole[2 * kPartUnits];
    ::wsprintfW(whole, L"%s %s", date, time);
    PutStart(app, whole, next.line);
    char16_t plain[kDateTimeTextUnits];
    FormatPlainDateTime(start, plain);
    PutStart(app, Wide(plain), next.shorter);
}

void PutText(const Application& app, UINT id, NextBackup& next) {
    ::wcscpy(next.line, ResourceText(app.instance, id).text());
    ::wcscpy(next.shorter, next.line);
}

}  // namespace

// The battery's check is registered as a daily time, too (docs/oddities.md, 65).
void FormatNextBackup(const Application& app, NextBackup& next) {
    SYSTEMTIME start{};
    if (app.settings.onTime == 0) {
        PutText(app, IDS_NEXT_ON_BATTERY, next);
    } else if (ReadRegisteredStart(start)) {
        FormatStart(app, start, next);
    } else {
        PutText(app, IDS_NEXT_NONE, next);
    }
}

void FormatNoAutomaticBackup(const Application& app, NextBackup& next) {
    PutText(app, IDS_NO_AUTOMATIC_BACKUP, next);
}

}  // namespace tolvenar
