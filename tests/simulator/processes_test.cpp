#include "platform/win32.h"

#include "simulator/programs/programs.h"
#include "tests/simulator/probe_fixture.h"

namespace tests {
namespace {

namespace processes = sim::processes;

class ProcessesTest : public ProbeTest {};

TEST_F(ProcessesTest, TheWholeExitCodeReachesTheStarter) {
    EXPECT_EQ(7u, RunProbe(L"exit 7"));
    EXPECT_EQ(0x12345u, RunProbe(L"exit 74565"));
}

// A program's own run-time code ends it; where that does nothing, the end of its first thread does.
TEST_F(ProcessesTest, AProcessEndsWithItsFirstThread) {
    device().Set("terminate.self", "nothing");
    device().Command("trace on");
    EXPECT_EQ(7u, RunProbe(L"exit 7"));
    EXPECT_EQ(8u, RunProbe(L"beside 8"));
    EXPECT_NE("[]", device().Command("trace show ExitThread"));
}

// The probe imports the window to choose a file with from commdlg.dll.
TEST_F(ProcessesTest, AProgramThatImportsWhatTheSystemLacksIsNotStarted) {
    device().Set("file.chooser", "coredll");
    const processes::Started refused = processes::Start(sim(), kProbe, L"exit 7");
    EXPECT_EQ(DWORD{ERROR_PROC_NOT_FOUND}, refused.error);
    EXPECT_TRUE(processes::List(sim()).empty());
    device().Set("file.chooser", "commdlg");
    EXPECT_EQ(7u, RunProbe(L"exit 7"));
}

TEST_F(ProcessesTest, ArgumentsArriveAsTheyWereGiven) {
    EXPECT_EQ(0u, RunProbe(L"echo  \"two blanks\" end"));
    EXPECT_EQ(1u, RunProbe(L"echo \"two blanks\" end"));
}

// Some systems give a program without a command line its name.
TEST_F(ProcessesTest, WithoutACommandLineAProgramGetsNoneOrItsName) {
    for (const wchar_t* expected : {L"", kProbe}) {
        device().Set("process.no.arguments", expected == kProbe ? "name" : "empty");
        PROCESS_INFORMATION info{};
        ASSERT_TRUE(::CreateProcessW(kProbe, nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                     nullptr, &info));
        EXPECT_TRUE(::CloseHandle(info.hThread));
        EXPECT_TRUE(::CloseHandle(info.hProcess));
        const auto programs = processes::List(sim());
        ASSERT_EQ(1u, programs.size());
        EXPECT_EQ(expected, programs[0].arguments);
        processes::KillAll(sim());
    }
}

// Some systems leave the last error alone.
TEST_F(ProcessesTest, ANewMutexClearsTheLastErrorOrLeavesIt) {
    for (const DWORD expected : {0u, 5u}) {
        device().Set("mutex.last.error", expected == 0 ? "cleared" : "kept");
        ::SetLastError(5);
        HANDLE mutex = ::CreateMutexW(nullptr, FALSE, L"TolvenarTest");
        EXPECT_EQ(expected, ::GetLastError());
        HANDLE second = ::CreateMutexW(nullptr, FALSE, L"TolvenarTest");
        EXPECT_EQ(DWORD{ERROR_ALREADY_EXISTS}, ::GetLastError());
        EXPECT_TRUE(::CloseHandle(second));
        EXPECT_TRUE(::CloseHandle(mutex));
    }
}

TEST_F(ProcessesTest, ABareNameIsSoughtInWindowsAndThenInTheRoot) {
    InstallProgram(sim(), "probe.exe", L"\\second.exe");
    EXPECT_EQ(3u, processes::Run(sim(), L"probe", L"exit 3", kTimeoutMs));
    EXPECT_EQ(4u, processes::Run(sim(), L"PROBE.EXE", L"exit 4", kTimeoutMs));
    EXPECT_EQ(5u, processes::Run(sim(), L"second", L"exit 5", kTimeoutMs));
    InstallProgram(sim(), "probe.exe", L"\\Windows\\second.exe");
    EXPECT_EQ(L"\\Windows\\second.exe", processes::FindProgram(sim(), L"second"));
}

TEST_F(ProcessesTest, ANameWithAPathOrADotGetsNoExtension) {
    EXPECT_EQ(2u, processes::Start(sim(), L"\\Windows\\probe", L"").error);
    EXPECT_EQ(2u, processes::Start(sim(), L"probe.", L"").error);
}

TEST_F(ProcessesTest, ABareNameIsNotSoughtElsewhere) {
    InstallProgram(sim(), "probe.exe", L"\\Program Files\\other.exe");
    EXPECT_EQ(2u, processes::Start(sim(), L"other.exe", L"").error);
}

TEST_F(ProcessesTest, AFileThatIsNoProgramIsRefused) {
    device().PutFile(L"\\text.exe", "no program");
    const auto started = processes::Start(sim(), L"\\text.exe", L"");
    EXPECT_NE(0u, started.error);
    EXPECT_TRUE(processes::List(sim()).empty());
}

TEST_F(ProcessesTest, CreateProcessGivesHandlesAndIds) {
    wchar_t arguments[] = L"exit 9";
    PROCESS_INFORMATION info{};
    ASSERT_TRUE(::CreateProcessW(L"probe.exe", arguments, nullptr, nullptr, FALSE, 0, nullptr,
                                 nullptr, nullptr, &info));
    EXPECT_NE(0u, info.dwProcessId);
    EXPECT_NE(0u, info.dwThreadId);
    EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(info.hProcess, kTimeoutMs));
    DWORD code = 0;
    EXPECT_TRUE(::GetExitCodeProcess(info.hProcess, &code));
    EXPECT_EQ(9u, code);
    EXPECT_TRUE(::CloseHandle(info.hThread));
    EXPECT_TRUE(::CloseHandle(info.hProcess));
}

TEST_F(ProcessesTest, WhatThePlatformDoesNotSupportIsAnInvalidParameter) {
    SECURITY_ATTRIBUTES security{};
    STARTUPINFOW startup{};
    PROCESS_INFORMATION info{};
    wchar_t environment[] = L"A=B\0";
    const auto refused = [](BOOL result) { return !result && ::GetLastError() == 87; };
    EXPECT_TRUE(refused(::CreateProcessW(nullptr, environment, nullptr, nullptr, FALSE, 0, nullptr,
                                         nullptr, nullptr, &info)));
    EXPECT_TRUE(refused(::CreateProcessW(kProbe, nullptr, &security, nullptr, FALSE, 0, nullptr,
                                         nullptr, nullptr, &info)));
    EXPECT_TRUE(refused(::CreateProcessW(kProbe, nullptr, nullptr, &security, FALSE, 0, nullptr,
                                         nullptr, nullptr, &info)));
    EXPECT_TRUE(refused(::CreateProcessW(kProbe, nullptr, nullptr, nullptr, TRUE, 0, nullptr,
                                         nullptr, nullptr, &info)));
    EXPECT_TRUE(refused(::CreateProcessW(kProbe, nullptr, nullptr, nullptr, FALSE, DETACHED_PROCESS,
                                         nullptr, nullptr, nullptr, &info)));
    EXPECT_TRUE(refused(::CreateProcessW(kProbe, nullptr, nullptr, nullptr, FALSE, 0, environment,
                                         nullptr, nullptr, &info)));
    EXPECT_TRUE(refused(::CreateProcessW(kProbe, nullptr, nullptr, nullptr, FALSE, 0, nullptr,
                                         L"\\Windows", nullptr, &info)));
    EXPECT_TRUE(refused(::CreateProcessW(kProbe, nullptr, nullptr, nullptr, FALSE, 0, nullptr,
                                         nullptr, &startup, &info)));
    EXPECT_TRUE(processes::List(sim()).empty());
}

TEST_F(ProcessesTest, AnAbsentProgramIsFileNotFound) {
    PROCESS_INFORMATION info{};
    EXPECT_FALSE(::CreateProcessW(L"nothing.exe", nullptr, nullptr, nullptr, FALSE, 0, nullptr,
                                  nullptr, nullptr, &info));
    EXPECT_EQ(DWORD{ERROR_FILE_NOT_FOUND}, ::GetLastError());
}

TEST_F(ProcessesTest, ASuspendedProgramDoesNotRun) {
    wchar_t arguments[] = L"exit 0";
    PROCESS_INFORMATION info{};
    ASSERT_TRUE(::CreateProcessW(kProbe, arguments, nullptr, nullptr, FALSE, CREATE_SUSPENDED,
                                 nullptr, nullptr, nullptr, &info));
    EXPECT_EQ(DWORD{WAIT_TIMEOUT}, ::WaitForSingleObject(info.hProcess, 500));
    EXPECT_TRUE(::TerminateProcess(info.hProcess, 12));
    EXPECT_EQ(WAIT_OBJECT_0, ::WaitForSingleObject(info.hProcess, kTimeoutMs));
    DWORD code = 0;
    EXPECT_TRUE(::GetExitCodeProcess(info.hProcess, &code));
    EXPECT_EQ(12u, code);
    ::CloseHandle(info.hThread);
    ::CloseHandle(info.hProcess);
}

TEST_F(ProcessesTest, AProgramStartedByAProgramLivesOnAndStandsInTheTable) {
    InstallProgram(sim(), "probe.exe", L"\\other.exe");
    EXPECT_EQ(0u, RunProbe(L"start \\other.exe"));
    const auto running = processes::List(sim());
    ASSERT_EQ(1u, running.size());
    EXPECT_EQ(L"\\other.exe", running[0].path);
    EXPECT_EQ(L"", running[0].arguments);
    processes::KillAll(sim());
    EXPECT_TRUE(processes::List(sim()).empty());
}

TEST_F(ProcessesTest, AKilledProgramIsNoLongerRunning) {
    Program program(sim(), kProbe, L"wait");
    EXPECT_TRUE(processes::IsRunning(sim(), L"\\WINDOWS\\Probe.exe"));
    EXPECT_FALSE(processes::IsRunning(sim(), L"\\Windows\\other.exe"));
    EXPECT_TRUE(processes::Kill(sim(), program.pid(), 77));
    EXPECT_EQ(77, program.ExitCode());
    EXPECT_FALSE(processes::IsRunning(sim(), kProbe));
    EXPECT_FALSE(processes::Kill(sim(), program.pid()));
}

TEST_F(ProcessesTest, OneDevicesProcessesAreNotAnothers) {
    SecondDevice second;
    Program program(sim(), kProbe, L"wait");
    EXPECT_TRUE(processes::List(second.sim()).empty());
    processes::KillAll(second.sim());
    EXPECT_TRUE(program.Runs());
}

TEST_F(ProcessesTest, AMutexIsKnownToItsOwnDeviceOnly) {
    SecondDevice second;
    InstallProgram(second.sim(), "probe.exe", kProbe);
    ::SetLastError(0);
    HANDLE mutex = ::CreateMutexW(nullptr, FALSE, L"TolvenarMutexObject");
    EXPECT_EQ(0u, ::GetLastError());
    EXPECT_EQ(DWORD{ERROR_ALREADY_EXISTS}, RunProbe(L"mutex TolvenarMutexObject"));
    EXPECT_EQ(0u, processes::Run(second.sim(), kProbe, L"mutex TolvenarMutexObject", kTimeoutMs));
    ::CloseHandle(mutex);
}

TEST_F(ProcessesTest, ARunningProgramsFileCanBeReadButNotDeleted) {
    Program program(sim(), kProbe, L"wait");
    HANDLE file =
        ::CreateFileW(kProbe, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(INVALID_HANDLE_VALUE, file);
    ::CloseHandle(file);
    EXPECT_FALSE(::DeleteFileW(kProbe));
    EXPECT_EQ(INVALID_HANDLE_VALUE,
              ::CreateFileW(kProbe, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    processes::KillAll(sim());
    EXPECT_TRUE(::DeleteFileW(kProbe));
}

TEST_F(ProcessesTest, AStartIsWrittenToTheTraceAndCanBeMadeToFail) {
    device().Fault("CreateProcessW", 1, 1, 14);
    PROCESS_INFORMATION info{};
    EXPECT_FALSE(::CreateProcessW(kProbe, nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                  nullptr, &info));
    EXPECT_EQ(14u, ::GetLastError());
}

}  // namespace
}  // namespace tests
