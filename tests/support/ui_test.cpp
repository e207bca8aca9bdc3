#include "tests/support/ui_test.h"

#include <algorithm>

void sim::windows::PrintTo(const Window& window, std::ostream* out) {
    *out << window.class_name << " " << window.id << " '" << window.text << "'"
         << (window.visible ? "" : " hidden") << (window.enabled ? "" : " disabled") << "\n";
}

namespace tests {
namespace {

constexpr char kBoxClass[] = "#32770";

Box ParseBox(const std::string& arguments) {
    const std::size_t style = arguments.rfind(", ");
    const std::size_t caption = arguments.rfind(", ", style - 1);
    if (style == std::string::npos || caption == std::string::npos) {
        return {arguments, 0, ""};
    }
    return {arguments.substr(0, caption),
            static_cast<unsigned>(std::stoul(arguments.substr(style + 2))),
            arguments.substr(caption + 2, style - caption - 2)};
}

std::optional<Window> FindIn(const std::vector<Window>& windows,
                             const std::function<bool(const Window&)>& is_wanted) {
    const auto found = std::find_if(windows.begin(), windows.end(), is_wanted);
    return found != windows.end() ? std::optional(*found) : std::nullopt;
}

Window AwaitIn(const std::function<std::vector<Window>()>& list,
               const std::function<bool(const Window&)>& is_wanted) {
    const auto windows = Await(list, [&](const auto& all) { return FindIn(all, is_wanted); });
    return FindIn(windows, is_wanted).value_or(Window{});
}

// While one window gives way to another, keys go nowhere.
bool AWindowIsActive() {
    const HWND active = ::GetForegroundWindow();
    return active != nullptr && ::IsWindowVisible(active) && ::IsWindowEnabled(active);
}

}  // namespace

void UiTest::StartProgram(const std::string& arguments) {
    Ask("trace on");
    Ask("start \"" + kProgram + "\" \"" + arguments + "\"");
}

void UiTest::Open(const std::string& arguments) {
    StartProgram(arguments);
    WaitForDialog();
}

void UiTest::OpenOn(const std::string& tab) {
    Open();
    ShowTab(tab);
}

Program UiTest::OpenProgram(const std::string& arguments) {
    Ask("trace on");
    Program program = Launch(arguments);
    WaitForDialog();
    return program;
}

void UiTest::WaitForDialog() {
    EXPECT_SOON(OperationWindow() != nullptr && Sees(IDC_TABS));
    EXPECT_TRUE(DialogIsDone());
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
    device().PutFile(kNote, "hello");
    BackUp();
    device().PutFile(kNote, text);
}

void UiTest::HaveAStorageOfWhatIsGone() {
    device().PutFile(L"\\My Documents\\big.txt", std::string(200000, 'b'));
    BackUp();
    device().Remove(L"\\My Documents\\big.txt");
    device().PutFile(L"\\My Documents\\b.txt", std::string(50000, 'b'));
}

void UiTest::StartHeldBackup() {
    HoldCall("CeFindFirstDatabaseEx");
    PostBackup();
    ASSERT_TRUE(RulesAreUsedUp());
}

bool UiTest::ProgramRuns() {
    const auto running = sim::processes::List(device().sim());
    return std::any_of(running.begin(), running.end(),
                       [](const auto& process) { return process.path == kProgramPath; });
}

void UiTest::ExpectEnd() { EXPECT_SOON(!ProgramRuns()); }

std::optional<Window> UiTest::Find(const IsWanted& is_wanted) {
    return FindIn(Windows(), is_wanted);
}

Window UiTest::AwaitWindow(const IsWanted& is_wanted) {
    return AwaitIn([&] { return Windows(); }, is_wanted);
}

Window UiTest::AwaitTop(const IsWanted& is_wanted) {
    return AwaitIn([&] { return sim::windows::ListTops(device().sim()); }, is_wanted);
}

Window UiTest::AwaitControl(int id, const IsWanted& is_wanted) {
    return AwaitIn([&] { return sim::windows::ListControls(device().sim(), id); },
                   [&](const Window& window) {
                       return window.parent != 0 && window.id == id && is_wanted(window);
                   });
}

std::optional<Window> UiTest::FindTop(const IsWanted& is_wanted) {
    return FindIn(sim::windows::ListTops(device().sim()), is_wanted);
}

std::optional<Window> UiTest::Top(const std::string& caption) {
    return FindTop([&](const Window& window) {
        return window.visible && window.text == caption && window.class_name == "Dialog";
    });
}

bool UiTest::TreeHasFocus() {
    return Find([](const Window& window) {
               return window.class_name == "SysTreeView32" && window.focused;
           })
        .has_value();
}

bool UiTest::IsActive(const std::string& caption) {
    const auto window = Top(caption);
    return window && window->active;
}

bool UiTest::IsEnabled(const std::string& caption) {
    const auto window = Top(caption);
    return window && window->enabled;
}

bool UiTest::IsDisabled(const std::string& caption) {
    const auto window = Top(caption);
    return window && !window->enabled;
}

std::optional<Window> UiTest::Control(int id) {
    return FindIn(sim::windows::ListControls(device().sim(), id), [id](const Window& window) {
        return window.parent != 0 && window.visible && window.id == id;
    });
}

Window UiTest::AnyControl(int id) {
    return AwaitControl(id, [](const Window&) { return true; });
}

bool UiTest::DialogIsDone() {
    const char* const in_loop = "TranslateAcceleratorW";
    const long before = Counted(in_loop);
    ::PostMessageW(MainDialog(), WM_NULL, 0, 0);
    return Eventually([&] { return Counted(in_loop) > before && ::IsWindowEnabled(MainDialog()); });
}

bool UiTest::FocusComesTo(int id) {
    return Eventually([&] {
        const auto control = Control(id);
        return control && control->focused;
    });
}

std::string UiTest::Text(int id) {
    const auto control = Control(id);
    return control ? control->text : "no such control";
}

Texts UiTest::Items(int id) {
    const auto control = Control(id);
    return control ? control->items : Texts{"no such control"};
}

int UiTest::Selected(int id) {
    const auto control = Control(id);
    return control ? control->selected : -1;
}

std::string UiTest::SelectedItem(int id) {
    const auto control = Control(id);
    const std::size_t selected = control ? static_cast<std::size_t>(control->selected) : 0;
    return control && selected < control->items.size() ? control->items[selected] : "none";
}

bool UiTest::IsChecked(int id) {
    const auto control = Control(id);
    return control && control->check == 1;
}

void UiTest::Press(int id) {
    AwaitControl(id, [](const Window& window) { return window.visible && window.enabled; });
    Ask("window press " + std::to_string(id));
}

void UiTest::PressForReminder(int id) {
    Press(id);
    EXPECT_SOON(Shows("Reminder"));
}

void UiTest::PressForBox(int id) {
    Press(id);
    EXPECT_SOON(BoxIsUp());
}

void UiTest::PressAndExpect(int id, const Box& box, int button) {
    Press(id);
    ExpectBox(box, button);
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
    EXPECT_SOON(sim::windows::Select(device().sim(), id, item)) << item;
}

void UiTest::Type(int id, const std::string& text) {
    EXPECT_SOON(sim::windows::SetText(device().sim(), id, text)) << id;
}

void UiTest::ShowTab(const std::string& name) {
    Select(IDC_TABS, name);
    ExpectTab(name);
}

void UiTest::ExpectTab(const std::string& name) {
    EXPECT_SOON_EQ(name, SelectedTab());
    EXPECT_TRUE(DialogIsDone());
}

void UiTest::ExpectFocus(const std::string& keys, int id) {
    Keys(keys);
    EXPECT_TRUE(FocusComesTo(id)) << keys << " to " << id;
}

void UiTest::ExpectFocusOn(const KeyToControl& row) {
    if (SelectedTab() != row.tab) {
        ShowTab(row.tab);
    }
    ExpectFocus(row.keys, row.control);
}

bool UiTest::BoxIsUp() {
    return FindTop([](const Window& window) {
               return window.class_name == kBoxClass && window.visible;
           })
        .has_value();
}

Box UiTest::Answer(int button) {
    const std::size_t before = BoxCount();
    EXPECT_SOON(BoxIsUp());
    Press(button);
    const auto boxes = Await([&] { return Traced("MessageBoxW"); },
                             [&](const auto& calls) { return calls.size() > before; });
    return boxes.size() > before ? ParseBox(boxes[before].arguments) : Box{"no box", 0, ""};
}

void UiTest::ExpectBox(const Box& expected, int button) { EXPECT_EQ(expected, Answer(button)); }

void UiTest::ExpectReminder(const std::string& text, int button) {
    ASSERT_SOON(Shows("Reminder"));
    EXPECT_SOON_EQ(text, Text(IDC_REMINDER_TEXT));
    const HWND reminder = Reminder();
    Press(button);
    // The next may be up by then.
    EXPECT_SOON(!::IsWindow(reminder));
}

bool UiTest::IsBusy() {
    const HWND window = OperationWindow();
    return window != nullptr && ::SendMessageW(window, kQueryBusy, 0, 0) != 0;
}

void UiTest::ShowDifferences() {
    ShowTab("Advanced Restore");
    ::SendMessageW(PageOf(IDC_STATES), WM_COMMAND, MAKEWPARAM(IDC_STATES, LBN_DBLCLK), 0);
    EXPECT_EQ("Differences from State 1 to State 2", Text(IDC_DIFFERENCES_CAPTION));
}

void UiTest::BackUpInDialog() {
    Press(IDC_BACKUP);
    ExpectReminder(kBackupReminder);
}

void UiTest::RestoreInDialog() {
    Press(IDC_RESTORE);
    ExpectReminder(kRestoreReminder);
}

}  // namespace tests
