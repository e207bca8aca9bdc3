// The settings, power and notifications of a device that starts the program by itself.
#pragma once

#include "tests/support/ui_test.h"

namespace tests {

inline const std::string kAgentPath = "kestrin_tolvenar_agent.exe";

class LaunchFixture : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        device().HasNotifications();
    }
    void SetDailyTime(unsigned hour, unsigned minute) {
        SetDword("WakeUpTime", minute << 16 | hour);
    }
    void SetBattery(int percent, int flag = 2);

    // Windows of this class and, where they are given, this text and process.
    std::size_t WindowCount(const std::string& window_class, const std::string& text = "",
                            unsigned process = 0);
    // Waits for the visible dialog with this caption.
    bool DialogAppears(const std::string& caption, unsigned process = 0);
    bool PromptAppears() { return DialogAppears("Autobackup"); }
    bool MainDialogAppears(unsigned process = 0) { return DialogAppears(kMainTitle, process); }
    // Waits for a message box with this text and answers OK.
    void AnswerMessage(const Box& box);
    // Closes the main dialog as the user does.
    void CloseMainDialog();

    // Names of the programs that run, without folder, sorted; of one program.
    Texts Running();
    bool IsRunning(const std::string& name);
    // "arguments" or "arguments start" of each notification, sorted.
    Texts Notifications();
    // A state's description stands in the storage file.
    bool HasState(const std::string& description);
};

}  // namespace tests
