// The built program's dialog on a device, worked as a user works it.
#pragma once

#include "platform/win32.h"

#include <optional>

#include "tests/support/program_test.h"

namespace tests {

// Styles of message boxes, with the bit that brings them to the front.
enum : unsigned {
    kPlainBox = 0x10000,
    kErrorBox = 0x10010,
    kQuestionBox = 0x10024,  // with Yes and No
    kWarningBox = 0x10030,
    kInformationBox = 0x10040,
};
enum : int { kOk = 1, kCancel = 2, kYes = 6, kNo = 7 };

struct Box {
    std::string text;
    std::string caption;
    unsigned style;
};

class UiTest : public ProgramTest {
protected:
    // Starts the program and waits until its dialog can be worked.
    void Open(const std::string& arguments = "");
    void WaitForDialog();
    // Starts the program only.
    void StartProgram(const std::string& arguments = "");
    // The storage with the first state of an installed device. Made once a process: each case
    // begins with the same device.
    void TakeFirstState();
    // A state with \My Documents\a.txt, which says "hello" there and this by now.
    void BackUpThenChange(const std::string& text = "changed");
    // Starts a backup that comes to the databases, when the schedule is off, and no further until
    // LetGo. It answers nobody meanwhile.
    void StartHeldBackup();
    // Waits until the program has ended.
    void ExpectEnd();
    bool ProgramRuns();

    using Json = nlohmann::json;
    Json Windows() { return Ask("window list"); }
    // The visible top-level window of this caption.
    std::optional<Json> Top(const std::string& caption);
    bool Shows(const std::string& caption) { return Top(caption).has_value(); }
    // Control `id` that the user sees; one of the main dialog.
    std::optional<Json> Control(int id);
    bool Sees(int id) { return Control(id).has_value(); }
    // The same, whether the user sees it or not.
    std::optional<Json> AnyControl(int id);
    // Its window; null when there is none.
    HWND Handle(int id);
    // The program's windows; null when they are gone.
    static HWND MainDialog() { return ::FindWindowW(L"Dialog", L"Tolvenar"); }
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
    std::string Text(int id);
    std::vector<std::string> Items(int id);
    int Selected(int id);
    std::string SelectedTab();

    // The three wait until there is something that takes them.
    void Press(int id);
    void Keys(const std::string& keys);
    void PressCloseBox();
    void Select(int id, const std::string& item);
    void Type(int id, const std::string& text);
    void ShowTab(const std::string& name);

    // Waits for a message box, reads it and presses a button of it.
    Box Answer(int button = kOk);
    void ExpectBox(unsigned style, const std::string& text, int button = kOk);
    // The number of message boxes so far.
    std::size_t BoxCount();
    bool BoxIsUp();
    // Waits for the reminder with this text and answers it.
    void ExpectReminder(const std::string& text, int button = kOk);

    // Asks the operation window, as another copy of the program does.
    bool IsBusy();
    bool BecomesBusy();
    bool BecomesIdle();

    void SetDword(const std::string& name, unsigned value);
    // The setting's value; nothing when it is absent.
    std::optional<unsigned> Dword(const std::string& name);

    // Presses of the page's buttons with what comes between them and the operation.
    void BackUpInDialog();
    void RestoreInDialog();

    // Calls of `function` with these arguments in them since the dialog was opened.
    std::size_t Calls(const std::string& function, const std::string& in_arguments = "");
    // How often it has started the agent since.
    std::size_t AgentStarts();
    // Calls of `function` by all programs of the device; cheaper than the trace.
    long Counted(const std::string& function);
};

// Texts that more than one test expects.
inline const std::string kBackupReminder =
    "Please close all application but Tolvenar\nto continue the Backing up\n\nARE YOU SURE?";
inline const std::string kRestoreReminder =
    "Please close all applications but Tolvenar\nto continue the Restoring\n\nARE YOU SURE?";
inline const std::string kRestoredReminder =
    "Data successfully restored.\nPlease reboot your Windows CE to complete the Restoring.";
inline const std::string kInstallationText =
    "Tolvenar installation is not detected on the device, restore Tolvenar first please.";

}  // namespace tests
