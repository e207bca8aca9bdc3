// The popup that shows how far an operation is. It runs a modal loop on a thread of its own, so
// that it repaints while the operation works.
#pragma once

#include "platform/unique_resource.h"

namespace tolvenar {

struct ProgressWindows;

class ProgressPopup {
public:
    ProgressPopup(HINSTANCE instance, ProgressWindows& windows)
        : instance_(instance), windows_(windows) {}
    ~ProgressPopup() { CloseAndWait(); }
    ProgressPopup(const ProgressPopup&) = delete;
    ProgressPopup& operator=(const ProgressPopup&) = delete;

    // Opens the popup, owned by `owner` (may be null), and publishes its controls. Waits five
    // seconds at most for it to appear and goes on without controls after that. `total_steps` 0
    // hides the total bar. While a popup is shown its thread is used again.
    void Show(HWND owner, const wchar_t* title, int total_steps);
    // Asks the popup to close and forgets its controls.
    void Close();
    // The same, and waits for its thread, so that it is off the screen before anything else is
    // shown.
    void CloseAndWait();
    HWND window() const { return window_; }

private:
    static constexpr int kTitleUnits = 64;
    static DWORD WINAPI Run(void* popup);
    static INT_PTR CALLBACK DialogProcedure(HWND, UINT, WPARAM, LPARAM);
    void WaitForClosing();
    void WaitForWindow();
    void Publish(int total_steps);
    INT_PTR OnInit(HWND window);
    INT_PTR OnClose(HWND window);

    HINSTANCE instance_;
    ProgressWindows& windows_;
    HWND owner_ = nullptr;
    wchar_t title_[kTitleUnits] = L"";
    int total_steps_ = 0;
    HWND volatile window_ = nullptr;  // written by the popup's thread
    UniqueHandle thread_;
    volatile bool is_closing_ = false;  // read by the popup's thread
};

}  // namespace tolvenar
