// The Storage file page: which storage is open, and the button that chooses another.
#pragma once

#include "app/pages/browse_storage.h"
#include "app/pages/page.h"
#include "app/pages/page_layouts.h"
#include "res/resource.h"

namespace tolvenar {

class StoragePage final : public Page, private OpenedStorageDisplay {
public:
    StoragePage(Application& app, Frame& frame) : Page(app, frame, IDD_STORAGE_PAGE) {}

    int DefaultButton() const override { return IDC_BROWSE; }
    void OnShow(int index) override;
    void OnStorageChanged() override;

private:
    LayoutSet Layouts() const override;
    bool OnCommand(int id, int notification) override;
    void ShowOpenedStorage() override;
    void ShowName();
    void ShowFolder();
    void ShowWhatToDo();
    void ShowDescription();
    void ShowNotes();
    void Browse();
};

}  // namespace tolvenar
