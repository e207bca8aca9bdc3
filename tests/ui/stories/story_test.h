// What a user does with the program from start to end, with the stylus alone and with the keyboard
// alone. A story is told once, in the words of this fixture, and run with both hands.
#pragma once

#include <ostream>
#include <string>

#include "tests/support/contents.h"
#include "tests/support/ui_test.h"

namespace tests {

enum class Hand { kStylus, kKeyboard };
inline void PrintTo(Hand hand, std::ostream* out) {
    *out << (hand == Hand::kStylus ? "stylus" : "keyboard");
}

class StoryTest : public UiTest, public ::testing::WithParamInterface<Hand> {
protected:
    // Each waits until the screen takes it. Keys go to a control by Tab.
    void GoTo(const std::string& page);
    void Use(int button);
    void Choose(int list, const std::string& item);
    // Chooses the state and has its differences shown.
    void Compare(const std::string& state);
    // Letters, digits, blanks, dots and backslashes. For the stylus the input panel types.
    void Write(int field, const std::string& text);

    void AnswerBox(const Box& box, int button = IDOK);
    void AnswerReminder(const std::string& text, int button = IDOK);
    // Chooses a storage in the open dialog, by its path.
    void BrowseTo(const std::string& path);
    // The same for one that is to be made.
    void MakeStorage(const std::string& path);
    void CloseProgram();

    // Presses the page's button with the reminders that come.
    void BackUpByHand();
    void RestoreByHand();

    // What a restore must bring back later.
    void Remember() { remembered_ = ContentsOf(device().sim()); }
    void ExpectRemembered();

    // Programs and their storage stay; what the user had is gone or changed.
    void LoseTheUsersWork();

private:
    bool IsByStylus() const { return GetParam() == Hand::kStylus; }
    // A control that the user sees, in the active window, which takes input.
    bool IsReady(int id);
    void TapOn(int id, const std::string& item = "", int times = 1);
    void TabTo(int id);

    Contents remembered_;
};

#define WITH_BOTH_HANDS(suite) \
    INSTANTIATE_TEST_SUITE_P(Hands, suite, ::testing::Values(Hand::kStylus, Hand::kKeyboard))

}  // namespace tests
