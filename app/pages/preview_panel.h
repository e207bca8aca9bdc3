// What the restore page says while it shows what a restore would change.
#pragma once

#include "app/pages/difference_panel.h"
#include "platform/resource_text.h"

namespace tolvenar {

class PreviewPanel {
public:
    explicit PreviewPanel(Application& app) : app_(app) {}

    void Attach(HWND page) { page_ = page; }
    // Asks the operation thread for the preview of a state; kNoState when none is selected.
    void Request(std::int32_t state_number);
    // The application's preview is made: fills the lines that tell what would change and what it
    // takes.
    void Show();
    // Frees the preview, too.
    void Drop();
    bool IsShown() const { return is_shown_; }
    bool IsOf(std::int32_t state_number) const {
        return static_cast<std::uint32_t>(state_number) == app_.preview.state_number();
    }

    // False when the tree shows less than would change.
    bool BuildTree(DifferencePanel& tree);

private:
    static constexpr int kCaptionUnits = kResourceTextUnits + 16;

    // Above the tree and at its root.
    void PutCaption(wchar_t (&text)[kCaptionUnits]) const;
    void ShowCounts() const;
    void ShowNeeds() const;

    Application& app_;
    HWND page_ = nullptr;
    bool is_shown_ = false;
};

}  // namespace tolvenar
