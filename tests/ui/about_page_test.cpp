// The About page: name and version, and an animation that costs nothing once it has ended.
#include <cstring>
#include <filesystem>
#include <fstream>

#include "tests/support/ui_test.h"

namespace tests {
namespace {

constexpr char kStep[] = ", 0x0, 0";  // what is there is not erased

class AboutPageTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        Open();
    }
    long CallsOf(const char* function) { return ProgramCounters()["calls"].value(function, 0L); }
    // The steps of the animation so far: each makes the picture be drawn again, over the one
    // before.
    long Steps() { return static_cast<long>(Calls("InvalidateRect", kStep)); }
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
};

TEST_F(AboutPageTest, NameAndVersionAreThoseOfTheProgramsFile) {
    const std::string program = device().FileBytes(kProgramPath);
    const std::size_t info = program.find("\xBD\x04\xEF\xFE");  // the fixed part of the version
    ASSERT_NE(std::string::npos, info);
    std::uint16_t version[2];  // minor, major
    std::memcpy(version, program.data() + info + 8, sizeof version);
    ShowTab("About");
    EXPECT_EQ("Tolvenar " + std::to_string(version[1]) + "." + std::to_string(version[0]),
              Text(IDC_ABOUT_NAME));
}

TEST_F(AboutPageTest, TheAnimationPlaysOnceAndWithoutATimerIsAtItsEndAtOnce) {
    SelectPage(kAboutTab);
    EXPECT_SOON_EQ(1, CallsOf("KillTimer"));
    EXPECT_TRUE(Stops());
    EXPECT_EQ(38, Steps());
    const std::size_t whole = Screen();
    SelectPage(kBackupTab);
    EXPECT_SOON(Screen() != whole);
    device().Fault("SetTimer", 1, 1, 8);
    SelectPage(kAboutTab);
    EXPECT_SOON_EQ(whole, Screen());
    EXPECT_EQ(38, Steps());
}

TEST_F(AboutPageTest, TheAnimationStopsWhenThePageIsHidden) {
    HoldCall("InvalidateRect", kStep);
    SelectPage(kAboutTab);
    ASSERT_TRUE(RulesAreUsedUp());  // in its first step
    ::PostMessageW(MainDialog(), kPageSelect, kBackupTab, 0);
    LetGo();
    EXPECT_SOON(Sees(IDC_NEW_DESCRIPTION));
    EXPECT_TRUE(Stops());
    const long before = Steps();
    EXPECT_LT(before, 38);
    SelectPage(kAboutTab);
    EXPECT_SOON(Steps() > before);
}

TEST_F(AboutPageTest, FiftyTimesShownItHoldsNoMoreThanOnce) {
    const auto show_and_draw = [&] {
        const long drawn = CallsOf("BitBlt");
        SelectPage(kAboutTab);
        EXPECT_SOON(CallsOf("BitBlt") > drawn);
        SelectPage(kBackupTab);
    };
    show_and_draw();
    const Json once = ProgramCounters();
    for (int i = 0; i < 50; ++i) {
        show_and_draw();
    }
    const Json now = ProgramCounters();
    for (const char* gauge : {"gdiObjects", "handles", "heapBlocks", "windows"}) {
        EXPECT_EQ(once[gauge], now[gauge]) << gauge;
    }
}

}  // namespace
}  // namespace tests
