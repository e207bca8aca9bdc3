#include "platform/processes.h"

#include <gtest/gtest.h>

#include "platform/registry_key.h"
#include "tests/support/programs.h"

namespace tolvenar {
namespace {

using ProcessesTest = tests::DeviceTest;

DWORD WINAPI Double(void* number) {
    *static_cast<int*>(number) *= 2;
    return 0;
}

TEST_F(ProcessesTest, AThreadRunsWithWhatItWasGiven) {
    int number = 21;
    const UniqueHandle thread = StartThread(Double, &number);
    ASSERT_TRUE(thread);
    EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(thread.get(), INFINITE));
    EXPECT_EQ(42, number);
}

TEST_F(ProcessesTest, WithoutAThreadNothingIsHeld) {
    device().Fault("CreateThread", 1, 1, 8);
    EXPECT_FALSE(StartThread(Double, nullptr));
}

TEST_F(ProcessesTest, AProgramGetsItsArgumentsUnchanged) {
    tests::InstallProgram(device().sim(), "probe.exe", L"\\Windows\\probe.exe");
    for (const wchar_t* arguments : {L"one #two", L""}) {
        EXPECT_TRUE(StartProgram(L"\\Windows\\probe.exe", arguments));
        const auto programs = sim::processes::List(device().sim());
        ASSERT_EQ(1u, programs.size());
        EXPECT_EQ(arguments, programs[0].arguments);
        sim::processes::KillAll(device().sim());
    }
    EXPECT_FALSE(StartProgram(L"\\Windows\\missing.exe"));
}

TEST_F(ProcessesTest, ASecondMutexOfANameSaysThatThereIsOne) {
    ::SetLastError(0);
    const UniqueHandle first = NamedMutex(L"TolvenarTest");
    EXPECT_EQ(0u, ::GetLastError());
    UniqueHandle second;
    second = NamedMutex(L"TolvenarTest");
    EXPECT_EQ(DWORD{ERROR_ALREADY_EXISTS}, ::GetLastError());
    EXPECT_TRUE(first && second);
}

TEST_F(ProcessesTest, AnErrorOfBeforeIsNoSignOfASecondMutex) {
    device().Set("mutex.last.error", "kept");
    ::SetLastError(ERROR_ALREADY_EXISTS);
    const UniqueHandle first = NamedMutex(L"TolvenarTest");
    EXPECT_EQ(0u, ::GetLastError());
    EXPECT_TRUE(first);
}

TEST_F(ProcessesTest, WithoutArgumentsTheCommandLineIsEmpty) {
    device().Set("process.no.arguments", "name");
    tests::InstallProgram(device().sim(), "probe.exe", L"\\Windows\\probe.exe");
    EXPECT_TRUE(StartProgram(L"\\Windows\\probe.exe"));
    const auto programs = sim::processes::List(device().sim());
    ASSERT_EQ(1u, programs.size());
    EXPECT_EQ(L"", programs[0].arguments);
    sim::processes::KillAll(device().sim());
}

TEST_F(ProcessesTest, AKeyThatIsNotThereIsNone) {
    EXPECT_TRUE(OpenKey(HKEY_CURRENT_USER, L""));
    EXPECT_FALSE(OpenKey(HKEY_CURRENT_USER, L"No\\Such\\Key"));
}

}  // namespace
}  // namespace tolvenar
