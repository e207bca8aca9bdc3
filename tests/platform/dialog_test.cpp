#include "platform/dialog.h"

#include <gtest/gtest.h>
#include <vector>

#include "res/resource.h"
#include "tests/support/device_test.h"

namespace tolvenar {
namespace {

constexpr UINT kQuestion = WM_APP + 1;
constexpr LRESULT kAnswer = 42;

class RecordingDialog final : public Dialog {
public:
    using Dialog::CreateModeless;
    using Dialog::Destroy;
    using Dialog::RunModal;

    // Ends itself with this as soon as it is made; 0: stays.
    INT_PTR end_with = 0;
    std::vector<UINT> messages;
    int messages_without_window = 0;

private:
    INT_PTR Dispatch(UINT message, WPARAM, LPARAM) override {
        messages.push_back(message);
        messages_without_window += window() == nullptr ? 1 : 0;
        if (message == WM_INITDIALOG && end_with != 0) {
            End(end_with);
        }
        return message == kQuestion ? Answer(kAnswer) : FALSE;
    }
};

class DialogTest : public tests::DeviceTest {
protected:
    bool Create() { return dialog_.CreateModeless(Instance(), IDD_DESCRIPTION, nullptr); }
    static HINSTANCE Instance() { return ::GetModuleHandleW(nullptr); }

    RecordingDialog dialog_;
};

TEST_F(DialogTest, TheObjectGetsTheMessagesFromItsMakingToItsDestroying) {
    EXPECT_EQ(nullptr, dialog_.window());
    ASSERT_TRUE(Create());
    const HWND window = dialog_.window();
    EXPECT_TRUE(::IsWindow(window));
    dialog_.Destroy();
    EXPECT_FALSE(::IsWindow(window));
    EXPECT_EQ(nullptr, dialog_.window());
    ASSERT_LE(2u, dialog_.messages.size());
    EXPECT_EQ(UINT{WM_INITDIALOG}, dialog_.messages.front());
    EXPECT_EQ(UINT{WM_DESTROY}, dialog_.messages.back());
    EXPECT_EQ(0, dialog_.messages_without_window);
}

TEST_F(DialogTest, AWindowThatAnotherDestroysIsForgottenToo) {
    ASSERT_TRUE(Create());
    ::DestroyWindow(dialog_.window());
    EXPECT_EQ(nullptr, dialog_.window());
    dialog_.Destroy();
    ASSERT_TRUE(Create());
    dialog_.Destroy();
}

TEST_F(DialogTest, AnAnswerReachesWhoAsked) {
    ASSERT_TRUE(Create());
    EXPECT_EQ(kAnswer, ::SendMessageW(dialog_.window(), kQuestion, 0, 0));
    EXPECT_EQ(0, ::SendMessageW(dialog_.window(), kQuestion + 1, 0, 0));
    dialog_.Destroy();
}

TEST_F(DialogTest, AModalDialogGivesWhatItEndedWith) {
    dialog_.end_with = 7;
    EXPECT_EQ(7, dialog_.RunModal(Instance(), IDD_DESCRIPTION, nullptr));
    EXPECT_EQ(nullptr, dialog_.window());
    EXPECT_EQ(UINT{WM_DESTROY}, dialog_.messages.back());
}

TEST_F(DialogTest, ADialogThatCannotBeMadeHasNoWindow) {
    device().Fault("CreateDialogIndirectParamW", 1, 1, 8);
    device().Fault("DialogBoxIndirectParamW", 1, 1, 8);
    EXPECT_FALSE(Create());
    EXPECT_GE(0, dialog_.RunModal(Instance(), IDD_DESCRIPTION, nullptr));
    EXPECT_TRUE(dialog_.messages.empty());
    EXPECT_EQ(nullptr, dialog_.window());
}

}  // namespace
}  // namespace tolvenar
