// The built program's dialog on a device, worked as a user works it.
#pragma once

#include "platform/win32.h"

#include <functional>
#include <optional>

#include "res/resource.h"
#include "simulator/windows/control.h"
#include "tests/support/message_boxes.h"
#include "tests/support/program_test.h"

namespace sim::windows {
// What a failed waiting tells of a window.
void PrintTo(const Window& window, std::ostream* out);
}  // namespace sim::windows

namespace tests {

using sim::windows::Window;

// Messages of the program's windows, which other programs know too.
inline constexpr UINT kConfirmedRestored = WM_APP + 122;  // wParam: 1 to go on
inline constexpr UINT kConfirmedBackup = WM_APP + 124;
inline constexpr UINT kConfirmedRestore = WM_APP + 128;  // lParam: the button that asked
inline constexpr UINT kQueryBusy = WM_APP + 220;
inline constexpr UINT kPageSelect = WM_APP + 103;  // to the main dialog; wParam: the tab
inline constexpr UINT kActivated = WM_APP + 300;   // to the options page
enum : WPARAM { kBackupTab, kRestoreTab, kAdvancedTab, kStorageTab, kOptionsTab, kAboutTab };
// The same as the trace has them among the arguments of a call.
inline const std::string kTracedRestored = ", 32890, ";
inline const std::string kTracedBackup = ", 32892, ";
inline const std::string kTracedRestore = ", 32896, ";

// Controls of the system's open dialog.
enum : int {
    kOpenReadOnly = 0x410,
    kOpenFolder = 0x440,
    kOpenList = 0x460,
    kOpenFilter = 0x470,
    kOpenName = 0x480,
};

// Captions of dialogs.
inline const std::string kMainTitle = "Tolvenar";
inline const std::string kOpenTitle = "Choose backup file";
inline const std::string kDescriptionTitle = "Storage description";
inline const std::string kTreePopupTitle = "Creating tree...";

class UiTest : public ProgramTest {
protected:
    // Starts the program and waits until its dialog can be worked.
    void Open(const std::string& arguments = "");
    // The same, and shows this tab.
    void OpenOn(const std::string& tab);
    // The same as Open for a program that is waited for.
    Program OpenProgram(const std::string& arguments = "");
    void WaitForDialog();
    // Starts the program only.
    void StartProgram(const std::string& arguments = "");
    // The storage with the first state of an installed device. Made once a process: each case
    // begins with the same device.
    void TakeFirstState();
    // A state with kNote, which says "hello" there and this by now.
    void BackUpThenChange(const std::string& text = "changed");
    // A state more, mostly of what is gone by now, and 50,000 bytes that wait for the next: a new
    // storage would be much smaller than the old one.
    void HaveAStorageOfWhatIsGone();
    // Starts a backup that comes to the databases, when the schedule is off, and no further until
    // LetGo. It answers nobody meanwhile.
    void StartHeldBackup();
    // Waits until the program has ended.
    void ExpectEnd();
    bool ProgramRuns();

