#include "autobackup/agent_status.h"

#include "autobackup/agent_control.h"

namespace tolvenar {
namespace {

constexpr int kTicksToApply = 3;
constexpr UINT kTickMs = 1000;
constexpr wchar_t kReady[] = L"ready:";
constexpr wchar_t kUpdate[] = L"update:";

void PushToBottom(HWND control) {
    ::SetWindowPos(control, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_HIDEWINDOW);
}

}  // namespace

void AgentStatus::AgentStatusInit(HWND page, HWND bar, HWND label, DWORD on_time,
                                  DWORD on_battery) {
    page_ = page;
    bar_ = bar;
    label_ = label;
    ::SendMessageW(bar_, PBM_SETRANGE, 0, MAKELPARAM(0, kTicksToApply));
    ::SendMessageW(bar_, PBM_SETPOS, 0, 0);
    ::SendMessageW(bar_, PBM_SETSTEP, 1, 0);
    PushToBottom(bar_);
    PushToBottom(label_);
    ::SetWindowTextW(label_, kReady);
    applied_on_time_ = on_time;
    applied_on_battery_ = on_battery;
}

void AgentStatus::AgentStatusChanged(DWORD on_time, DWORD on_battery) {
    if (on_time == applied_on_time_ && on_battery == applied_on_battery_) {
        if (is_running_) {
            StopTimer();
        }
        ::SetWindowTextW(label_, kReady);
    } else if (!is_running_) {
        is_running_ = ::SetTimer(page_, kAgentUpdateTimer, kTickMs, nullptr) != 0;
        ::SetWindowTextW(label_, kUpdate);
    }
    ResetCount();
}

void AgentStatus::AgentStatusTick(UINT_PTR timer_id, DWORD on_time, DWORD on_battery) {
    // A last tick may still be in the queue when the timer was stopped.
    if (timer_id != kAgentUpdateTimer || !is_running_) {
        return;
    }
    ::SendMessageW(bar_, PBM_STEPIT, 0, 0);
    if (++ticks_ < kTicksToApply) {
        return;
    }
    Apply(on_time, on_battery);
}

void AgentStatus::AgentStatusApplyNow(DWORD on_time, DWORD on_battery) {
    if (!is_running_) {
        return;
    }
    ::SendMessageW(bar_, PBM_SETPOS, kTicksToApply, 0);
    Apply(on_time, on_battery);
}

void AgentStatus::StopTimer() {
    ::KillTimer(page_, kAgentUpdateTimer);
    is_running_ = false;
}

void AgentStatus::ResetCount() {
    ::SendMessageW(bar_, PBM_SETPOS, 0, 0);
    ticks_ = 0;
}

void AgentStatus::Apply(DWORD on_time, DWORD on_battery) {
    StopTimer();
    RefreshAutoBackup();
    StartAgent();
    applied_on_time_ = on_time;
    applied_on_battery_ = on_battery;
    ::SetWindowTextW(label_, kReady);
    ResetCount();
}

}  // namespace tolvenar
