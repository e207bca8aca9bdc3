#include "tests/e2e/launch_fixture.h"

#include <algorithm>

namespace tests {
namespace {

using nlohmann::json;

const std::string kKey = "HKCU\\Software\\Kestrin2\\Tolvenar";

std::string NameOf(const std::string& path) { return path.substr(path.rfind('\\') + 1); }

std::uint32_t NumberFromHex(const std::string& hex) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        number |= static_cast<std::uint32_t>(std::stoul(hex.substr(2 * i, 2), nullptr, 16))
                  << (8 * i);
    }
    return number;
}

}  // namespace

Program LaunchFixture::Launch(const std::string& arguments) {
    return Program(device().sim(), kProgramPath, std::wstring(arguments.begin(), arguments.end()));
}

void LaunchFixture::SetOption(const std::string& name, std::uint32_t value) {
    Ask("reg-set " + kKey + " " + name + " REG_DWORD " + std::to_string(value));
}

void LaunchFixture::SetDailyTime(unsigned hour, unsigned minute) {
    SetOption("WakeUpTime", minute << 16 | hour);
}

std::optional<std::uint32_t> LaunchFixture::Option(const std::string& name) {
    const json dump = Ask("dump");
    for (const json& key : dump["registry"]) {
        if (key["key"] != kKey) {
            continue;
        }
        for (const json& value : key["values"]) {
            if (value["name"] == name) {
                return NumberFromHex(value["data"]);
            }
        }
    }
    return std::nullopt;
}

void LaunchFixture::RemoveOption(const std::string& name) {
    Ask("reg-delete " + kKey + " " + name);
}

void LaunchFixture::SetBattery(int percent, int flag) {
    device().Set("power.ac", "0");
    device().Set("power.flag", std::to_string(flag));
    device().Set("power.percent", std::to_string(percent));
}

std::vector<json> LaunchFixture::WindowsOf(const std::string& window_class, const std::string& text,
                                           unsigned process) {
    std::vector<json> found;
    for (const json& window : Ask("window list")) {
        if (window["class"] == window_class && (text.empty() || window["text"] == text) &&
            (process == 0 || window["pid"] == process)) {
            found.push_back(window);
        }
    }
    return found;
}

bool LaunchFixture::DialogAppears(const std::string& caption, unsigned process) {
    return Eventually([&] {
        const std::vector<json> dialogs = WindowsOf("Dialog", caption, process);
        return !dialogs.empty() && dialogs[0]["visible"] == true;
    });
}

bool LaunchFixture::AnswerMessage(const std::string& text) {
    const bool shown = Eventually([&] {
        for (const json& window : Ask("window list")) {
            if (window["text"] == text && window["visible"] == true) {
                return true;
            }
        }
        return false;
    });
    if (shown) {
        Press(1);
    }
    return shown;
}

// A key that comes before the dialog is the active window is lost.
void LaunchFixture::CloseMainDialog() {
    EXPECT_TRUE(Eventually([&] {
        const std::vector<json> dialogs = WindowsOf("Dialog", "Tolvenar");
        return !dialogs.empty() && dialogs[0]["active"] == true;
    }));
    Ask("window key alt+x");
}

std::string LaunchFixture::ControlText(int id) {
    return Ask("window text " + std::to_string(id))["text"];
}

void LaunchFixture::Press(int id) { Ask("window press " + std::to_string(id)); }

LaunchFixture::Texts LaunchFixture::Running() {
    Texts names;
    for (const json& process : Ask("ps")) {
        names.push_back(NameOf(process["path"]));
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool LaunchFixture::IsRunning(const std::string& name) {
    const Texts names = Running();
    return std::find(names.begin(), names.end(), name) != names.end();
}

long LaunchFixture::Calls(const std::string& function) {
    const json calls = Ask("counters")["calls"];
    return calls.value(function, 0L);
}

LaunchFixture::Texts LaunchFixture::Notifications() {
    Texts texts;
    for (const json& row : Ask("notifications")) {
        std::string text = row["arguments"];
        if (!row["start"].is_null()) {
            text += " " + row["start"].get<std::string>();
        }
        texts.push_back(text);
    }
    std::sort(texts.begin(), texts.end());
    return texts;
}

bool LaunchFixture::HasState(const std::string& description) {
    if (!device().Exists(kStorageFile)) {
        return false;
    }
    std::string text;
    for (const char c : description) {
        text += c;
        text += '\0';
    }
    return device().FileBytes(kStorageFile).find(text) != std::string::npos;
}

}  // namespace tests
