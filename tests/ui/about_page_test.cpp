// The About page: name and version, and an animation that costs nothing once it has ended.
#include "platform/win32.h"

#include <cstring>
#include <filesystem>
#include <fstream>

#include "tests/ui/ui_test.h"

namespace {

using Json = nlohmann::json;

constexpr UINT kPageSelect = WM_APP + 103;
constexpr int kAbout = 5;
constexpr int kPicture = 1140, kName = 1141;

class AboutPageTest : public tests::UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        Open();
        dialog_ = ::FindWindowW(L"Dialog", L"Tolvenar");
    }
    // What the gate counts of the program.
    Json Counters() {
        const Json counters = Ask("counters");
        for (const Json& process : counters["processes"]) {
            if (process["name"] == tests::kProgram) {
                return process;
            }
        }
        return {};
    }
    long CallsOf(const char* function) { return Counters()["calls"].value(function, 0L); }
    // The steps of the animation so far: each makes the picture be drawn again.
    long Steps() { return CallsOf("InvalidateRect"); }
    bool Stops() {
        const long steps = Steps();
        Pause(300);
        return Steps() == steps;
    }
    // Tells pictures of the screen apart.
    std::size_t Screen() {
        const std::filesystem::path file = std::filesystem::path(folder()) / "screen.png";
        Ask("screenshot " + file.string());
        std::ifstream stream(file, std::ios::binary);
        return std::hash<std::string>()({std::istreambuf_iterator<char>(stream), {}});
    }
    void ShowPage(int index) {
        ::SendMessageW(dialog_, kPageSelect, static_cast<WPARAM>(index), 0);
    }

    HWND dialog_ = nullptr;
};

TEST_F(AboutPageTest, NameAndVersionAreThoseOfTheProgramsFile) {
    const std::string program = device().FileBytes(L"\\Program Files\\Tolvenar\\Tolvenar.exe");
    const std::size_t info = program.find("\xBD\x04\xEF\xFE");  // the fixed part of the version
    ASSERT_NE(std::string::npos, info);
    std::uint16_t version[2];  // minor, major
    std::memcpy(version, program.data() + info + 8, sizeof version);
    ShowTab("About");
    EXPECT_EQ("Tolvenar " + std::to_string(version[1]) + "." + std::to_string(version[0]),
              Text(kName));
}

TEST_F(AboutPageTest, TheAnimationPlaysOnceAndWithoutATimerIsAtItsEndAtOnce) {
    ShowPage(kAbout);
    EXPECT_TRUE(Eventually([&] { return CallsOf("KillTimer") == 1; }));
    EXPECT_TRUE(Stops());
    EXPECT_EQ(38, Steps());
    const std::size_t whole = Screen();
    ShowPage(0);
    EXPECT_TRUE(Eventually([&] { return Screen() != whole; }));
    device().Fault("SetTimer", 1, 1, 8);
    ShowPage(kAbout);
    EXPECT_TRUE(Eventually([&] { return Screen() == whole; }));
    EXPECT_EQ("[]", device().Faults());
    EXPECT_EQ(38, Steps());
}

TEST_F(AboutPageTest, TheAnimationStopsWhenThePageIsHidden) {
    ShowPage(kAbout);
    EXPECT_TRUE(Eventually([&] { return Steps() > 3; }));
    ShowPage(0);
    EXPECT_TRUE(Stops());
    const long before = Steps();
    EXPECT_LT(before, 38);
    ShowPage(kAbout);
    EXPECT_TRUE(Eventually([&] { return Steps() > before; }));
}

TEST_F(AboutPageTest, FiftyTimesShownItHoldsNoMoreThanOnce) {
    const auto show_and_draw = [&] {
        const long drawn = CallsOf("BitBlt");
        ShowPage(kAbout);
        EXPECT_TRUE(Eventually([&] { return CallsOf("BitBlt") > drawn; }));
        ShowPage(0);
    };
    show_and_draw();
    const Json once = Counters();
    for (int i = 0; i < 50; ++i) {
        show_and_draw();
    }
    const Json now = Counters();
    for (const char* gauge : {"gdiObjects", "handles", "heapBlocks", "windows"}) {
        EXPECT_EQ(once[gauge], now[gauge]) << gauge;
    }
}

}  // namespace
