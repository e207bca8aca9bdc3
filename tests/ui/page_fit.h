// Whether what the pages show fits the screen: nothing cut, nothing on top of anything else,
// nothing too small for a finger.
#pragma once

#include "tests/support/ui_test.h"

namespace tests {

// Every screen that the dialog is laid out for.
inline const char* const kScreens[] = {"640x480", "640x240", "800x480",
                                       "480x640", "240x320", "320x240"};
inline const char* const kTabNames[] = {"Backup",       "Restore", "Advanced Restore",
                                        "Storage file", "Options", "About"};

class PageFitTest : public UiTest, public ::testing::WithParamInterface<const char*> {
protected:
    // The screen has the size of the parameter.
    void SetUp() override;

    // The page that is shown.
    void ExpectPageFits();
    // Every page, one after the other.
    void ExpectPagesFit();
    // The dialog is on the screen as a whole, its close box too.
    void ExpectOnScreen();
    // Taps the middle of a control and waits until the dialog has seen it.
    void Tap(int id);
    // Taps a tab, and before it the arrows beside the tabs until they show it.
    void TapTab(const std::string& name);
    Window MainWindowOnScreen();
    // Shows what the second of two states changed.
    void ShowTree();
    SIZE ScreenSize() const;

private:
    std::vector<Window> PageControls();
    bool DialogStandsAlone();
    void TapAt(int x, int y);
    std::optional<Window> ArrowsOf(const Window& tabs);
};

}  // namespace tests
