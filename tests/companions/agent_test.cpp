// The agent and the closing tool as programs on a device. A probe stands in for the main program:
// it stays until it is ended, so that the table of processes shows how it was started.
#include "companions/agent.h"

#include "platform/win32.h"

#include "tests/support/programs.h"

namespace tests {
namespace {

namespace processes = sim::processes;

constexpr wchar_t kAgent[] = L"kestrin_tolvenar_agent.exe";
constexpr wchar_t kCloser[] = L"\\Program Files\\Tolvenar\\CloseOther.exe";
constexpr wchar_t kMainProgram[] = L"\\Program Files\\Tolvenar\\Tolvenar.exe";
constexpr wchar_t kSettingsKey[] = L"Software\\Kestrin2\\Tolvenar";
constexpr std::uint32_t kTimeoutMs = 20000;

class AgentTest : public DeviceTest {
protected:
    AgentTest() {
        InstallProgram(sim(), "kestrin_tolvenar_agent.exe",
                       L"\\Windows\\kestrin_tolvenar_agent.exe");
        InstallProgram(sim(), "CloseOther.exe", kCloser);
        InstallProgram(sim(), "probe.exe", kMainProgram);
        SetInstallFolder(L"\\Program Files\\Tolvenar");
    }
    sim::Device& sim() { return device().sim(); }
    static void SetInstallFolder(const std::wstring& folder) {
        HKEY key = nullptr;
        ASSERT_EQ(ERROR_SUCCESS, ::RegCreateKeyExW(HKEY_CURRENT_USER, kSettingsKey, 0, nullptr, 0,
                                                   0, nullptr, &key, nullptr));
        ::RegSetValueExW(key, L"InstDir", 0, REG_SZ, reinterpret_cast<const BYTE*>(folder.c_str()),
                         static_cast<DWORD>((folder.size() + 1) * sizeof(wchar_t)));
        ::RegCloseKey(key);
    }
    static HWND AwaitAgent() {
        return Await([] { return ::FindWindowW(kAgentClass, nullptr); },
                     [](HWND window) { return window != nullptr; });
    }
    static bool MutexIsTaken() {
        HANDLE mutex = ::CreateMutexW(nullptr, FALSE, kAgentMutex);
        const bool taken = ::WaitForSingleObject(mutex, 0) == WAIT_TIMEOUT;
        if (!taken) {
            ::ReleaseMutex(mutex);
        }
        ::CloseHandle(mutex);
        return taken;
    }
    // The arguments of each running copy of the main program.
    std::vector<std::wstring> Handed() {
        std::vector<std::wstring> arguments;
        for (const auto& program : processes::List(sim())) {
            if (program.path == kMainProgram) {
                arguments.push_back(program.arguments);
            }
        }
        return arguments;
    }
};

TEST_F(AgentTest, ItStaysResidentWithoutAVisibleWindow) {
    Program agent(sim(), kAgent, L"");
    EXPECT_FALSE(::IsWindowVisible(AwaitAgent()));
    EXPECT_TRUE(agent.Runs());
    EXPECT_TRUE(Handed().empty());
}

TEST_F(AgentTest, ItHandsAReasonForALaunchOnUnchanged) {
    for (const wchar_t* argument :
         {L"TolvenarRunAtTime", L"TolvenarRunAtAcPowerOff", L"TolvenarRunAfterWakeup",
          L"TolvenarRunAfterTimeChange", L"TolvenarRunAfterTzChange", L"AutoBackup: External",
          L"AutoRestore: Last State"}) {
        Program agent(sim(), kAgent, argument);
        EXPECT_SOON_EQ(std::vector<std::wstring>{argument}, Handed());
        processes::KillAll(sim());
    }
}

// Such as its own name.
TEST_F(AgentTest, AnyOtherArgumentIsHandedToNobody) {
    for (const wchar_t* argument :
         {kAgent, L"\\Windows\\kestrin_tolvenar_agent.exe", L"two words"}) {
        Program agent(sim(), kAgent, argument);
        ASSERT_NE(nullptr, AwaitAgent());
        EXPECT_TRUE(Handed().empty()) << argument;
        processes::KillAll(sim());
        ASSERT_SOON(::FindWindowW(kAgentClass, nullptr) == nullptr);
    }
}

TEST_F(AgentTest, ASecondOneHandsItsArgumentOnAndEnds) {
    Program resident(sim(), kAgent, L"");
    ASSERT_NE(nullptr, AwaitAgent());
    EXPECT_EQ(0u, processes::Run(sim(), kAgent, L"TolvenarRunAtTime", kTimeoutMs));
    EXPECT_SOON_EQ(std::vector<std::wstring>{L"TolvenarRunAtTime"}, Handed());
    EXPECT_EQ(0u, processes::Run(sim(), kAgent, L"", kTimeoutMs));
    EXPECT_EQ(1u, Handed().size());
    EXPECT_TRUE(resident.Runs());
}

TEST_F(AgentTest, WithoutAnInstallationItIsResidentAllTheSame) {
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, ::RegOpenKeyExW(HKEY_CURRENT_USER, kSettingsKey, 0, 0, &key));
    ::RegDeleteValueW(key, L"InstDir");
    ::RegCloseKey(key);
    Program agent(sim(), kAgent, L"TolvenarRunAtTime");
    ASSERT_NE(nullptr, AwaitAgent());
    EXPECT_TRUE(Handed().empty());
}

TEST_F(AgentTest, AnInstallFolderThatIsTooLongHandsNothingOn) {
    for (const std::size_t length : {300u, 2000000u}) {
        SetInstallFolder(std::wstring(length, L'x'));
        Program agent(sim(), kAgent, L"TolvenarRunAtTime");
        ASSERT_NE(nullptr, AwaitAgent()) << length;
        EXPECT_TRUE(Handed().empty());
    }
}

TEST_F(AgentTest, TheCloserEndsItAndWaitsForItsEnd) {
    Program agent(sim(), kAgent, L"");
    ASSERT_NE(nullptr, AwaitAgent());
    EXPECT_EQ(0u, processes::Run(sim(), kCloser, L"", kTimeoutMs));
    EXPECT_EQ(0, agent.ExitCode());
}

// It may have no window yet. Its mutex is not asked for: an agent that finds one takes itself for
// the second.
TEST_F(AgentTest, TheCloserAlsoEndsAnAgentThatIsJustStarting) {
    device().Command("trace on");
    Program agent(sim(), kAgent, L"");
    ASSERT_SOON(device().Command("trace show CreateMutexW") != "[]");
    device().Command("trace off");
    EXPECT_EQ(0u, processes::Run(sim(), kCloser, L"", kTimeoutMs));
    EXPECT_EQ(0, agent.ExitCode());
}

TEST_F(AgentTest, WithoutAnAgentTheCloserHasNothingToDo) {
    EXPECT_EQ(0u, processes::Run(sim(), kCloser, L"", kTimeoutMs));
    EXPECT_FALSE(MutexIsTaken());
}

TEST_F(AgentTest, AfterTheCloserAnotherAgentCanBeResident) {
    Program first(sim(), kAgent, L"");
    ASSERT_NE(nullptr, AwaitAgent());
    EXPECT_EQ(0u, processes::Run(sim(), kCloser, L"", kTimeoutMs));
    EXPECT_EQ(0, first.ExitCode());
    Program next(sim(), kAgent, L"");
    EXPECT_NE(nullptr, AwaitAgent());
    EXPECT_TRUE(next.Runs());
}

}  // namespace
}  // namespace tests