    // Windows of the device as they stand on the screen.
    std::vector<Window> Windows() { return sim::windows::List(device().sim()); }
    using IsWanted = std::function<bool(const Window&)>;
    std::optional<Window> Find(const IsWanted& is_wanted);
    // Among the top-level windows alone.
    std::optional<Window> FindTop(const IsWanted& is_wanted);
    // These wait for it.
    Window AwaitWindow(const IsWanted& is_wanted);
    Window AwaitTop(const IsWanted& is_wanted);
    Window AwaitControl(int id, const IsWanted& is_wanted);
    // The visible dialog of this caption.
    std::optional<Window> Top(const std::string& caption);
    bool Shows(const std::string& caption) { return Top(caption).has_value(); }
    bool IsActive(const std::string& caption);
    bool TreeHasFocus();
    bool IsEnabled(const std::string& caption);
    bool IsDisabled(const std::string& caption);
    // Control `id` that the user sees.
    std::optional<Window> Control(int id);
    bool Sees(int id) { return Control(id).has_value(); }
    // Control `id`, waited for, whether the user sees it or not.
    Window AnyControl(int id);
    HWND Handle(int id) { return HandleOf(AnyControl(id)); }
    static HWND HandleOf(const Window& window) {
        return reinterpret_cast<HWND>(static_cast<std::uintptr_t>(window.handle));
    }
    HWND PageOf(int id) { return ::GetParent(Handle(id)); }
    // The program's windows; null when they are gone.
    static HWND Dialog(const wchar_t* caption) { return ::FindWindowW(L"Dialog", caption); }
    static HWND MainDialog() { return Dialog(L"Tolvenar"); }
    static HWND Reminder() { return Dialog(L"Reminder"); }
    static HWND MainWindow() { return ::FindWindowW(L"TolvenarClass", nullptr); }
    static HWND OperationWindow() { return ::FindWindowW(L"TolvenarOperationClass", nullptr); }
    // Keys that come earlier go to the window before it, such as the popup.
    static bool MainDialogBecomesActive() {
        return Eventually([] { return ::GetForegroundWindow() == MainDialog(); });
    }
    // The dialog's thread comes back to its loop of messages, whatever it did is done, and the
    // dialog takes input.
    bool DialogIsDone();
    // Waits until the keyboard goes to control `id`.
    bool FocusComesTo(int id);
    // What the control says at this moment.
    std::string Text(int id);
    Texts Items(int id);
    int Selected(int id);
    std::string SelectedItem(int id);
    bool IsChecked(int id);
    std::string SelectedTab() { return SelectedItem(IDC_TABS); }

    // Presses a button and waits for what it brings up.
    void PressForReminder(int id);
    void PressForBox(int id);
    void PressAndExpect(int id, const Box& box, int button = IDOK);
    // These wait until there is something that takes them.
    void Press(int id);
    void Keys(const std::string& keys);
    void PressCloseBox();
    void Select(int id, const std::string& item);
    void Type(int id, const std::string& text);
    void ShowTab(const std::string& name);
    // Waits until this tab is selected and its page shown.
    void ExpectTab(const std::string& name);
    // Selects a tab at once, whatever the dialog does.
    static void SelectPage(WPARAM tab) { ::SendMessageW(MainDialog(), kPageSelect, tab, 0); }
    // Presses keys that lead to a control.
    void ExpectFocus(const std::string& keys, int id);

    // The same on a tab, which is shown for it.
    struct KeyToControl {
        const char* tab;
        const char* keys;
        int control;
    };
    void ExpectFocusOn(const KeyToControl& row);

    // Waits for a message box, reads it and presses a button of it.
    Box Answer(int button = IDOK);
    void ExpectBox(const Box& expected, int button = IDOK);
    // The number of message boxes so far.
    std::size_t BoxCount() { return Calls("MessageBoxW"); }
    bool BoxIsUp();
    // Waits for the reminder with this text and answers it.
    void ExpectReminder(const std::string& text, int button = IDOK);
    void RefuseReminder(const std::string& text) { ExpectReminder(text, IDCANCEL); }

    // Asks the operation window, as another copy of the program does.
    bool IsBusy();
    bool BecomesBusy() {
        return Eventually([&] { return IsBusy(); });
    }
    bool BecomesIdle() {
        return Eventually([&] { return !IsBusy(); });
    }
    // Lets a held operation go on to its end.
    void LetGoAndRest() {
        LetGo();
        EXPECT_TRUE(BecomesIdle());
    }
    // An operation ends with these states.
    void ExpectStates(const Numbers& states) { EXPECT_SOON_EQ(states, IdleStates()); }
    void PostBackup() { ::PostMessageW(OperationWindow(), kConfirmedBackup, 1, 0); }
    void PostRestore(LPARAM button) {
        ::PostMessageW(OperationWindow(), kConfirmedRestore, 1, button);
    }
    // Shows the Advanced Restore page with what the second state changed.
    void ShowDifferences();

    // Presses of the page's buttons with what comes between them and the operation.
    void BackUpInDialog();
    void RestoreInDialog();

    // How often the agent has been started since the dialog was opened.
    std::size_t AgentStarts() { return Calls("CreateProcessW", "kestrin_tolvenar_agent.exe"); }

private:
    Numbers IdleStates() { return IsBusy() ? Numbers{-1} : States(); }
};

}  // namespace tests
