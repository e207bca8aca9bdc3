// Rules at which a process dies, seen from another one.
#include "simulator/gate/counters.h"
#include "simulator/gate/gate.h"
#include "simulator/host/child.h"
#include "tests/simulator/file_helpers.h"
#include "tests/support/child_role.h"
#include "tests/support/device_test.h"

namespace tests {
namespace {

// Writes ten letters three times.
const ChildRole kWritesThrice(L"write thrice", [](const wchar_t* path) {
    HANDLE file = Open(path, GENERIC_WRITE, 0, CREATE_ALWAYS);
    for (int i = 0; i < 3; ++i) {
        Write(file, "abcdefghij");
    }
    return ::CloseHandle(file) ? 0 : 1;
});

class GateCrashTest : public DeviceTest {
protected:
    int RunChild() { return sim::host::Child(L"write thrice", L"\\a.txt").Finish(); }
};

TEST_F(GateCrashTest, WithoutARuleTheProcessEndsByItself) {
    EXPECT_EQ(0, RunChild());
    EXPECT_EQ(30u, device().FileBytes(L"\\a.txt").size());
}

TEST_F(GateCrashTest, TheProcessDiesBeforeTheCallHappens) {
    device().Command("crash WriteFile 2");
    EXPECT_EQ(static_cast<int>(sim::kCrashExitCode), RunChild());
    EXPECT_EQ("abcdefghij", device().FileBytes(L"\\a.txt"));
    EXPECT_EQ("[]", device().Command("faults"));
}

TEST_F(GateCrashTest, AHalfCrashWritesHalf) {
    device().Command("crash-half WriteFile 2");
    EXPECT_EQ(static_cast<int>(sim::kCrashExitCode), RunChild());
    EXPECT_EQ("abcdefghijabcde", device().FileBytes(L"\\a.txt"));
}

TEST_F(GateCrashTest, ADeadProcesssCountersStay) {
    device().Command("crash WriteFile 2");
    RunChild();
    const auto processes = sim::CountersByProcess(device().sim());
    ASSERT_FALSE(processes.empty());
    EXPECT_EQ(2, processes.back().calls.at("WriteFile"));
    EXPECT_EQ(1, processes.back().gauge(sim::Gauge::kHandles));
}

TEST_F(GateCrashTest, TheTraceEndsWithTheCrash) {
    device().Command("trace on");
    device().Command("crash WriteFile 2");
    RunChild();
    const std::string trace = device().Command("trace show WriteFile");
    EXPECT_NE(std::string::npos, trace.find("\"result\":\"crash\""));
}

}  // namespace
}  // namespace tests
