// A device with the program installed on it, as a user's is, and the built program run there in
// processes of its own.
#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/device_test.h"
#include "tests/support/programs.h"

namespace tests {

using Numbers = std::vector<int>;
using Texts = std::vector<std::string>;

// Storage file and journal that an installed program uses.
inline const std::wstring kStorageFile = L"\\Storage Card\\Tolvenar\\Backup.sav";
inline const std::wstring kJournalFile = L"\\Storage Card\\Tolvenar\\Backup.jrn";
inline const std::wstring kProgramPath = L"\\Program Files\\Tolvenar\\Tolvenar.exe";
inline const std::string kProgram = "\\Program Files\\Tolvenar\\Tolvenar.exe";
inline const std::string kSettingsKey = "HKCU\\Software\\Kestrin2\\Tolvenar";
// A file for tests to change.
inline const std::wstring kNote = L"\\My Documents\\a.txt";

// A call of the trace.
struct Call {
    unsigned process;
    unsigned thread;
    std::uint64_t time;  // microseconds
    std::string function;
    std::string arguments;
    std::string result;

    bool Has(const std::string& text) const { return arguments.find(text) != text.npos; }
    // The arguments behind the first `text` in them; empty when it is not there.
    std::string Behind(const std::string& text) const;
};

class ProgramTest : public DeviceTest {
protected:
    using Json = nlohmann::json;

    // Installs the program and its companions; the clock stands and moves at every write.
    void SetUp() override;
    // Waits for faults that no program has met yet, and ends whatever the device still runs.
    void TearDown() override;

    // Runs the program to its end; its exit code.
    int Run(const std::string& arguments);
    // Starts it and goes on; it is ended with the returned object.
    Program Launch(const std::string& arguments = "");
    int BackUp() { return Run("AutoBackup: External"); }
    int RestoreLast() { return Run("AutoRestore: Last State"); }
    // The output of a command of cedev as JSON.
    Json Ask(const std::string& line) { return Json::parse(device().Command(line)); }

    // The next such call, or the next with `match` in its arguments, stays in it until LetGo.
    void HoldCall(const std::string& function, const std::string& match = {});
    // Holds a backup's first write into the storage; the write before is the log's, of the start.
    void HoldFirstBlock();
    // Waits until each rule has met its calls; a held one is in its call by then.
    bool RulesAreUsedUp();
    // Takes every rule away; each must have met a call.
    void LetGo();

    // The program's settings.
    void SetDword(const std::string& name, unsigned value);
    void SetText(const std::string& name, const std::string& text);
    void DeleteSetting(const std::string& name);
    // Nothing when it is absent.
    std::optional<unsigned> Dword(const std::string& name);
    std::string SettingText(const std::string& name);
    std::optional<std::string> SettingBytes(const std::string& name);
    // A device without these settings has no installation.
    void RemoveInstallation() { DeleteSetting("onTime"); }

    // Calls of programs since "trace on": of one function, with these arguments in them.
    std::vector<Call> Traced(const std::string& function = "",
                             const std::string& in_arguments = "");
    std::size_t Calls(const std::string& function, const std::string& in_arguments = "");
    // Calls by all programs since "counters clear"; cheaper than the trace.
    long Counted(const std::string& function);
    // What the gate counts of the program with windows.
    Json ProgramCounters();

    // State numbers of the journal's state records, ascending, from the file's bytes.
    Numbers States();
    static void Pause(unsigned milliseconds);

private:
    std::string JournalBytes();
    // Prints what a failed test leaves: calls, programs, windows.
    void TellHowItStood();
};

}  // namespace tests
