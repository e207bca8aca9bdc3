// Faults, delays and crashes of calls.
#include "simulator/gate/gate.h"

#include "platform/win32.h"

#include <stdexcept>
#include <string>
#include <thread>

#include "simulator/gate/rules.h"
#include "tests/support/device_test.h"

namespace {

class GateTest : public tests::DeviceTest {
protected:
    bool Deletes(const wchar_t* path) {
        device().PutFile(path, "x");
        ::SetLastError(0);
        return ::DeleteFileW(path) != FALSE;
    }
};

TEST_F(GateTest, TheNthCallFailsWithTheRulesError) {
    device().Command("fault DeleteFileW 2 112");
    EXPECT_TRUE(Deletes(L"\\a.txt"));
    EXPECT_FALSE(Deletes(L"\\a.txt"));
    EXPECT_EQ(112u, ::GetLastError());
    EXPECT_TRUE(device().Exists(L"\\a.txt"));
    EXPECT_TRUE(Deletes(L"\\a.txt"));
}

TEST_F(GateTest, ACountMakesThatManyCallsFail) {
    device().Command("fault DeleteFileW 1 2 5");
    EXPECT_FALSE(Deletes(L"\\a.txt"));
    EXPECT_FALSE(Deletes(L"\\a.txt"));
    EXPECT_TRUE(Deletes(L"\\a.txt"));
}

TEST_F(GateTest, OnlyCallsWhoseArgumentsMatchAreCounted) {
    device().Command("fault DeleteFileW 1 5 B.TXT");
    EXPECT_TRUE(Deletes(L"\\a.txt"));
    EXPECT_FALSE(Deletes(L"\\b.txt"));
    EXPECT_TRUE(Deletes(L"\\b.txt"));
}

// This process's own memory comes through the gate too, so such a rule needs a text to match here.
TEST_F(GateTest, ARuleForAnyCallMeetsTheNextThatMatches) {
    device().PutFile(L"\\a.txt", "x");
    device().Command("fault * 2 5 a.txt");
    EXPECT_EQ(0x20u, ::GetFileAttributesW(L"\\a.txt"));
    EXPECT_FALSE(::DeleteFileW(L"\\a.txt"));
    EXPECT_EQ(5u, ::GetLastError());
}

TEST_F(GateTest, ForwardedCallsFailWithTheirOwnFailure) {
    device().Command("fault WaitForSingleObject 1 6");
    device().Command("fault CreatePen 1 8");
    EXPECT_EQ(WAIT_FAILED, ::WaitForSingleObject(nullptr, 0));
    EXPECT_EQ(6u, ::GetLastError());
    EXPECT_EQ(nullptr, ::CreatePen(PS_SOLID, 1, 0));
    EXPECT_EQ(8u, ::GetLastError());
}

TEST_F(GateTest, RegistryCallsAnswerTheError) {
    device().Command("fault RegOpenKeyExW 1 1009");
    HKEY key = nullptr;
    EXPECT_EQ(1009, ::RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"x", 0, 0, &key));
}

TEST_F(GateTest, FaultsListsThoseThatNeverFired) {
    device().Command("fault DeleteFileW 1 5");
    device().Command("fault DeleteFileW 9 6");
    Deletes(L"\\a.txt");
    const std::string list = device().Command("faults");
    EXPECT_NE(std::string::npos, list.find("\"error\":6"));
    EXPECT_EQ(std::string::npos, list.find("\"error\":5"));
    EXPECT_NE(std::string::npos, device().Command("faults all").find("\"error\":5"));
    device().DropFaults();
}

TEST_F(GateTest, ClearedRulesMeetNothing) {
    device().Command("fault DeleteFileW 1 5");
    device().Command("faults clear");
    EXPECT_TRUE(Deletes(L"\\a.txt"));
    EXPECT_EQ("[]", device().Command("faults all"));
}

TEST_F(GateTest, ADelayHoldsTheCallUp) {
    device().Command("delay DeleteFileW 1 60");
    const DWORD begin = ::GetTickCount();
    EXPECT_TRUE(Deletes(L"\\a.txt"));
    EXPECT_GE(::GetTickCount() - begin, 50u);
}

TEST_F(GateTest, ADelayEndsWithItsRule) {
    device().Command("delay DeleteFileW 1 60000");
    const DWORD begin = ::GetTickCount();
    std::thread other([&] {
        while (device().Command("faults") != "[]") {
            ::Sleep(1);
        }
        device().Command("faults clear");
        device().Command("delay DeleteFileW 1 60000");  // in the same place
    });
    EXPECT_TRUE(Deletes(L"\\a.txt"));
    EXPECT_LT(::GetTickCount() - begin, 50000u);
    other.join();
    device().Command("faults clear");
}

TEST_F(GateTest, ACallThatCannotFailIsDelayedOnly) {
    device().Command("fault GetTickCount 1 5");
    EXPECT_NE(0u, ::GetTickCount());
    EXPECT_NE("[]", device().Command("faults"));
    device().DropFaults();
}

TEST_F(GateTest, WordsThatMakeNoRuleAreRefused) {
    EXPECT_THROW(device().Command("fault NoSuchCall 1 5"), std::runtime_error);
    EXPECT_THROW(device().Command("fault DeleteFileW 0 5"), std::runtime_error);
    EXPECT_THROW(device().Command("fault DeleteFileW 1 0"), std::runtime_error);
    EXPECT_THROW(device().Command("fault DeleteFileW x 5"), std::runtime_error);
    EXPECT_THROW(device().Command("fault DeleteFileW 1"), std::runtime_error);
}

TEST_F(GateTest, TheTableOfRulesEnds) {
    for (std::size_t i = 0; i < sim::kRuleCount; ++i) {
        device().Command("fault ReadFile 1 5");
    }
    EXPECT_THROW(device().Command("fault ReadFile 1 5"), std::runtime_error);
    device().DropFaults();
}

}  // namespace
