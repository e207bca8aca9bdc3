// Message boxes and the open dialog stay on the device's screen, however small it is.
#include "platform/win32.h"

#include <cstdio>
#include <optional>
#include <ostream>

#include "simulator/windows/control.h"
#include "simulator/windows/open_dialog.h"
#include "tests/simulator/probe_fixture.h"

namespace tests {
namespace {

namespace windows = sim::windows;

struct BoxRow {
    const char* host_screen;  // what the host takes for the size of the screen
    const char* screen;
};
void PrintTo(const BoxRow& row, std::ostream* out) { *out << row.screen; }

class BoxesTest : public ProbeTest, public ::testing::WithParamInterface<BoxRow> {
protected:
    // The desktop that the host made for another size stays while this process lives.
    void SetUp() override {
        device().MakeFolder(L"\\Storage Card\\Backups");
        device().Set("screen.size", GetParam().host_screen);
        windows::List(sim());
        device().Set("screen.size", GetParam().screen);
        program_.emplace(sim(), kProbe, L"open");
        ASSERT_SOON(windows::Find(sim(), windows::kOpenFilterBox));
    }
    // The open dialog asks whether it shall make a file.
    void AskForANewFile(const std::string& name) {
        EXPECT_TRUE(windows::SetText(sim(), windows::kOpenNameEdit, name));
        EXPECT_TRUE(windows::Press(sim(), IDOK));
        ASSERT_SOON(windows::Find(sim(), IDYES));
    }
    // Every window of the probe that the user sees.
    std::vector<windows::Window> Visible() {
        std::vector<windows::Window> visible;
        for (windows::Window& window : windows::List(sim())) {
            if (window.visible) {
                visible.push_back(std::move(window));
            }
        }
        return visible;
    }
    void ExpectAllOnTheScreen() {
        int width = 0;
        int height = 0;
        ASSERT_EQ(2, std::sscanf(GetParam().screen, "%dx%d", &width, &height));
        for (const windows::Window& window : Visible()) {
            const std::string what = window.class_name + " '" + window.text + "'";
            EXPECT_LE(0, window.left) << what;
            EXPECT_LE(0, window.top) << what;
            EXPECT_GE(width, window.left + window.width) << what;
            EXPECT_GE(height, window.top + window.height) << what;
        }
    }
    windows::Window Control(int id) { return windows::Find(sim(), id).value_or(windows::Window{}); }

    std::optional<Program> program_;
};

INSTANTIATE_TEST_SUITE_P(Screens, BoxesTest,
                         ::testing::Values(BoxRow{"640x480", "640x240"},
                                           BoxRow{"640x240", "240x320"},
                                           BoxRow{"320x240", "320x240"}));

TEST_P(BoxesTest, TheOpenDialogStandsOnTheScreenAndItsControlsBesideOneAnother) {
    ExpectAllOnTheScreen();
    const windows::Window name = Control(windows::kOpenNameEdit);
    const windows::Window ok = Control(IDOK);
    EXPECT_LT(60, name.width);
    EXPECT_LE(name.left + name.width, ok.left);
}

TEST_P(BoxesTest, TheQuestionForANewFileStandsOnTheScreen) {
    AskForANewFile("New");
    ExpectAllOnTheScreen();
}

TEST_P(BoxesTest, ALongTextIsBrokenIntoLinesThatFit) {
    AskForANewFile("a name of a file that is too long for one line of the smaller screens");
    ExpectAllOnTheScreen();
    const int text_id = 0xFFFF;
    EXPECT_LE(Control(text_id).top + Control(text_id).height, Control(IDYES).top);
}

}  // namespace
}  // namespace tests
