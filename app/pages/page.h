// A page of the main dialog: what the frame asks of every page, and what a page asks of the frame.
#pragma once

#include <memory>

#include "app/operations/application.h"
#include "app/operations/requests.h"
#include "app/operations/window_messages.h"
#include "platform/dialog.h"
#include "platform/layout.h"

namespace tolvenar {

// What pages may ask of the main dialog.
class Frame {
public:
    // Selects the tab and shows its page.
    virtual void SelectPage(int index) = 0;
    // Another storage was opened, or none is open any more: every page forgets what it showed.
    virtual void StorageChanged() = 0;
    // Whether the dialog fills the screen for the sake of what the page shows.
    virtual bool IsFull() const = 0;
    // Has it fill the screen, or go back to its own size and place.
    virtual void ToggleFull() = 0;

protected:
    ~Frame() = default;
};

// A child dialog. Created when its tab is first shown and kept until the main dialog goes; all of
// it belongs to the main thread. While the application's gate is occupied a page refuses what would
// change or start anything.
class Page : public Dialog {
public:
    Page(Application& app, Frame& frame, int template_id)
        : app_(app), frame_(frame), template_id_(template_id) {}
    virtual ~Page() = default;

    // Creates the window, hidden, as a child of the main dialog; nothing when it exists. False when
    // it cannot be created.
    bool Create(HWND main_dialog);
    // Shows it over `place` for the tab `index`; one page may serve two tabs.
    void Show(int index, const RECT& place);
    void Hide();
    // Gives the shown page another room.
    void Place(const RECT& place);

    // The button that Enter presses while the focus is on nothing that takes it; 0 for none.
    virtual int DefaultButton() const { return 0; }
    // A key message for a control of the page. True when it meant something of its own.
    virtual bool TakesKey(const MSG& /*message*/) { return false; }
    // Enter was pressed with the focus on `control`. True when that meant something of its own.
    virtual bool OnEnter(HWND /*control*/) { return false; }
    // Places the controls for the room that the page has.
    void LayOut();
    // The controls have new places.
    virtual void OnLayout() {}
    // The page is about to be seen for tab `index`, or was hidden.
    virtual void OnShow(int /*index*/) {}
    virtual void OnHide() {}
    // The dialog came to the front: other programs may have changed what the shown page tells.
    virtual void OnActivated() {}
    // The storage or its states changed: after an operation, or because another file was chosen.
    virtual void OnStorageChanged() {}
    // What was changed and is not in force yet comes into force: the program closes.
    virtual void ApplyNow() {}
    // The same while the user did not close it: another copy takes over.
    virtual void OnTakenOver() {}

protected:
    // The layouts of what the page shows.
    virtual LayoutSet Layouts() const = 0;
    // Fills the controls; the window exists.
    virtual void OnInit() {}
    // A notification of control `id`. True when it was handled.
    virtual bool OnCommand(int /*id*/, int /*notification*/) { return false; }
    // Any other message; what a dialog procedure returns.
    virtual INT_PTR OnMessage(UINT /*message*/, WPARAM, LPARAM) { return FALSE; }

    // Whether something stands against the user's wish; if so, the user is told or led to what
    // helps.
    bool Refuses(Wish wish);

    Application& app_;
    Frame& frame_;

private:
    Refusal LookAgain(Wish wish);
    INT_PTR Dispatch(UINT message, WPARAM wparam, LPARAM lparam) final;
    INT_PTR OnPageCommand(WPARAM wparam);
    INT_PTR OnNextControl(WPARAM wparam, LPARAM lparam);
    INT_PTR OnDefaultButton();

    int template_id_;
};

}  // namespace tolvenar
