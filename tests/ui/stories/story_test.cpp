#include "tests/ui/stories/story_test.h"

#include <algorithm>
#include <cctype>

namespace tests {
namespace {

constexpr int kManyTabs = 20;

// The keys that type the text.
std::string KeysOf(const std::string& text) {
    std::string keys;
    for (const char letter : text) {
        keys += letter == ' ' ? "space" : std::string(1, letter);
        keys += ' ';
    }
    return keys;
}

const Window* TopOf(const std::vector<Window>& windows, const Window& window) {
    const Window* at = &window;
    while (at->parent != 0) {
        const auto above = std::find_if(windows.begin(), windows.end(), [at](const Window& other) {
            return other.handle == at->parent;
        });
        if (above == windows.end()) {
            return nullptr;
        }
        at = &*above;
    }
    return at;
}

}  // namespace

bool StoryTest::IsReady(int id) {
    const std::vector<Window> windows = Windows();
    return std::any_of(windows.begin(), windows.end(), [&](const Window& window) {
        const bool is_it = window.id == id && window.parent != 0;
        const Window* top =
            is_it && window.visible && window.enabled ? TopOf(windows, window) : nullptr;
        return top != nullptr && top->enabled && top->active;
    });
}

void StoryTest::TapOn(int id, const std::string& item, int times) {
    EXPECT_SOON(IsReady(id)) << id << " in " << ::testing::PrintToString(Windows());
    EXPECT_SOON(sim::windows::Tap(device().sim(), id, item, times)) << id << " " << item;
}

void StoryTest::TabTo(int id) {
    EXPECT_SOON(IsReady(id)) << id << " in " << ::testing::PrintToString(Windows());
    const auto focus = [&] {
        const auto focused = Find([](const Window& window) { return window.focused; });
        return focused ? *focused : Window{};
    };
    for (int tabs = 0; tabs < kManyTabs && focus().id != id; ++tabs) {
        const std::uint32_t before = focus().handle;
        Keys("tab");
        EXPECT_SOON(focus().handle != before);
    }
    EXPECT_EQ(id, focus().id);
}

void StoryTest::GoTo(const std::string& page) {
    EXPECT_SOON(IsReady(IDC_TABS));
    EXPECT_TRUE(DialogIsDone()) << "a dialog that goes may take a key with it";
    if (IsByStylus()) {
        TapOn(IDC_TABS, page);
    }
    for (int tabs = 0; !IsByStylus() && tabs < kManyTabs && SelectedTab() != page; ++tabs) {
        const std::string before = SelectedTab();
        Keys("ctrl+tab");
        EXPECT_SOON(SelectedTab() != before);
    }
    ExpectTab(page);
}

void StoryTest::Use(int button) {
    if (IsByStylus()) {
        TapOn(button);
        return;
    }
    TabTo(button);
    Keys("space");
}

void StoryTest::Choose(int list, const std::string& item) {
    if (IsByStylus()) {
        TapOn(list, item);
    } else {
        TabTo(list);
        const Texts items = Items(list);
        const auto at = std::find(items.begin(), items.end(), item) - items.begin();
        Keys("home");
        for (int i = 0; i < at; ++i) {
            Keys("down");
        }
    }
    EXPECT_SOON_EQ(item, SelectedItem(list));
}

void StoryTest::Compare(const std::string& state) {
    if (IsByStylus()) {
        TapOn(IDC_STATES, state, 2);
    } else {
        Choose(IDC_STATES, state);
        Keys("enter");
    }
}

void StoryTest::Write(int field, const std::string& text) {
    if (IsByStylus()) {
        TapOn(field);
        EXPECT_TRUE(FocusComesTo(field));
        Type(field, text);
    } else {
        TabTo(field);
        Keys(KeysOf(text));
    }
    EXPECT_SOON_EQ(text, Text(field));
}

void StoryTest::AnswerBox(const Box& box, int button) {
    const std::size_t before = BoxCount();
    EXPECT_SOON(BoxIsUp());
    Use(button);
    ASSERT_SOON(BoxCount() > before);
    EXPECT_EQ(box.text + ", " + box.caption + ", " + std::to_string(box.style),
              Traced("MessageBoxW").back().arguments);
}

void StoryTest::AnswerReminder(const std::string& text, int button) {
    EXPECT_SOON_EQ(text, Text(IDC_REMINDER_TEXT));
    const HWND reminder = Reminder();
    Use(button);
    EXPECT_SOON(!::IsWindow(reminder));
}

void StoryTest::BrowseTo(const std::string& path) {
    Use(IDC_BROWSE);
    ASSERT_SOON(Shows(kOpenTitle));
    Write(kOpenName, path);
    Use(IDOK);
}

void StoryTest::MakeStorage(const std::string& path) {
    BrowseTo(path);
    EXPECT_SOON(BoxIsUp());  // the system's own question
    Use(IDYES);
    ASSERT_SOON(Shows(kDescriptionTitle));
    Use(IDOK);
    ExpectTab("Backup");
}

void StoryTest::CloseProgram() {
    if (IsByStylus()) {
        PressCloseBox();
    } else {
        Keys("ctrl+q");
    }
    ExpectEnd();
}

void StoryTest::BackUpByHand() {
    Use(IDC_BACKUP);
    AnswerReminder(kBackupReminder);
}

void StoryTest::RestoreByHand() {
    Use(IDC_RESTORE);
    AnswerReminder(kRestoreReminder);
}

void StoryTest::ExpectRemembered() {
    EXPECT_EQ(Texts{}, Differences(remembered_, ContentsOf(device().sim())));
}

void StoryTest::LoseTheUsersWork() {
    device().Remove(L"\\My Documents");
    device().PutFile(L"\\Windows\\unwanted.exe", "unwanted");
    Ask("reg-set HKLM\\Software\\Unwanted Run REG_SZ yes");
}

}  // namespace tests
