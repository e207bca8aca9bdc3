// The captions of two windows of one program.
#include "simulator/programs/programs.h"
#include "tests/support/programs.h"

namespace tests {
namespace {

constexpr wchar_t kProbe[] = L"\\Windows\\caption_probe.exe";
constexpr std::uint32_t kTimeoutMs = 20000;
constexpr std::uint32_t kSecondActive = 10;

class CaptionTest : public DeviceTest {
protected:
    CaptionTest() { InstallProgram(device().sim(), "caption_probe.exe", kProbe); }
    std::uint32_t Run(const wchar_t* arguments) {
        return sim::processes::Run(device().sim(), kProbe, arguments, kTimeoutMs).value_or(0xFFFF);
    }
};

TEST_F(CaptionTest, TheNewerWindowOfAThreadIsDrawnActive) { EXPECT_EQ(kSecondActive, Run(L"")); }

TEST_F(CaptionTest, TheNewerWindowOfAnotherThreadIsDrawnActive) {
    EXPECT_EQ(kSecondActive, Run(L"thread"));
}

}  // namespace
}  // namespace tests
