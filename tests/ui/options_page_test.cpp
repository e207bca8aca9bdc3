// The Options page, where it meets the automatic backup.
#include "platform/win32.h"

#include "tests/ui/ui_test.h"

namespace {

class OptionsPageTest : public tests::UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        BackUp();
    }
    std::size_t AgentStarts() { return Calls("CreateProcessW", "kestrin_tolvenar_agent.exe"); }
};

TEST_F(OptionsPageTest, ASwitchIsWrittenWhenItChangesAndAppliedAfterThreeSeconds) {
    Ask("set sleep.scale 10");
    Open();
    ShowTab("Options");
    Press(1060);
    EXPECT_TRUE(Eventually([&] { return Dword("onTime") == 1u; }));
    EXPECT_TRUE(Eventually([&] { return AgentStarts() == 1; }));
    EXPECT_EQ(2u, Ask("notifications").size());
}

// Once for the pending change, once because the agent always runs when the program has ended; on
// purpose.
TEST_F(OptionsPageTest, ClosingWithAPendingChangeStartsTheAgentTwice) {
    Open();
    ShowTab("Options");
    Press(1060);
    EXPECT_TRUE(Eventually([&] { return Dword("onTime") == 1u; }));
    EXPECT_EQ(0u, AgentStarts());
    Keys("ctrl+q");
    ExpectEnd();
    EXPECT_EQ(2u, AgentStarts());
    EXPECT_EQ(2u, Ask("notifications").size());
}

TEST_F(OptionsPageTest, WithoutThePowerFunctionTheBatterySwitchIsOff) {
    device().Set("power.present", "0");
    Open();
    ShowTab("Options");
    EXPECT_FALSE(Control(1061)->at("enabled"));
    EXPECT_TRUE(Control(1060)->at("enabled"));
}

}  // namespace
