// The progress popup of the running program: when it is there and what it says.
#include <chrono>

#include "tests/ui/ui_test.h"

namespace {

using Texts = std::vector<std::string>;

class PopupTest : public tests::UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        BackUpThenChange();
    }
    // Lines of the trace of `function` from the caption `title` of a popup on.
    std::vector<Json> LinesFrom(const std::string& title, const std::string& function) {
        std::vector<Json> lines;
        bool is_on = false;
        for (const Json& line : Ask("trace show")) {
            const std::string arguments = line["arguments"];
            if (line["function"] == "SetWindowTextW" &&
                arguments.find(", " + title) != std::string::npos) {
                is_on = true;
                continue;
            }
            if (is_on && line["function"] == function) {
                lines.push_back(line);
            }
        }
        return lines;
    }
    // What control 1024 showed while the popup was up: the texts that end in dots.
    Texts StepTexts(const std::string& title) {
        Texts texts;
        for (const Json& line : LinesFrom(title, "SetWindowTextW")) {
            const std::string arguments = line["arguments"];
            const std::string text = arguments.substr(arguments.find(", ") + 2);
            if (text.size() > 3 && text.compare(text.size() - 3, 3, "...") == 0) {
                texts.push_back(text);
            }
        }
        return texts;
    }
    // The total bar's positions before each of its steps; first its range.
    Texts TotalBar(const std::string& title) {
        Texts moves;
        std::string bar;
        for (const Json& line : LinesFrom(title, "SendMessageW")) {
            const std::string arguments = line["arguments"];
            const std::size_t at = arguments.find(", 1025, 0, ");  // PBM_SETRANGE
            if (at != std::string::npos) {
                bar = arguments.substr(0, at);
                moves.push_back("range " +
                                std::to_string(std::stoul(arguments.substr(at + 11)) >> 16));
            }
            if (!bar.empty() && arguments == bar + ", 1029, 0, 0") {  // PBM_STEPIT
                moves.push_back(line["result"]);
            }
        }
        return moves;
    }
    // All of them, with the one that does the work.
    void ExpectSteps(const std::string& title, const std::string& work) {
        EXPECT_EQ((Texts{"Preparing object list...", "Scanning files...",
                         "Scanning HKCR registry entry...", "Scanning HKCU registry entry...",
                         "Scanning HKLM registry entry...", "Scanning HKU registry entry...",
                         "Scanning databases...", "Finding differences...", work,
                         "Saving object list...", "Loading object list..."}),
                  StepTexts(title));
        EXPECT_EQ((Texts{"range 12", "0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10"}),
                  TotalBar(title));
    }
};

TEST_F(PopupTest, ABackupTellsItsStepsInTheirOrder) {
    Open();
    Press(1001);
    EXPECT_TRUE(Eventually([&] { return States() == std::vector<int>({1, 2}) && !IsBusy(); }));
    ExpectSteps("Backing up in progress", "Backing Up...");
}

TEST_F(PopupTest, ARestoreTellsItsStepsInTheirOrder) {
    Open();
    ShowTab("Restore");
    Press(1002);
    ExpectReminder(tests::kRestoredReminder, tests::kCancel);
    ExpectSteps("Restoring in progress", "Restoring...");
}

TEST_F(PopupTest, AnUnattendedBackupEndsWithoutLoadingItsJournalAgain) {
    Ask("trace on");
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ((std::vector<int>{1, 2}), States());
    const Texts steps = StepTexts("Backing up in progress");
    ASSERT_EQ(10u, steps.size());
    EXPECT_EQ("Saving object list...", steps.back());
}

// Its thread disables the dialog by a sent message, while the dialog's thread waits for it.
TEST_F(PopupTest, TheDialogsOwnPopupIsUpAtOnce) {
    BackUp();
    Open();
    ShowTab("Advanced Restore");
    const HWND list = Handle(1014);
    ::SendMessageW(::GetParent(list), WM_COMMAND, MAKEWPARAM(1014, LBN_DBLCLK), 0);
    EXPECT_EQ("Differences from State 1 to State 2", Text(1041));
    EXPECT_FALSE(Shows("Creating tree..."));
    EXPECT_TRUE(Top("Tolvenar")->at("enabled"));
    const auto ranges = TotalBar("Creating tree...");
    ASSERT_FALSE(ranges.empty());
    EXPECT_EQ("range 6", ranges[0]);

    const Json threads = Ask("trace show CreateThread");
    const auto started = threads.back()["time"].get<std::uint64_t>();
    const auto used = LinesFrom("Creating tree...", "SendMessageW").at(0)["time"];
    const auto milliseconds = (used.get<std::uint64_t>() - started) / 1000;
    RecordProperty("milliseconds", static_cast<int>(milliseconds));
    EXPECT_LT(milliseconds, 2500u);  // after 5000 the program does without it
}

TEST_F(PopupTest, LoadingTheStorageShowsNoTotalBar) {
    HoldCall("CreateFileW", ".jrn,");
    StartProgram();
    ASSERT_TRUE(Eventually([&] { return Shows("Loading List"); }));
    EXPECT_TRUE(Sees(1025));
    EXPECT_TRUE(AnyControl(1027).has_value());
    EXPECT_FALSE(Sees(1027));
    EXPECT_FALSE(Sees(1028));
    EXPECT_TRUE(RulesAreUsedUp());
    LetGo();
    EXPECT_TRUE(Eventually([&] { return Sees(1000) && !Shows("Loading List"); }));
}

TEST_F(PopupTest, APopupThatComesTooLateIsDoneWithout) {
    Open();
    HoldCall("DialogBoxIndirectParamW");
    const auto start = std::chrono::steady_clock::now();
    Press(1001);
    EXPECT_TRUE(Eventually([&] { return States() == std::vector<int>({1, 2}); }));
    EXPECT_LE(std::chrono::seconds(5), std::chrono::steady_clock::now() - start);
    LetGo();
    EXPECT_TRUE(BecomesIdle());
    EXPECT_FALSE(Shows("Backing up in progress"));
    EXPECT_TRUE(Top("Tolvenar")->at("enabled"));
    EXPECT_TRUE(TotalBar("Backing up in progress").empty());
}

}  // namespace
