#include "app/start/startup.h"

#include "app/operations/window_messages.h"
#include "app/rules/launch_reason.h"
#include "app/start/interactive.h"
#include "app/start/running_copy.h"
#include "app/start/start_line.h"
#include "app/start/unattended.h"
#include "autobackup/autobackup_prompt.h"
#include "autobackup/launch_check.h"
#include "autobackup/schedule_suspension.h"
#include "platform/keep_awake.h"
#include "platform/processes.h"
#include "snapshot/text/log.h"
#include "storage/log/operation_log.h"

namespace tolvenar {
namespace {

constexpr char16_t kModule[] = u"RunProgram";

constexpr int kDropped = 0;
constexpr int kHandedOver = 1;

constexpr DWORD kControlClasses = ICC_TREEVIEW_CLASSES | ICC_BAR_CLASSES | ICC_TAB_CLASSES |
                                  ICC_PROGRESS_CLASS | ICC_DATE_CLASSES;
static_assert(kControlClasses == 0x12E && sizeof(INITCOMMONCONTROLSEX) == 8);

void InitControls() {
    INITCOMMONCONTROLSEX controls{};
    controls.dwSize = sizeof controls;
    controls.dwICC = kControlClasses;
    ::InitCommonControlsEx(&controls);
}

// A text that is too long is cut in the reason only; it is none of the known ones anyway.
void SetReason(Application& app, const wchar_t* text) {
    ::wcsncpy(app.launchReason, text, kLaunchReasonUnits - 1);
}

// Scheduled launches alone take the mutex; `mutex` is kept for the life of the process.
bool PassSchedule(Application& app, LaunchCheckResult launch, UniqueHandle& mutex) {
    KeepAwake();
    SetReason(app, launch == LaunchCheckResult::kBattery ? kReasonBattery : kReasonTime);
    mutex = NamedMutex(kMutexName);
    if (::GetLastError() == ERROR_ALREADY_EXISTS) {
        return false;
    }
    return ShowAutoBackupPrompt(app.instance, launch) == PromptAnswer::kGoOn;
}

// Before the launch is judged by the schedule.
void RecoverAndLog() {
    switch (RecoverSchedule()) {
        case ScheduleRecovery::kPutBack:
            LogMessage(u"The schedule that an ended operation had taken away is back", kModule,
                       kLogNote);
            break;
        case ScheduleRecovery::kDropped:
            LogMessage(u"The schedule was set anew since an operation was ended", kModule,
                       kLogNote);
            break;
        default: break;
    }
}

}  // namespace

int RunProgram(Application& app, const wchar_t* command_line, const char16_t* build) {
    InstallOperationLog();
    InitControls();
    RecoverAndLog();
    UniqueHandle mutex;
    const LaunchCheckResult launch = CheckLaunchArgument(command_line, app.power);
    switch (launch) {
        case LaunchCheckResult::kText: SetReason(app, command_line); break;
        case LaunchCheckResult::kTimed:
        case LaunchCheckResult::kBattery:
            if (!PassSchedule(app, launch, mutex)) {
                return kDropped;
            }
            break;
        case LaunchCheckResult::kQuit: return kDropped;
        case LaunchCheckResult::kInteractive: break;
    }
    const Arbitration arbitration = ArbitrateWithRunningCopy(app.launchReason);
    if (arbitration == Arbitration::kHandOver) {
        return kHandedOver;
    }
    LogStart(build);
    // Beside a copy that does not go away nothing unattended runs, and the dialog comes up without
    // a main window (docs/oddities.md, 31).
    if (!WaitForOldCopy()) {
        return RunInteractive(app, arbitration == Arbitration::kTakeOver ? Beside::kStuckCopy
                                                                         : Beside::kStartingCopy);
    }
    if (const std::optional<int> code = RunUnattended(app)) {
        return *code;
    }
    return RunInteractive(app, Beside::kNothing);
}

}  // namespace tolvenar
