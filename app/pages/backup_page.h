// The Backup page: the new state's description, the button, and what the storage holds already.
#pragma once

#include "app/pages/page.h"
#include "app/pages/page_layouts.h"
#include "platform/fitting_path.h"
#include "platform/fitting_text.h"
#include "platform/resource_text.h"
#include "res/resource.h"
#include "storage/log/date_text.h"

namespace tolvenar {

class BackupPage final : public Page {
public:
    BackupPage(Application& app, Frame& frame) : Page(app, frame, IDD_BACKUP_PAGE) {}

    int DefaultButton() const override { return IDC_BACKUP; }
    void OnShow(int index) override;
    void OnLayout() override;
    void OnActivated() override { OnStorageChanged(); }
    void OnTakenOver() override;
    void OnStorageChanged() override;

private:
    using Line = wchar_t[kDateTimeTextUnits + kResourceTextUnits];

    LayoutSet Layouts() const override { return BackupLayouts(); }
    void OnInit() override;
    bool OnCommand(int id, int notification) override;
    INT_PTR OnMessage(UINT message, WPARAM wparam, LPARAM lparam) override;
    INT_PTR OnTakeDescription();
    void RequestBackup();
    // At most kDescriptionUnits; nothing of a blank one.
    void ReadDescription(char16_t* buffer) const;
    void ShowStorage();
    void ShowLastState();
    void PutLastState(std::uint16_t state, const char16_t* time, std::uint32_t unsaved,
                      Line& text) const;
    void ShowLastAutomatic();
    void TakeKeptDescription();
    void ShowFreeSpace();
    UINT EffectText() const;
    void ShowEffect();

    FittingPath storage_;
    FittingText last_state_;
    FittingText last_automatic_;
    bool is_on_card_ = true;  // of the open storage; without one a card is what is missing
};

}  // namespace tolvenar
