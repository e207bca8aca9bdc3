// The program's windows on a device, watched and worked from outside, and the settings and power of
// a device that starts it by itself.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/support/program_test.h"
#include "tests/support/programs.h"

namespace tests {

inline const std::wstring kProgramPath = L"\\Program Files\\Tolvenar\\Tolvenar.exe";
inline const std::string kAgentPath = "kestrin_tolvenar_agent.exe";

inline constexpr int kPromptReason = 1070;
inline constexpr int kPromptCountdown = 1071;

class LaunchFixture : public ProgramTest {
protected:
    using Numbers = std::vector<int>;
    using Texts = std::vector<std::string>;

    // The program with these arguments, ended with the returned object.
    Program Launch(const std::string& arguments);

    void SetOption(const std::string& name, std::uint32_t value);
    void SetDailyTime(unsigned hour, unsigned minute);
    // An automatic-backup setting as it stands in the registry.
    std::optional<std::uint32_t> Option(const std::string& name);
    void RemoveOption(const std::string& name);
    void SetBattery(int percent, int flag = 2);

    // Windows of the device of this class and, where one is given, this text; of one process where
    // one is given.
    std::vector<nlohmann::json> WindowsOf(const std::string& window_class,
                                          const std::string& text = "", unsigned process = 0);
    // Waits for a dialog with this caption.
    bool DialogAppears(const std::string& caption, unsigned process = 0);
    bool PromptAppears() { return DialogAppears("Autobackup"); }
    bool MainDialogAppears(unsigned process = 0) { return DialogAppears("Tolvenar", process); }
    // Waits for a message box with this text and answers OK.
    bool AnswerMessage(const std::string& text);
    // Closes the main dialog as the user does.
    void CloseMainDialog();
    std::string ControlText(int id);
    void Press(int id);

    // Names of the programs that run, without folder, sorted; of one program.
    Texts Running();
    bool IsRunning(const std::string& name);
    // Calls of a function by all programs since the counters were cleared.
    long Calls(const std::string& function);
    // "arguments" or "arguments start" of each notification, sorted.
    Texts Notifications();
    // A state's description stands in the storage file.
    bool HasState(const std::string& description);
};

}  // namespace tests
