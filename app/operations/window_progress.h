// Progress shown in a popup's text and its two bars.
#pragma once

#include "platform/win32.h"

#include <cstddef>

#include "snapshot/text/progress.h"

namespace tolvenar {

// The handles that the popup publishes; null while there is none.
struct ProgressWindows {
    HWND step_text;
    HWND step_bar;   // items of the phase
    HWND total_bar;  // phases
};

// Sends the windows what they show. Each new phase also presses a silent key, and so does a step
// that comes long after the last press.
class WindowProgress final : public Progress {
public:
    // `windows` may change while this lives.
    explicit WindowProgress(const ProgressWindows& windows) : windows_(windows) {}

    void ProgressBegin(std::size_t count) override;
    void ProgressStep(const char16_t* text = nullptr) override;

private:
    const ProgressWindows& windows_;
    std::size_t counter_ = 1;
    std::size_t mask_ = 0;
};

}  // namespace tolvenar
