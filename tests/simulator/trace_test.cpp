// The trace: every call with its arguments, result and last error.
#include "platform/win32.h"

#include <nlohmann/json.hpp>

#include "simulator/command/command.h"
#include "tests/support/device_test.h"

namespace {

using Json = nlohmann::json;

class TraceTest : public tests::DeviceTest {
protected:
    Json Shown(const std::string& function) {
        return Json::parse(device().Command("trace show " + function));
    }
};

TEST_F(TraceTest, ACallLeavesArgumentsResultAndError) {
    device().Command("trace on");
    EXPECT_FALSE(::DeleteFileW(L"\\no such.txt"));
    const Json calls = Shown("DeleteFileW");
    ASSERT_EQ(1u, calls.size());
    EXPECT_EQ("\\no such.txt", calls[0]["arguments"]);
    EXPECT_EQ("0", calls[0]["result"]);
    EXPECT_EQ(2, calls[0]["error"]);
    EXPECT_NE(0, calls[0]["process"]);
}

TEST_F(TraceTest, TracingKeepsTheLastError) {
    device().Command("trace on");
    ::DeleteFileW(L"\\no such.txt");
    EXPECT_EQ(2u, ::GetLastError());
}

TEST_F(TraceTest, NothingIsTracedWhileItIsOff) {
    ::DeleteFileW(L"\\a.txt");
    device().Command("trace on");
    device().Command("trace off");
    ::DeleteFileW(L"\\b.txt");
    EXPECT_EQ(Json::array(), Shown("DeleteFileW"));
}

// In this process a command allocates through the gate.
TEST_F(TraceTest, WhatACommandItselfCallsIsNotTraced) {
    const std::vector<std::string> show{"trace", "show"};
    device().Command("trace on");
    ::DeleteFileW(L"\\a.txt");
    const sim::CommandResult first = sim::RunCommand(device().sim(), show);
    const sim::CommandResult second = sim::RunCommand(device().sim(), show);
    EXPECT_NE(std::string::npos, first.text.find("DeleteFileW"));
    EXPECT_EQ(first.text, second.text);
}

TEST_F(TraceTest, TurningItOnStartsAnew) {
    device().Command("trace on");
    ::DeleteFileW(L"\\a.txt");
    device().Command("trace on");
    ::DeleteFileW(L"\\b.txt");
    const Json calls = Shown("DeleteFileW");
    ASSERT_EQ(1u, calls.size());
    EXPECT_EQ("\\b.txt", calls[0]["arguments"]);
}

TEST_F(TraceTest, AFaultShowsAsOne) {
    device().Command("trace on");
    device().Command("fault DeleteFileW 1 112");
    ::DeleteFileW(L"\\a.txt");
    const Json calls = Shown("DeleteFileW");
    ASSERT_EQ(1u, calls.size());
    EXPECT_EQ("fault", calls[0]["result"]);
    EXPECT_EQ(112, calls[0]["error"]);
}

TEST_F(TraceTest, ForwardedCallsAndDebugTextsAreTraced) {
    device().Command("trace on");
    ::OutputDebugStringW(L"\"here\" \\ \x00e9");
    ::SetRect(nullptr, 1, 2, 3, 4);
    EXPECT_EQ("\"here\" \\ \xc3\xa9", Shown("OutputDebugStringW")[0]["arguments"]);
    EXPECT_EQ("0x0, 1, 2, 3, 4", Shown("SetRect")[0]["arguments"]);
}

TEST_F(TraceTest, ATextThatLeadsNowhereIsNoCrash) {
    device().Command("trace on");
    ::OutputDebugStringW(reinterpret_cast<const wchar_t*>(0x00010000));
    ::OutputDebugStringW(nullptr);
    EXPECT_EQ(2u, Shown("OutputDebugStringW").size());
}

DWORD WINAPI DeleteOften(LPVOID) {
    for (int i = 0; i < 50; ++i) {
        ::DeleteFileW(L"\\no.txt");
    }
    return 0;
}

TEST_F(TraceTest, LinesOfSeveralThreadsStayWhole) {
    device().Command("trace on");
    HANDLE threads[2] = {::CreateThread(nullptr, 0, DeleteOften, nullptr, 0, nullptr),
                         ::CreateThread(nullptr, 0, DeleteOften, nullptr, 0, nullptr)};
    for (HANDLE thread : threads) {
        ASSERT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(thread, 60000));
        ::CloseHandle(thread);
    }
    EXPECT_EQ(100u, Shown("DeleteFileW").size());
}

}  // namespace
