// The progress popup of the running program: when it is there and what it says.
#include <chrono>

#include "tests/support/ui_test.h"

namespace tests {
namespace {

const std::string kSetRange = ", 1025, 0, ";  // PBM_SETRANGE

class PopupTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetDword("Reminders", 2);
        BackUpThenChange();
    }
    // Calls of `function` from the caption `title` of a popup on.
    std::vector<Call> CallsFrom(const std::string& title, const std::string& function) {
        std::vector<Call> calls;
        bool is_on = false;
        for (const Call& call : Traced()) {
            if (call.function == "SetWindowTextW" && call.Has(", " + title)) {
                is_on = true;
            } else if (is_on && call.function == function) {
                calls.push_back(call);
            }
        }
        return calls;
    }
    // What the step's text was while the popup was up: the texts that end in dots.
    Texts StepTexts(const std::string& title) {
        Texts texts;
        for (const Call& call : CallsFrom(title, "SetWindowTextW")) {
            const std::string text = call.Behind(", ");
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
        for (const Call& call : CallsFrom(title, "SendMessageW")) {
            const std::size_t at = call.arguments.find(kSetRange);
            if (at != std::string::npos) {
                bar = call.arguments.substr(0, at);
                moves.push_back("range " +
                                std::to_string(std::stoul(call.Behind(kSetRange)) >> 16));
            }
            if (!bar.empty() && call.arguments == bar + ", 1029, 0, 0") {  // PBM_STEPIT
                moves.push_back(call.result);
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
    Press(IDC_BACKUP);
    ExpectStates({1, 2});
    ExpectSteps("Backing up in progress", "Backing Up...");
}

TEST_F(PopupTest, ARestoreTellsItsStepsInTheirOrder) {
    OpenOn("Restore");
    Press(IDC_RESTORE);
    RefuseReminder(kRestoredReminder);
    ExpectSteps("Restoring in progress", "Restoring...");
}

TEST_F(PopupTest, AnUnattendedBackupEndsWithoutLoadingItsJournalAgain) {
    Ask("trace on");
    EXPECT_EQ(0, BackUp());
    EXPECT_EQ((Numbers{1, 2}), States());
    const Texts steps = StepTexts("Backing up in progress");
    ASSERT_EQ(10u, steps.size());
    EXPECT_EQ("Saving object list...", steps.back());
}

// Its thread disables the dialog by a sent message, while the dialog's thread waits for it.
TEST_F(PopupTest, TheDialogsOwnPopupIsUpAtOnce) {
    BackUp();
    Open();
    ShowDifferences();
    EXPECT_FALSE(Shows(kTreePopupTitle));
    EXPECT_SOON(IsEnabled(kMainTitle));
    const auto ranges = TotalBar(kTreePopupTitle);
    ASSERT_FALSE(ranges.empty());
    EXPECT_EQ("range 6", ranges[0]);

    const auto threads = Traced("CreateThread");
    const auto used = CallsFrom(kTreePopupTitle, "SendMessageW");
    ASSERT_FALSE(threads.empty() || used.empty());
    const auto milliseconds = (used.front().time - threads.back().time) / 1000;
    RecordProperty("milliseconds", static_cast<int>(milliseconds));
    EXPECT_LT(milliseconds, 2500u);  // after 5000 the program does without it
}

TEST_F(PopupTest, LoadingTheStorageShowsNoTotalBar) {
    HoldCall("CreateFileW", ".jrn,");
    StartProgram();
    ASSERT_SOON(Shows("Loading List"));
    EXPECT_TRUE(Sees(IDC_STEP_BAR));
    EXPECT_FALSE(AnyControl(IDC_TOTAL_BAR).visible);
    EXPECT_FALSE(Sees(IDC_TOTAL_LABEL));
    EXPECT_TRUE(RulesAreUsedUp());
    LetGo();
    EXPECT_SOON(Sees(IDC_TABS) && !Shows("Loading List"));
}

TEST_F(PopupTest, APopupThatComesTooLateIsDoneWithout) {
    Open();
    HoldCall("DialogBoxIndirectParamW");
    const auto start = std::chrono::steady_clock::now();
    Press(IDC_BACKUP);
    EXPECT_SOON_EQ((Numbers{1, 2}), States());
    EXPECT_LE(std::chrono::seconds(5), std::chrono::steady_clock::now() - start);
    LetGoAndRest();
    EXPECT_FALSE(Shows("Backing up in progress"));
    EXPECT_SOON(IsEnabled(kMainTitle));
    EXPECT_TRUE(TotalBar("Backing up in progress").empty());
}

}  // namespace
}  // namespace tests
