// When the notification of a time comes and when it vanishes is not the same on every device: the
// daily start goes on from day to day all the same.
#include "tests/e2e/launch_fixture.h"

namespace tests {
namespace {

class NotificationMomentsTest : public LaunchFixture {
protected:
    void SetUp() override {
        LaunchFixture::SetUp();
        device().Set("sleep.scale", "500");
        device().Set("clock.step", "0");
    }
    void Arm(unsigned on_time, unsigned on_battery, unsigned hour, unsigned minute) {
        SetDword("onTime", on_time);
        SetDword("onBattery", on_battery);
        SetDailyTime(hour, minute);
        ASSERT_EQ(0, BackUp());
    }
    static std::string Date(int day) {
        return day < 10 ? "2027-03-0" + std::to_string(day) : "2027-03-" + std::to_string(day);
    }
    // The starts of the daily notification that are registered.
    Texts Daily() {
        const std::string name = "TolvenarRunAtTime ";
        Texts starts;
        for (const std::string& text : Notifications()) {
            if (text.compare(0, name.size(), name) == 0) {
                starts.push_back(text.substr(name.size()));
            }
        }
        return starts;
    }
};

// On mains the daily start finds nothing to do.
TEST_F(NotificationMomentsTest, AStartThatDoesNothingLeavesTheNextOneArmed) {
    device().Set("clock", "2027-03-01T12:00:00");
    Arm(0, 1, 21, 30);
    int day = 1;
    for (const char* moment : {"before", "after", "never"}) {
        device().Set("notification.vanishes", moment);
        for (int i = 0; i < 2; ++i, ++day) {
            EXPECT_EQ(1u, Ask("tick " + Date(day) + "T23:00:00").size()) << moment;
            EXPECT_EQ(Texts{Date(day + 1) + "T21:30:00"}, Daily()) << moment;
        }
    }
    EXPECT_EQ(Numbers{1}, States());
}

// Before the hour: the start is for the time that it comes before, and the time itself finds it
// done.
TEST_F(NotificationMomentsTest, AStartThatComesEarlyBacksUpOnce) {
    device().Set("clock", "2027-03-01T12:00:00");
    device().Set("notification.early", "40");
    Arm(1, 0, 22, 0);
    Numbers states = {1};
    int day = 1;
    for (const char* moment : {"before", "after", "never"}) {
        device().Set("notification.vanishes", moment);
        device().PutFile(kNote, std::string("before ") + moment);
        Ask("counters clear");
        EXPECT_EQ(2u, Ask("tick " + Date(day) + "T23:00:00").size()) << moment;
        states.push_back(static_cast<int>(states.size()) + 1);
        EXPECT_EQ(states, States()) << moment;
        EXPECT_EQ(1, Counted("SetTimer")) << moment;  // the prompt's
        ++day;
        EXPECT_EQ(Texts{Date(day) + "T22:00:00"}, Daily()) << moment;
    }
}

}  // namespace
}  // namespace tests
