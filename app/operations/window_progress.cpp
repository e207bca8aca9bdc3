#include "app/operations/window_progress.h"

#include "platform/keep_awake.h"
#include "platform/text.h"
#include "platform/waiting.h"

namespace tolvenar {
namespace {

// The item bar moves at most about this often, whatever the number of items: each move is a message
// to a window of another thread.
constexpr std::size_t kMaxMoves = 32;

void Send(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
    if (hwnd != nullptr) {
        ::SendMessageW(hwnd, message, wparam, lparam);
    }
}

}  // namespace

void WindowProgress::ProgressBegin(std::size_t count) {
    KeepAwake();
    std::size_t step = 1;
    for (std::size_t n = count + 1; n > kMaxMoves; n /= 2) {
        step *= 2;
    }
    counter_ = 1;
    mask_ = step - 1;
    // The 32-bit range: a device has more objects than 16 bits count.
    Send(windows_.step_bar, PBM_SETRANGE32, 0, static_cast<LPARAM>(count + 1));
    Send(windows_.step_bar, PBM_SETPOS, 0, 0);
    Send(windows_.step_bar, PBM_SETSTEP, static_cast<WPARAM>(step), 0);
}

void WindowProgress::ProgressStep(const char16_t* text) {
    if (text != nullptr) {
        KeepAwake();
        if (windows_.step_text != nullptr) {
            ::SetWindowTextW(windows_.step_text, Wide(text));
        }
        Send(windows_.total_bar, PBM_STEPIT, 0, 0);
    } else {
        StayAwakeBetweenObjects();
    }
    if (text != nullptr || (counter_ & mask_) == 0) {
        // Another copy of the program asks whether an operation runs, also while no popup is shown.
        AnswerSentMessages();
    }
    if ((counter_ & mask_) == 0) {
        Send(windows_.step_bar, PBM_STEPIT, 0, 0);
    }
    ++counter_;
}

}  // namespace tolvenar
