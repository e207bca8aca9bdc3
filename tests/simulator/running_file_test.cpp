// The file of a running program: read by whoever likes, written and deleted by nobody.
#include "platform/win32.h"

#include <fstream>

#include "platform/unique_resource.h"
#include "simulator/programs/programs.h"
#include "simulator/store/utf8.h"
#include "tests/support/programs.h"

namespace tests {
namespace {

constexpr wchar_t kProbe[] = L"\\Windows\\probe.exe";

class RunningFileTest : public DeviceTest {
protected:
    RunningFileTest() {
        InstallProgram(device().sim(), "probe.exe", kProbe);
        sim::processes::Start(device().sim(), kProbe, L"wait");
    }
    // Holds the host's file as its loader does for a moment after a start.
    std::ifstream HoldAsLoader() {
        return std::ifstream(sim::Utf8(sim::files::HostFile(device().sim(), kProbe)),
                             std::ios::binary);
    }
    static DWORD ErrorOfOpening(DWORD access, DWORD share) {
        const tolvenar::UniqueHandle file(
            ::CreateFileW(kProbe, access, share, nullptr, OPEN_EXISTING, 0, nullptr));
        return file ? 0 : ::GetLastError();
    }
};

TEST_F(RunningFileTest, IsReadAlsoWhileItsProgramStarts) {
    const std::ifstream loader = HoldAsLoader();
    ASSERT_TRUE(loader.is_open());
    EXPECT_EQ(0u, ErrorOfOpening(GENERIC_READ, 0));
    EXPECT_EQ(0u, ErrorOfOpening(GENERIC_READ, FILE_SHARE_READ));
}

TEST_F(RunningFileTest, IsNotWrittenWhileItRuns) {
    EXPECT_EQ(static_cast<DWORD>(ERROR_SHARING_VIOLATION),
              ErrorOfOpening(GENERIC_WRITE, FILE_SHARE_READ));
}

TEST_F(RunningFileTest, OnceItHasEndedWhoeverHoldsItStandsInTheWay) {
    sim::processes::KillAll(device().sim());
    const std::ifstream reader = HoldAsLoader();
    EXPECT_EQ(static_cast<DWORD>(ERROR_SHARING_VIOLATION), ErrorOfOpening(GENERIC_READ, 0));
}

}  // namespace
}  // namespace tests
