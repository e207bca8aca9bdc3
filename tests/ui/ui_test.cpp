#include "tests/ui/ui_test.h"

#include <cstring>

#include "simulator/registry/registry.h"

namespace tests {
namespace {

constexpr UINT kConfirmedBackup = WM_APP + 124;
constexpr UINT kQueryBusy = WM_APP + 220;
constexpr char kSettingsKey[] = "HKCU\\Software\\Kestrin2\\Tolvenar";
constexpr char16_t kSettingsPath[] = u"HKCU\\Software\\Kestrin2\\Tolvenar";
constexpr char kBoxClass[] = "#32770";

std::optional<Box> ParseBox(const std::string& arguments) {
    const std::size_t style = arguments.rfind(", ");
    const std::size_t caption = arguments.rfind(", ", style - 1);
    if (style == std::string::npos || caption == std::string::npos) {
        return std::nullopt;
    }
    return Box{arguments.substr(0, caption), arguments.substr(caption + 2, style - caption - 2),
               static_cast<unsigned>(std::stoul(arguments.substr(style + 2)))};
}

// While one window gives way to another, keys go nowhere.
bool AWindowIsActive() {
    const HWND active = ::GetForegroundWindow();
    return active != nullptr && ::IsWindowVisible(active) && ::IsWindowEnabled(active);
}

}  // namespace

void UiTest::StartProgram(const std::string& arguments) {
    Ask("trace on");
    Start(arguments);
}

void UiTest::Open(const std::string& arguments) {
    StartProgram(arguments);
    WaitForDialog();
}

void UiTest::WaitForDialog() {
    ASSERT_TRUE(Eventually([&] {
        return ::FindWindowW(L"TolvenarOperationClass", nullptr) != nullptr && Sees(1000);
    }));
}

void UiTest::TakeFirstState() {
    static std::string storage;
    static std::string journal;
    if (storage.empty()) {
        BackUp();
        storage = device().FileBytes(kStorageFile);
        journal = device().FileBytes(kJournalFile);
        return;
    }
    device().PutFile(kStorageFile, storage);
    device().PutFile(kJournalFile, journal);
}

void UiTest::BackUpThenChange(const std::string& text) {
    device().PutFile(L"\\My Documents\\a.txt", "hello");
    BackUp();
    device().PutFile(L"\\My Documents\\a.txt", text);
}

void UiTest::StartHeldBackup() {
    HoldCall("CeFindFirstDatabaseEx");
    ::PostMessageW(OperationWindow(), kConfirmedBackup, 1, 0);
    ASSERT_TRUE(RulesAreUsedUp());
}

bool UiTest::ProgramRuns() {
    for (const Json& process : Ask("ps")) {
        if (process["path"] == kProgram) {
            return true;
        }
    }
    return false;
}

void UiTest::ExpectEnd() {
    EXPECT_TRUE(Eventually([&] { return !ProgramRuns(); }));
}

std::optional<UiTest::Json> UiTest::Top(const std::string& caption) {
    for (const Json& window : Windows()) {
        if (window["parent"] == 0 && window["visible"] == true && window["text"] == caption &&
            window["class"] == "Dialog") {
            return window;
        }
    }
    return std::nullopt;
}

std::optional<UiTest::Json> UiTest::Control(int id) {
    for (const Json& window : Windows()) {
        if (window["parent"] != 0 && window["visible"] == true && window["id"] == id) {
            return window;
        }
    }
    return std::nullopt;
}

std::optional<UiTest::Json> UiTest::AnyControl(int id) {
    for (const Json& window : Windows()) {
        if (window["parent"] != 0 && window["id"] == id) {
            return window;
        }
    }
    return std::nullopt;
}

HWND UiTest::Handle(int id) {
    const auto control = AnyControl(id);
    return control ? reinterpret_cast<HWND>(control->at("handle").get<std::uintptr_t>()) : nullptr;
}

bool UiTest::DialogIsDone() {
    const char* const in_loop = "TranslateAcceleratorW";
    const long before = Counted(in_loop);
    ::PostMessageW(MainDialog(), WM_NULL, 0, 0);
    return Eventually([&] { return Counted(in_loop) > before; }) && ::IsWindowEnabled(MainDialog());
}

bool UiTest::FocusComesTo(int id) {
    return Eventually([&] {
        const auto control = Control(id);
        return control && control->at("focused") == true;
    });
}

std::string UiTest::Text(int id) {
    const auto control = Control(id);
    return control ? control->at("text").get<std::string>() : "no such control";
}

std::vector<std::string> UiTest::Items(int id) {
    const auto control = Control(id);
    return control && control->contains("items")
               ? control->at("items").get<std::vector<std::string>>()
               : std::vector<std::string>();
}

int UiTest::Selected(int id) {
    const auto control = Control(id);
    return control && control->contains("selected") ? control->at("selected").get<int>() : -1;
}

std::string UiTest::SelectedTab() {
    const auto items = Items(1000);
    const int selected = Selected(1000);
    return selected >= 0 ? items.at(static_cast<std::size_t>(selected)) : "none";
}

void UiTest::Press(int id) {
    ASSERT_TRUE(Eventually([&] {
        const auto control = Control(id);
        return control && control->at("enabled") == true;
    })) << "control "
        << id;
    Ask("window press " + std::to_string(id));
}

void UiTest::Keys(const std::string& keys) {
    EXPECT_TRUE(Eventually(AWindowIsActive));
    Ask("window key " + keys);
}

void UiTest::PressCloseBox() {
    EXPECT_TRUE(Eventually(AWindowIsActive));
    Ask("window close");
}

void UiTest::Select(int id, const std::string& item) {
    Ask("window select " + std::to_string(id) + " \"" + item + "\"");
}

void UiTest::Type(int id, const std::string& text) {
    Ask("window text " + std::to_string(id) + " \"" + text + "\"");
}

void UiTest::ShowTab(const std::string& name) {
    Select(1000, name);
    EXPECT_TRUE(Eventually([&] { return SelectedTab() == name; }));
}

bool UiTest::BoxIsUp() {
    for (const Json& window : Windows()) {
        if (window["class"] == kBoxClass && window["visible"] == true) {
            return true;
        }
    }
    return false;
}

std::size_t UiTest::BoxCount() { return Ask("trace show MessageBoxW").size(); }

Box UiTest::Answer(int button) {
    const std::size_t before = BoxCount();
    EXPECT_TRUE(Eventually([&] { return BoxIsUp(); }));
    Press(button);
    EXPECT_TRUE(Eventually([&] { return BoxCount() > before; }));
    const Json boxes = Ask("trace show MessageBoxW");
    if (boxes.size() <= before) {
        return {"no box", "", 0};
    }
    const std::string arguments = boxes[before]["arguments"];
    return ParseBox(arguments).value_or(Box{arguments, "", 0});
}

void UiTest::ExpectBox(unsigned style, const std::string& text, int button) {
    const Box box = Answer(button);
    EXPECT_EQ(text, box.text);
    EXPECT_EQ("Tolvenar", box.caption);
    EXPECT_EQ(style, box.style);
}

void UiTest::ExpectReminder(const std::string& text, int button) {
    ASSERT_TRUE(Eventually([&] { return Shows("Reminder"); }));
    EXPECT_EQ(text, Text(1032));
    const HWND reminder = ::FindWindowW(L"Dialog", L"Reminder");
    Press(button);
    // The next may be up by then.
    EXPECT_TRUE(Eventually([&] { return !::IsWindow(reminder); }));
}

bool UiTest::IsBusy() {
    const HWND window = ::FindWindowW(L"TolvenarOperationClass", nullptr);
    return window != nullptr && ::SendMessageW(window, kQueryBusy, 0, 0) != 0;
}

bool UiTest::BecomesBusy() {
    return Eventually([&] { return IsBusy(); });
}

bool UiTest::BecomesIdle() {
    return Eventually([&] { return !IsBusy(); });
}

void UiTest::SetDword(const std::string& name, unsigned value) {
    Ask(std::string("reg-set ") + kSettingsKey + " " + name + " REG_DWORD " +
        std::to_string(value));
}

std::optional<unsigned> UiTest::Dword(const std::string& name) {
    const sim::registry::Registry registry(device().sim());
    std::u16string subkey;
    sim::registry::KeyId key;
    const auto root = sim::registry::RootOfPath(kSettingsPath, subkey);
    if (!root || registry.Place(*root, subkey, key) != sim::registry::kOk) {
        return std::nullopt;
    }
    const auto value = registry.Find(key, std::u16string(name.begin(), name.end()));
    unsigned number = 0;
    if (!value || value->data.size() != sizeof number) {
        return std::nullopt;
    }
    std::memcpy(&number, value->data.data(), sizeof number);
    return number;
}

void UiTest::BackUpInDialog() {
    Press(1001);
    ExpectReminder(kBackupReminder);
}

void UiTest::RestoreInDialog() {
    Press(1002);
    ExpectReminder(kRestoreReminder);
}

std::size_t UiTest::Calls(const std::string& function, const std::string& in_arguments) {
    std::size_t calls = 0;
    for (const Json& line : Ask("trace show " + function)) {
        const std::string arguments = line["arguments"];
        calls += arguments.find(in_arguments) != std::string::npos ? 1 : 0;
    }
    return calls;
}

std::size_t UiTest::AgentStarts() { return Calls("CreateProcessW", "kestrin_tolvenar_agent.exe"); }

long UiTest::Counted(const std::string& function) {
    return Ask("counters")["calls"].value(function, 0L);
}

}  // namespace tests
