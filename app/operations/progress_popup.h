// The popup that shows how far an operation is. It runs a modal loop on a thread of its own, so
// that it repaints while the operation works.
#pragma once

#include "platform/dialog.h"
#include "platform/unique_resource.h"

namespace tolvenar {

struct ProgressWindows;

class ProgressPopup final : private Dialog {
public:
    ProgressPopup(HINSTANCE instance, ProgressWindows& windows)
        : instance_(instance), windows_(windows) {}
    ~ProgressPopup() { CloseAndWait(); }

    // Opens the popup, owned by `owner` (may be null), and publishes its controls. Waits five
    // seconds at most for it to appear and goes on without controls after that. `total_steps` 0
    // hides the total bar. While a popup is shown its thread is used again.
    void Show(HWND owner, const wchar_t* title, int total_steps);
    // Asks the popup to close and forgets its controls.
    void Close();
    // The same, and waits for its thread, so that it is off the screen before anything else is
    // shown.
    void CloseAndWait();
    using Dialog::window;

private:
    static constexpr int kTitleUnits = 64;
    static DWORD WINAPI Run(void* popup);
    INT_PTR Dispatch(UINT message, WPARAM wparam, LPARAM lparam) override;
    void WaitForClosing();
    void WaitForWindow();
    void Publish(int total_steps);
    INT_PTR OnInit();
    INT_PTR OnClose();

    HINSTANCE instance_;
    ProgressWindows& windows_;
    HWND owner_ = nullptr;
    wchar_t title_[kTitleUnits] = L"";
    int total_steps_ = 0;
    UniqueHandle thread_;
    volatile bool is_closing_ = false;  // read by the popup's thread
};

}  // namespace tolvenar
