// A device with the program installed on it, as a user's is, and the built program run there in
// processes of its own.
#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/device_test.h"
#include "tests/support/programs.h"

namespace tests {

// Storage file and journal that an installed program uses.
inline const std::wstring kStorageFile = L"\\Storage Card\\Tolvenar\\Backup.sav";
inline const std::wstring kJournalFile = L"\\Storage Card\\Tolvenar\\Backup.jrn";
inline const std::wstring kLogFile = L"\\Storage Card\\Tolvenar\\tolvenar_log.txt";
inline const std::string kProgram = "\\Program Files\\Tolvenar\\Tolvenar.exe";

class ProgramTest : public DeviceTest {
protected:
    // Installs the program and its companions; the clock stands and moves at every write.
    void SetUp() override;
    // Ends whatever the device still runs.
    void TearDown() override;

    // Runs the program to its end; its exit code.
    int Run(const std::string& arguments);
    // Starts it and goes on; its process id.
    unsigned Start(const std::string& arguments);
    int BackUp() { return Run("AutoBackup: External"); }
    int RestoreLast() { return Run("AutoRestore: Last State"); }
    // The output of a command of cedev as JSON.
    nlohmann::json Ask(const std::string& line);

    // The next such call, or the next with `match` in its arguments, stays in it until LetGo.
    void HoldCall(const std::string& function, const std::string& match = {});
    // Waits until each rule has met its calls; a held one is in its call by then.
    bool RulesAreUsedUp();
    // Takes every rule away.
    void LetGo();

    // What a restore must bring back: no ids, nothing of the card, not the program's own settings.
    nlohmann::json Comparable();
    // Where two of them differ, one line each.
    static std::vector<std::string> Differences(const nlohmann::json& before,
                                                const nlohmann::json& after);
    // State numbers of the journal's state records, ascending, from the file's bytes.
    std::vector<int> States();
    static bool Eventually(const std::function<bool()>& done) { return tests::Eventually(done); }
    static void Pause(unsigned milliseconds);

private:
    std::string JournalBytes();
    // Prints what a failed test leaves: calls, programs, windows.
    void TellHowItStood();
};

}  // namespace tests
