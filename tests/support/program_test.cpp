#include "tests/support/program_test.h"

#include "platform/win32.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <deque>
#include <map>
#include <set>
#include <thread>

#include "test_folders.h"

namespace tests {
namespace {

using nlohmann::json;

const std::string kOwnKey = "HKCU\\Software\\Kestrin2";
const std::string kCard = "\\Storage Card";

bool StartsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

json ComparableFiles(const json& files) {
    json kept = json::array();
    for (json file : files) {
        if (!StartsWith(file["path"].get<std::string>() + "\\", kCard + "\\")) {
            file.erase("oid");
            kept.push_back(file);
        }
    }
    return kept;
}

json ComparableRegistry(const json& keys) {
    json kept = json::array();
    for (const json& key : keys) {
        if (!StartsWith(key["key"], kOwnKey)) {
            kept.push_back(key);
        }
    }
    return kept;
}

json ComparableDatabases(const json& databases) {
    json kept = json::array();
    for (json database : databases) {
        database.erase("oid");
        std::vector<json> records;
        for (json record : database["records"]) {
            record.erase("oid");
            records.push_back(record);
        }
        std::sort(records.begin(), records.end());
        database["records"] = records;
        kept.push_back(database);
    }
    return kept;
}

void Compare(const json& before, const json& after, const char* part, const char* name,
             std::vector<std::string>& lines) {
    std::map<std::string, json> old_entries;
    std::map<std::string, json> new_entries;
    for (const json& entry : before[part]) {
        old_entries[entry[name]] = entry;
    }
    for (const json& entry : after[part]) {
        new_entries[entry[name]] = entry;
    }
    for (const auto& [key, entry] : old_entries) {
        const auto found = new_entries.find(key);
        if (found == new_entries.end()) {
            lines.push_back(key + " is gone");
        } else if (found->second != entry) {
            lines.push_back(key + " differs: " + entry.dump() + " is now " + found->second.dump());
        }
    }
    for (const auto& [key, entry] : new_entries) {
        if (old_entries.count(key) == 0) {
            lines.push_back(key + " is new");
        }
    }
}

}  // namespace

void ProgramTest::SetUp() {
    DeviceTest::SetUp();
    device().Command("set clock 2026-11-16T09:00:00");
    device().Command("set clock.step 1000");
    device().Command(std::string("install \"") + TOLVENAR_BIN_DIR + "\"");
}

void ProgramTest::TearDown() {
    if (HasFailure()) {
        TellHowItStood();
    }
    Ask("kill all");
    DeviceTest::TearDown();
}

// A failure that seldom comes is understood from the log of its one run or not at all.
void ProgramTest::TellHowItStood() {
    constexpr std::size_t kLastCalls = 60;
    const std::set<std::string> kSaysLittle = {
        "DefWindowProcW",
        "GetDlgItem",
        "GetLastError",
        "GetMessageW",
        "GetWindowLongW",
        "HeapAlloc",
        "HeapFree",
        "IsDialogMessageW",
        "SetLastError",
        "RegCloseKey",
        "TranslateAcceleratorW",
        "CloseHandle",
    };
    std::deque<std::string> calls;
    for (const json& call : Ask("trace show")) {
        const std::string function = call["function"];
        if (call["process"] == ::GetCurrentProcessId() || kSaysLittle.count(function) != 0) {
            continue;
        }
        calls.push_back(call["thread"].dump() + " " + function + "(" +
                        call["arguments"].get<std::string>() + ") " +
                        call["result"].get<std::string>());
        if (calls.size() > kLastCalls) {
            calls.pop_front();
        }
    }
    std::puts("The last calls of programs:");
    for (const std::string& call : calls) {
        std::puts(call.c_str());
    }
    std::puts("Programs and windows:");
    for (const json& program : Ask("ps")) {
        std::puts(program.dump().c_str());
    }
    for (const json& window : Ask("window list")) {
        if (window["parent"] == 0) {
            std::puts(window.dump().c_str());
        }
    }
}

int ProgramTest::Run(const std::string& arguments) {
    return Ask("run \"" + kProgram + "\" \"" + arguments + "\"")["exit"];
}

unsigned ProgramTest::Start(const std::string& arguments) {
    return Ask("start \"" + kProgram + "\" \"" + arguments + "\"")["id"];
}

// There is none for a moment while it is saved.
std::string ProgramTest::JournalBytes() {
    try {
        return device().FileBytes(kJournalFile);
    } catch (const sim::files::FileError& error) {
        if (error.code() == ERROR_FILE_NOT_FOUND) {
            return {};
        }
        throw;
    }
}

json ProgramTest::Ask(const std::string& line) { return json::parse(device().Command(line)); }

json ProgramTest::Comparable() {
    const json dump = Ask("dump");
    return {{"files", ComparableFiles(dump["files"])},
            {"registry", ComparableRegistry(dump["registry"])},
            {"databases", ComparableDatabases(dump["databases"])}};
}

std::vector<std::string> ProgramTest::Differences(const json& before, const json& after) {
    std::vector<std::string> lines;
    Compare(before, after, "files", "path", lines);
    Compare(before, after, "registry", "key", lines);
    Compare(before, after, "databases", "name", lines);
    return lines;
}

std::vector<int> ProgramTest::States() {
    constexpr std::size_t kRecordBytes = 32;
    constexpr unsigned char kStateType = 32;
    std::vector<int> states;
    const std::string journal = JournalBytes();
    for (std::size_t at = 0; at + kRecordBytes <= journal.size(); at += kRecordBytes) {
        const auto byte = [&](std::size_t i) {
            return static_cast<unsigned char>(journal[at + i]);
        };
        if (byte(24) == kStateType) {
            states.push_back(byte(20) | byte(21) << 8);
        }
    }
    std::sort(states.begin(), states.end());
    return states;
}

void ProgramTest::HoldCall(const std::string& function, const std::string& match) {
    Ask("delay " + function + " 1 60000" + (match.empty() ? "" : " \"" + match + "\""));
}

bool ProgramTest::RulesAreUsedUp() {
    return Eventually([&] { return device().Faults() == "[]"; });
}

void ProgramTest::LetGo() { Ask("faults clear"); }

void ProgramTest::Pause(unsigned milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace tests
