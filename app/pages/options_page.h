// The Options page: the switches of the automatic backup and of backup and restore.
#pragma once

#include "app/pages/page.h"
#include "app/pages/page_layouts.h"
#include "autobackup/agent_status.h"
#include "platform/fitting_text.h"
#include "res/resource.h"

namespace tolvenar {

// A switch is written when it changes. What the automatic backup does follows three seconds later,
// or when the page is left. While an operation is asked for or runs the page neither changes nor
// reads a setting: the schedule is zeroed for that time.
class OptionsPage final : public Page {
public:
    OptionsPage(Application& app, Frame& frame) : Page(app, frame, IDD_OPTIONS_PAGE) {}

    void OnShow(int index) override;
    void OnHide() override { ApplyNow(); }
    void OnLayout() override { next_backup_.Fit(); }
    void ApplyNow() override;

private:
    LayoutSet Layouts() const override { return OptionsLayouts(); }
    void OnInit() override;
    bool OnCommand(int id, int notification) override;
    INT_PTR OnMessage(UINT message, WPARAM wparam, LPARAM lparam) override;
    INT_PTR OnNotify(LPARAM lparam);
    INT_PTR OnTimer(UINT_PTR timer);

    void ReadAgain();
    void ShowSettings();
    void ShowTime();
    void ShowSchedule();
    void ShowNextBackup();
    void ShowReminders();
    void BringRemindersBack();
    void SetTimeFormat();
    void EnableControls();
    void OnSwitch(int id, bool is_on);
    void OnTimeChanged();

    AgentStatus agent_;
    bool has_automatic_backup_ = false;  // whether the system can start one
    FittingText next_backup_;
};

}  // namespace tolvenar
