// The main dialog: the tabs, the pages behind them, the keys and the closing.
#pragma once

#include "app/pages/dialog_room.h"
#include "app/pages/page.h"

namespace tolvenar {

// Lives on the main thread. The pages of tabs 1 and 2 are one.
class MainDialog final : public Frame, private Dialog {
public:
    explicit MainDialog(Application& app) : app_(app) {}
    ~MainDialog() { Destroy(); }

    // Creates the dialog, modeless and without an owner, keeps it in the application and shows its
    // first page. False when it cannot be created.
    bool Create();
    // Destroys window and pages, if they still exist.
    using Dialog::Destroy;

    // Has the dialog manager handle a message of this thread; true when nothing is left to do with
    // it.
    bool TakesMessage(MSG& message);

    void SelectPage(int index) override;
    void StorageChanged() override;
    bool IsFull() const override { return room_.IsFull(); }
    void ToggleFull() override;

private:
    INT_PTR Dispatch(UINT message, WPARAM wparam, LPARAM lparam) override;
    INT_PTR OnRequest(UINT message, WPARAM wparam, LPARAM lparam);
    INT_PTR OnInit();
    INT_PTR OnNotify(LPARAM lparam);
    INT_PTR OnCommand(WPARAM wparam, LPARAM lparam);
    INT_PTR OnHelp();
    INT_PTR OnSize();
    INT_PTR OnActivate(WPARAM wparam, LPARAM lparam);
    INT_PTR OnLookForStorage();
    INT_PTR OnApplyNow();
    INT_PTR OnClose();
    INT_PTR OnDestroy();

    void InsertTabs(int selected);
    Page* PageAt(int index);
    void ShowPage(int index);
    void FocusPage();
    void StepPage(int direction);
    void PressEnter();
    void ApplyNow();
    bool FocusIsInPage() const;
    bool IsOfDialog(HWND control) const;
    bool TakesKey(const MSG& message);

    Application& app_;
    HWND tabs_ = nullptr;
    DialogRoom room_;
    std::unique_ptr<Page> pages_[kPageCount];
    Page* shown_ = nullptr;
    int shown_index_ = 0;
};

}  // namespace tolvenar
