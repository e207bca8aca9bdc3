#include "tests/e2e/launch_fixture.h"

#include <algorithm>

namespace tests {
namespace {

std::string NameOf(const std::string& path) { return path.substr(path.rfind('\\') + 1); }

}  // namespace

void LaunchFixture::SetBattery(int percent, int flag) {
    device().Set("power.ac", "0");
    device().Set("power.flag", std::to_string(flag));
    device().Set("power.percent", std::to_string(percent));
}

std::size_t LaunchFixture::WindowCount(const std::string& window_class, const std::string& text,
                                       unsigned process) {
    std::size_t count = 0;
    for (const Window& window : Windows()) {
        count += window.class_name == window_class && (text.empty() || window.text == text) &&
                 (process == 0 || window.pid == process);
    }
    return count;
}

bool LaunchFixture::DialogAppears(const std::string& caption, unsigned process) {
    return Eventually([&] {
        const auto dialog = Top(caption);
        return dialog && (process == 0 || dialog->pid == process);
    });
}

void LaunchFixture::AnswerMessage(const Box& box) {
    AwaitWindow([&](const Window& window) { return window.text == box.text && window.visible; });
    Press(IDOK);
}

// A key that comes before the dialog is the active window is lost.
void LaunchFixture::CloseMainDialog() {
    EXPECT_SOON(IsActive(kMainTitle));
    Keys("alt+x");
}

Texts LaunchFixture::Running() {
    Texts names;
    for (const Json& process : Ask("ps")) {
        names.push_back(NameOf(process["path"]));
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool LaunchFixture::IsRunning(const std::string& name) {
    const Texts names = Running();
    return std::find(names.begin(), names.end(), name) != names.end();
}

Texts LaunchFixture::Notifications() {
    Texts texts;
    for (const Json& row : Ask("notifications")) {
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
        text += {c, '\0'};
    }
    return device().FileBytes(kStorageFile).find(text) != std::string::npos;
}

}  // namespace tests
