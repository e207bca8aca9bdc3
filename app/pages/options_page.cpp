#include "app/pages/options_page.h"

#include "app/operations/window_messages.h"
#include "app/pages/next_backup.h"
#include "app/rules/time_format.h"
#include "autobackup/notification_calls.h"
#include "platform/notification.h"
#include "platform/resource_text.h"
#include "platform/text.h"

namespace tolvenar {
namespace {

// A check box, the setting that it shows and what its change is called.
struct Switch {
    int id;
    std::uint32_t Settings::*setting;
    std::uint32_t change_on;
    std::uint32_t change_off;
    bool is_schedule;
};
constexpr Switch kSwitches[] = {
    {IDC_ON_TIME, &Settings::onTime, kChangedOnTime, kChangedOnTime, true},
    {IDC_ON_BATTERY, &Settings::onBattery, kChangedOnBattery, kChangedOnBattery, true},
    {IDC_ADVANCED_TREE, &Settings::AdvancedTreeView, kAdvancedTreeViewOn, kAdvancedTreeViewOff,
     false},
    {IDC_RESTORE_DATABASES, &Settings::AdvancedDBRestoring, kChangedAdvancedDBRestoring,
     kChangedAdvancedDBRestoring, false},
    {IDC_DELETE_OLD_STORAGE, &Settings::MayDeleteOldStorage, kChangedMayDeleteOldStorage,
     kChangedMayDeleteOldStorage, false},
};

const Switch* FindSwitch(int id) {
    for (const Switch& row : kSwitches) {
        if (row.id == id) {
            return &row;
        }
    }
    return nullptr;
}

constexpr std::uint32_t PackTime(const SYSTEMTIME& time) {
    return static_cast<std::uint32_t>(time.wHour) | static_cast<std::uint32_t>(time.wMinute) << 16;
}

}  // namespace

void OptionsPage::OnInit() {
    has_automatic_backup_ = HasNotificationCalls();
    // During an operation the registry holds the schedule's zeros; the copies are right.
    if (!app_.gate.IsOccupied()) {
        ReadAllSettings(SlotsOf(app_.settings), app_.installationMissing);
    }
    SetTimeFormat();
    ShowSettings();
    EnableControls();
    agent_.AgentStatusInit(window(), Control(IDC_AGENT_BAR), Control(IDC_AGENT_LABEL),
                           app_.settings.onTime, app_.settings.onBattery);
}

// Seconds are no part of the setting.
void OptionsPage::SetTimeFormat() {
    char16_t pattern[kTimeFormatUnits];
    if (::GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_STIMEFORMAT, Wide(pattern),
                         kTimeFormatUnits) == 0) {
        return;
    }
    DropSeconds(pattern);
    ::SendMessageW(Control(IDC_TIME), DTM_SETFORMATW, 0, reinterpret_cast<LPARAM>(pattern));
}

// Without its installation the program keeps no settings, and a tick would fake an installation.
// What no backup would follow from cannot be switched on.
void OptionsPage::EnableControls() {
    const BOOL is_installed = app_.installationMissing ? FALSE : TRUE;
    const BOOL has_schedule = is_installed && has_automatic_backup_ ? TRUE : FALSE;
    for (const Switch& row : kSwitches) {
        ::EnableWindow(Control(row.id), row.is_schedule ? has_schedule : is_installed);
    }
    ::EnableWindow(Control(IDC_TIME), has_schedule);
    ::EnableWindow(Control(IDC_SHOW_REMINDERS), is_installed);
    if (!app_.power.IsAvailable()) {
        ::EnableWindow(Control(IDC_ON_BATTERY), FALSE);
    }
}

void OptionsPage::ShowSettings() {
    for (const Switch& row : kSwitches) {
        const bool is_on = app_.settings.*row.setting != 0;
        ::SendMessageW(Control(row.id), BM_SETCHECK, is_on ? BST_CHECKED : BST_UNCHECKED, 0);
    }
    ShowTime();
    ShowSchedule();
    ShowReminders();
}

void OptionsPage::ShowTime() {
    SYSTEMTIME time;
    ::GetLocalTime(&time);
    time.wHour = LOWORD(app_.settings.WakeUpTime);
    time.wMinute = HIWORD(app_.settings.WakeUpTime);
    time.wSecond = 0;
    time.wMilliseconds = 0;
    ::SendMessageW(Control(IDC_TIME), DTM_SETSYSTEMTIME, GDT_VALID,
                   reinterpret_cast<LPARAM>(&time));
}

