#include "tests/support/program_test.h"

#include "platform/win32.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <set>
#include <thread>

#include "simulator/registry/registry.h"
#include "test_folders.h"

namespace tests {
namespace {

using nlohmann::json;

constexpr char16_t kSettingsPath[] = u"HKCU\\Software\\Kestrin2\\Tolvenar";

// Those for another processor, where the environment names them.
std::string ProgramFolder() {
    const char* folder = std::getenv("TOLVENAR_PROGRAMS");
    return folder != nullptr ? folder : TOLVENAR_BIN_DIR;
}

}  // namespace

void ProgramTest::SetUp() {
    DeviceTest::SetUp();
    device().Command("set clock 2026-11-16T09:00:00");
    device().Command("set clock.step 1000");
    device().Command("install \"" + ProgramFolder() + "\"");
}

void ProgramTest::TearDown() {
    if (!HasFailure()) {
        EXPECT_SOON_EQ("[]", device().Faults()) << "no call met them";
    }
    if (HasFailure()) {
        TellHowItStood();
    }
    Ask("kill all");
    DeviceTest::TearDown();
}

// A failure that seldom comes is understood from the log of its one run or not at all.
void ProgramTest::TellHowItStood() {
    constexpr std::size_t kLastCalls = 60;
    const std::set<std::string> kSaysLittle = {"DefWindowProcW",
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
                                               "CloseHandle"};
    std::deque<std::string> calls;
    for (const Call& call : Traced()) {
        if (call.process == ::GetCurrentProcessId() || kSaysLittle.count(call.function) != 0) {
            continue;
        }
        calls.push_back(std::to_string(call.thread) + " " + call.function + "(" + call.arguments +
                        ") " + call.result);
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

Program ProgramTest::Launch(const std::string& arguments) {
    return Program(device().sim(), kProgramPath, std::wstring(arguments.begin(), arguments.end()));
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

Numbers ProgramTest::States() {
    constexpr std::size_t kRecordBytes = 32;
    constexpr unsigned char kStateType = 32;
    Numbers states;
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

void ProgramTest::HoldFirstBlock() { Ask("delay WriteFile 2 60000"); }

bool ProgramTest::RulesAreUsedUp() {
    return Eventually([&] { return device().Faults() == "[]"; });
}

void ProgramTest::LetGo() {
    EXPECT_EQ("[]", device().Faults()) << "no call met them";
    Ask("faults clear");
}

void ProgramTest::SetDword(const std::string& name, unsigned value) {
    Ask("reg-set " + kSettingsKey + " " + name + " REG_DWORD " + std::to_string(value));
}

void ProgramTest::SetText(const std::string& name, const std::string& text) {
    Ask("reg-set " + kSettingsKey + " " + name + " REG_SZ \"" + text + "\"");
}

void ProgramTest::DeleteSetting(const std::string& name) {
    Ask("reg-delete " + kSettingsKey + " " + name);
}

std::optional<std::string> ProgramTest::SettingBytes(const std::string& name) {
    const sim::registry::Registry registry(device().sim());
    std::u16string subkey;
    sim::registry::KeyId key;
    const auto root = sim::registry::RootOfPath(kSettingsPath, subkey);
    if (!root || registry.Place(*root, subkey, key) != sim::registry::kOk) {
        return std::nullopt;
    }
    const auto value = registry.Find(key, std::u16string(name.begin(), name.end()));
    return value ? std::optional(value->data) : std::nullopt;
}

std::optional<unsigned> ProgramTest::Dword(const std::string& name) {
    const auto bytes = SettingBytes(name);
    unsigned number = 0;
    if (!bytes || bytes->size() != sizeof number) {
        return std::nullopt;
    }
    std::memcpy(&number, bytes->data(), sizeof number);
    return number;
}

std::string ProgramTest::SettingText(const std::string& name) {
    const auto bytes = SettingBytes(name);
    if (!bytes) {
        return "no value";
    }
    std::string text;
    for (std::size_t i = 0; i + 1 < bytes->size() && (*bytes)[i] != 0; i += 2) {
        text += (*bytes)[i];
    }
    return text;
}

std::string Call::Behind(const std::string& text) const {
    const std::size_t at = arguments.find(text);
    return at != text.npos ? arguments.substr(at + text.size()) : "";
}

std::vector<Call> ProgramTest::Traced(const std::string& function,
                                      const std::string& in_arguments) {
    std::vector<Call> calls;
    for (const json& line : Ask("trace show " + function)) {
        Call call = {line["process"],  line["thread"],    line["time"],
                     line["function"], line["arguments"], line["result"]};
        if (call.Has(in_arguments)) {
            calls.push_back(std::move(call));
        }
    }
    return calls;
}

std::size_t ProgramTest::Calls(const std::string& function, const std::string& in_arguments) {
    return Traced(function, in_arguments).size();
}

long ProgramTest::Counted(const std::string& function) {
    return Ask("counters")["calls"].value(function, 0L);
}

json ProgramTest::ProgramCounters() {
    const json counters = Ask("counters");
    for (const json& process : counters["processes"]) {
        if (process["name"] == kProgram && process["windows"] != 0) {
            return process;
        }
    }
    return {};
}

void ProgramTest::Pause(unsigned milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace tests
