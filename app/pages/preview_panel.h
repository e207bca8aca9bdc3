// What the restore page says while it shows what a restore would change.
#pragma once

#include "app/operations/application.h"

namespace tolvenar {

class PreviewPanel {
public:
    explicit PreviewPanel(Application& app) : app_(app) {}

    void Attach(HWND page) { page_ = page; }
    // The application's preview is made: fills the lines that tell what would change and what it
    // takes.
    void Show();
    // Frees the preview, too.
    void Drop();
    bool IsShown() const { return is_shown_; }
    bool IsOf(std::int32_t state_number) const {
        return static_cast<std::uint32_t>(state_number) == app_.preview.state_number();
    }

    // Above the tree and at its root.
    static constexpr int kCaptionUnits = 200;
    void PutCaption(wchar_t (&text)[kCaptionUnits]) const;

private:
    void ShowCounts() const;
    void ShowNeeds() const;

    Application& app_;
    HWND page_ = nullptr;
    bool is_shown_ = false;
};

}  // namespace tolvenar
