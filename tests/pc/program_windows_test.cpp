// The program as a process on Windows: its command line, its output and its code.
#include <windows.h>

#include "pc/text/wide.h"
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

class WindowsProgramTest : public ThreeStatesTest {
protected:
    // The exit code; its output goes into the file "out".
    DWORD Start(const std::string& arguments) const {
        SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
        const HANDLE out = ::CreateFileW(WidePath(In("out")).c_str(), GENERIC_WRITE,
                                         FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
        STARTUPINFOW start{};
        start.cb = sizeof start;
        start.dwFlags = STARTF_USESTDHANDLES;
        start.hStdOutput = start.hStdError = out;
        PROCESS_INFORMATION process{};
        std::wstring line = WidePath("\"" PC_PROGRAM "\" " + arguments);
        EXPECT_TRUE(::CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                     nullptr, &start, &process));
        ::WaitForSingleObject(process.hProcess, INFINITE);
        DWORD code = 99;
        ::GetExitCodeProcess(process.hProcess, &code);
        ::CloseHandle(process.hProcess);
        ::CloseHandle(process.hThread);
        ::CloseHandle(out);
        return code;
    }
    std::string Home() const { return "\"" + In("Home.sav") + "\""; }
};

TEST_F(WindowsProgramTest, GivesBytesAndCode) {
    pair.BeginState();
    pair.AddFile(u"\\lines", "a\nb\r\n", 0x40);
    Save();
    EXPECT_EQ(0u, Start("cat " + Home() + " /lines"));
    EXPECT_EQ("a\nb\r\n", Read("out"));
    EXPECT_EQ(2u, Start("cat"));
    EXPECT_EQ(1u, Start("info \"" + In("nothing") + "\""));
}

TEST_F(WindowsProgramTest, ItsCommandLineAndOutputMayHaveAnyLetters) {
    pair.BeginState();
    pair.AddFile(u"\\\u017Durn\u00E1l \u4E2D.txt", "letters", 0x40);
    Save();
    EXPECT_EQ(0u, Start("ls " + Home() + " \"/\u017Durn\u00E1l \u4E2D.*\""));
    EXPECT_EQ("\\\u017Durn\u00E1l \u4E2D.txt\n", Read("out"));
}

}  // namespace
}  // namespace tolvenar::pc