// Hint and time stand in one place.
void OptionsPage::ShowSchedule() {
    const HWND hint = Control(IDC_AUTOMATIC_OFF_HINT);
    const bool is_off =
        has_automatic_backup_ && app_.settings.onTime == 0 && app_.settings.onBattery == 0;
    ::EnableWindow(hint, is_off && !app_.installationMissing);
    ::ShowWindow(hint, is_off ? SW_SHOW : SW_HIDE);
    ::ShowWindow(Control(IDC_NEXT_BACKUP), is_off ? SW_HIDE : SW_SHOW);
    ::ShowWindow(Control(IDC_NEW_TIME_HINT), has_automatic_backup_ ? SW_SHOW : SW_HIDE);
    ShowNextBackup();
}

// An operation has taken the registrations away and puts them back.
void OptionsPage::ShowNextBackup() {
    if (app_.gate.IsOccupied()) {
        return;
    }
    NextBackup next;
    if (has_automatic_backup_) {
        FormatNextBackup(app_, next);
    } else {
        FormatNoAutomaticBackup(app_, next);
    }
    next_backup_.Set(Control(IDC_NEXT_BACKUP), next.line, next.shorter);
}

void OptionsPage::ShowReminders() {
    const bool all = (ReadReminders() & kDefaultReminders) == kDefaultReminders;
    ::SetWindowTextW(
        Control(IDC_REMINDERS_HINT),
        ResourceText(app_.instance, all ? IDS_REMINDERS_SHOWN : IDS_REMINDERS_HIDDEN).text());
}

void OptionsPage::ReadAgain() {
    if (window() == nullptr || app_.gate.IsOccupied()) {
        return;
    }
    ReadAllSettings(SlotsOf(app_.settings), app_.installationMissing);
    ShowSettings();
}

void OptionsPage::OnShow(int) { ReadAgain(); }

// A countdown that an operation met goes on after it.
void OptionsPage::ApplyNow() {
    if (!app_.gate.IsOccupied()) {
        agent_.AgentStatusApplyNow(app_.settings.onTime, app_.settings.onBattery);
        ShowNextBackup();
    }
}

void OptionsPage::OnSwitch(int id, bool is_on) {
    const Switch& row = *FindSwitch(id);
    // The tree's view takes its new value itself, since it keeps whether that is a change.
    if (row.change_on == row.change_off) {
        app_.settings.*row.setting = is_on ? 1 : 0;
    }
    SaveChangedOptions(is_on ? row.change_on : row.change_off, app_.settings);
    if (row.is_schedule) {
        ShowSchedule();
        agent_.AgentStatusChanged(app_.settings.onTime, app_.settings.onBattery);
    }
}

void OptionsPage::BringRemindersBack() {
    WriteSetting(setting::kReminders, kDefaultReminders);
    ShowReminders();
}

bool OptionsPage::OnCommand(int id, int notification) {
    const bool is_reminders = id == IDC_SHOW_REMINDERS;
    if (notification != BN_CLICKED || (!is_reminders && FindSwitch(id) == nullptr)) {
        return false;
    }
    if (app_.gate.IsOccupied()) {
        ShowSettings();
        return true;
    }
    if (is_reminders) {
        BringRemindersBack();
    } else {
        OnSwitch(id, ::SendMessageW(Control(id), BM_GETCHECK, 0, 0) == BST_CHECKED);
    }
    return true;
}

void OptionsPage::OnTimeChanged() {
    SYSTEMTIME time{};
    if (::SendMessageW(Control(IDC_TIME), DTM_GETSYSTEMTIME, 0, reinterpret_cast<LPARAM>(&time)) !=
        GDT_VALID) {
        return;
    }
    SaveWakeUpTime(PackTime(time), app_.settings);
    ApplyNow();
}

INT_PTR OptionsPage::OnNotify(LPARAM lparam) {
    const NMHDR* const header = NotificationOf(Control(IDC_TIME), lparam);
    if (header == nullptr || header->code != static_cast<UINT>(DTN_DATETIMECHANGE)) {
        return FALSE;
    }
    if (app_.gate.IsOccupied()) {
        ShowTime();
    } else {
        OnTimeChanged();
    }
    return TRUE;
}

// The schedule belongs to the operation while one runs.
INT_PTR OptionsPage::OnTimer(UINT_PTR timer) {
    if (!app_.gate.IsOccupied()) {
        agent_.AgentStatusTick(timer, app_.settings.onTime, app_.settings.onBattery);
        ShowNextBackup();
    }
    return TRUE;
}

INT_PTR OptionsPage::OnMessage(UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_NOTIFY: return OnNotify(lparam);
        case WM_TIMER: return OnTimer(wparam);
        case WM_DIALOG_ACTIVATED: ReadAgain(); return TRUE;
        default: return FALSE;
    }
}

}  // namespace tolvenar
