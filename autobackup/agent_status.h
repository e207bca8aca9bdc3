// Applies changed automatic-backup options a few seconds after the user stops changing them.
#pragma once

#include "platform/win32.h"

namespace tolvenar {

constexpr UINT kAgentUpdateTimer = 651211;

// The update state of the options page, with its progress bar and the bar's label. The page owns
// one and forwards its timer messages.
class AgentStatus {
public:
    // Puts both controls out of sight (the countdown goes on in them unseen, as designed) and keeps
    // the pair of settings as the one applied.
    void AgentStatusInit(HWND page, HWND bar, HWND label, DWORD on_time, DWORD on_battery);
    // A check box changed: starts the countdown, starts it over, or ends it when the change is
    // undone.
    void AgentStatusChanged(DWORD on_time, DWORD on_battery);
    // A timer message; applies the settings at the third tick. Other timers' ids are ignored.
    void AgentStatusTick(UINT_PTR timer_id, DWORD on_time, DWORD on_battery);
    // The page is hidden or closed or the time was changed: applies at once what is pending.
    void AgentStatusApplyNow(DWORD on_time, DWORD on_battery);

private:
    void StopTimer();
    void ResetCount();
    void Apply(DWORD on_time, DWORD on_battery);

    HWND page_ = nullptr;
    HWND bar_ = nullptr;
    HWND label_ = nullptr;
    DWORD applied_on_time_ = 0;
    DWORD applied_on_battery_ = 0;
    bool is_running_ = false;
    int ticks_ = 0;
};

}  // namespace tolvenar
