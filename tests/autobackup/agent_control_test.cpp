#include "autobackup/agent_control.h"

#include <nlohmann/json.hpp>

#include "app/settings/settings.h"
#include "autobackup/notification_reader.h"
#include "autobackup/notification_scheduler.h"
#include "autobackup/schedule_suspension.h"
#include "tests/support/programs.h"

namespace tolvenar {
namespace {

class AgentControlTest : public tests::DeviceTest {
protected:
    static void Write(std::uint32_t on_time, std::uint32_t on_battery, std::uint32_t time) {
        WriteSetting(setting::kOnTime, on_time);
        WriteSetting(setting::kOnBattery, on_battery);
        WriteSetting(setting::kWakeUpTime, time);
    }
    static void WriteInstallFolder(const std::wstring& folder) {
        HKEY key = nullptr;
        ::RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\Kestrin2\\Tolvenar", 0, nullptr, 0,
                          KEY_ALL_ACCESS, nullptr, &key, nullptr);
        ::RegSetValueExW(key, L"InstDir", 0, REG_SZ, reinterpret_cast<const BYTE*>(folder.c_str()),
                         static_cast<DWORD>((folder.size() + 1) * sizeof(wchar_t)));
        ::RegCloseKey(key);
    }
    // What CloseAgent asked the platform to start.
    std::string StartedPrograms() {
        device().Command("trace on");
        CloseAgent();
        device().Command("trace off");
        return device().Command("trace show");
    }
    // A probe in the place of the closing tool or the agent; it stays until the test is over.
    void Install(const std::wstring& path) {
        tests::InstallProgram(device().sim(), "probe.exe", path);
    }
    using Texts = std::vector<std::wstring>;
    // Path and arguments of what runs; it is ended.
    Texts Started() {
        Texts started;
        for (const auto& program : sim::processes::List(device().sim())) {
            started.push_back(program.path + L" " + program.arguments);
        }
        sim::processes::KillAll(device().sim());
        return started;
    }
    // Handles that this process holds.
    int Handles() {
        int handles = 0;
        for (const auto& process :
             nlohmann::json::parse(device().Command("counters"))["processes"]) {
            handles += process["handles"].get<int>();
        }
        return handles;
    }
    static DWORD NotificationCount() { return NotificationHandles().count(); }
};

TEST_F(AgentControlTest, RefreshingFollowsTheSettings) {
    Write(1, 1, 21);
    EXPECT_TRUE(RefreshAutoBackup());
    EXPECT_EQ(4u, NotificationCount());
    WriteSetting(setting::kOnBattery, 0);
    EXPECT_TRUE(RefreshAutoBackup());
    EXPECT_EQ(2u, NotificationCount());
    WriteSetting(setting::kOnTime, 0);
    EXPECT_TRUE(RefreshAutoBackup());
    EXPECT_EQ(0u, NotificationCount());
}

TEST_F(AgentControlTest, ResumingAndRefreshingTellWhetherAllIsRegistered) {
    Write(1, 0, 21);
    SavedSchedule saved;
    SuspendAutoBackup(saved);
    device().Fault("CeSetUserNotificationEx", 1, 1, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_FALSE(ResumeAutoBackup(saved));
    EXPECT_EQ(1u, NotificationCount());
    device().Fault("CeSetUserNotificationEx", 1, 1, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_FALSE(RefreshAutoBackup());
    device().Fault("CeClearUserNotification", 1, 1, ERROR_INVALID_PARAMETER);
    EXPECT_TRUE(RefreshAutoBackup());  // what could not be cleared is replaced
    EXPECT_EQ(2u, NotificationCount());
}

TEST_F(AgentControlTest, TheClosingToolOfTheInstallationIsStarted) {
    WriteInstallFolder(L"\\Program Files\\Tolvenar");
    EXPECT_NE(std::string::npos,
              StartedPrograms().find("\\\\Program Files\\\\Tolvenar\\\\CloseOther.exe"));
}

TEST_F(AgentControlTest, TheProgramsRunWithoutArgumentsAndNothingOfThemIsKept) {
    Install(L"\\Program Files\\Tolvenar\\CloseOther.exe");
    Install(L"\\Windows\\kestrin_tolvenar_agent.exe");
    WriteInstallFolder(L"\\Program Files\\Tolvenar");
    const int before = Handles();
    EXPECT_TRUE(CloseAgent());
    EXPECT_EQ(Texts{L"\\Program Files\\Tolvenar\\CloseOther.exe "}, Started());
    StartAgent();
    EXPECT_EQ(Texts{L"\\Windows\\kestrin_tolvenar_agent.exe "}, Started());
    EXPECT_EQ(before, Handles());
}

TEST_F(AgentControlTest, SuspendingEndsTheAgentAndResumingStartsNothing) {
    Install(L"\\Program Files\\Tolvenar\\CloseOther.exe");
    Install(L"\\Windows\\kestrin_tolvenar_agent.exe");
    WriteInstallFolder(L"\\Program Files\\Tolvenar");
    SavedSchedule saved;
    EXPECT_TRUE(SuspendAutoBackup(saved));
    EXPECT_EQ(Texts{L"\\Program Files\\Tolvenar\\CloseOther.exe "}, Started());
    EXPECT_TRUE(ResumeAutoBackup(saved));
    EXPECT_TRUE(RefreshAutoBackup());
    EXPECT_EQ(Texts(), Started());
}

TEST_F(AgentControlTest, WithoutAnInstallationNothingIsStarted) {
    EXPECT_FALSE(CloseAgent());
    EXPECT_EQ(std::string::npos, StartedPrograms().find("CloseOther.exe"));
}

TEST_F(AgentControlTest, AMissingClosingToolIsToldAndHoldsNothingUp) {
    WriteInstallFolder(L"\\Nowhere");
    EXPECT_FALSE(CloseAgent());
    Write(1, 0, 21);
    SavedSchedule saved;
    EXPECT_TRUE(SuspendAutoBackup(saved));
}

TEST_F(AgentControlTest, AFolderThatIsTooLongCountsAsAbsent) {
    WriteInstallFolder(L"\\" + std::wstring(128, L'a'));  // 129 units and the terminator
    EXPECT_EQ(std::string::npos, StartedPrograms().find("CloseOther.exe"));
    WriteInstallFolder(L"\\" + std::wstring(127, L'a'));
    EXPECT_NE(std::string::npos, StartedPrograms().find("CloseOther.exe"));
}

}  // namespace
}  // namespace tolvenar
