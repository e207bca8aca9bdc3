// How the program ends where its output, its folder or its time does.
#include <csignal>
#include <thread>
#include <unistd.h>

#include "tests/pc/program_test.h"

namespace tolvenar::pc {
namespace {

namespace fs = std::filesystem;

TEST_F(ProgramTest, GivesResultAndCode) {
    EXPECT_EQ(0, Shell("tolvenar cat Home.sav@1 '/My Documents/letter.txt' > out"));
    EXPECT_EQ("Dear Ann", Read("out"));
    EXPECT_EQ(5, Shell("echo x > out.sav; tolvenar info out.sav 2> /dev/null"));
}

// What each command writes out, to the output alone.
const char* const kToOutput[] = {"info Home.sav",
                                 "ls Home.sav",
                                 "cat Home.sav@1 '/My Documents/letter.txt'",
                                 "find Home.sav '*'",
                                 "verify Home.sav",
                                 "diff Home.sav 1 3",
                                 "diff Home.sav 1 3 --contents",
                                 "export Home.sav reg",
                                 "export Home.sav json",
                                 "export Home.sav@1 csv",
                                 "extract Home.sav --dry-run",
                                 "trim Home.sav --keep-last 1 -o new --dry-run",
                                 "salvage Home.sav -o new --dry-run",
                                 "describe man"};

// What each command writes, of which an argument is left away: where.
struct Writing {
    const char* command;
    const char* place;        // below which it writes
    std::size_t whole_files;  // that are there when it is done
    int code_on_a_full_disk;
};
const Writing kToFiles[] = {{"extract Home.sav@2 -o ", "", 2, 3},
                            {"export Home.sav reg -o ", "/home.reg", 1, 1},
                            {"export Home.sav json -o ", "/home.json", 1, 1},
                            {"trim Home.sav --keep-last 2 -o ", "/New", 2, 1},
                            {"salvage Home.sav -o ", "/New", 2, 1}};

std::size_t CountFiles(const fs::path& folder) {
    std::size_t count = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        count += entry.is_regular_file() ? 1 : 0;
    }
    return count;
}

TEST_F(ProgramTest, AFullDiskBehindTheOutputIsToldByTheCode) {
    for (const char* command : kToOutput) {
        EXPECT_EQ(1, Shell(std::string("tolvenar ") + command + " > /dev/full 2> told")) << command;
        EXPECT_NE(std::string::npos, Read("told").find("the output cannot be written")) << command;
    }
}

TEST_F(ProgramTest, APipeThatClosedIsAClearEnd) {
    // The reader is gone before the program begins.
    const std::string closed =
        "import os, subprocess, sys\n"
        "read, write = os.pipe()\n"
        "os.close(read)\n"
        "sys.exit(subprocess.run(sys.argv[1:], stdout=write).returncode)\n";
    Write("closed.py", closed);
    for (const char* command : kToOutput) {
        EXPECT_EQ(1,
                  Shell(std::string("python3 closed.py '" PC_PROGRAM "' ") + command + " 2> told"))
            << command;
        EXPECT_NE(std::string::npos, Read("told").find("the output cannot be written")) << command;
    }
}

TEST_F(ProgramTest, APipeThatClosesInTheMiddleIsAClearEnd) {
    pair.BeginState();
    pair.AddFile(u"\\large", Bytes(1000000, 'x'), 0x50);
    Save();
    EXPECT_EQ(1, Shell("tolvenar cat Home.sav /large 2> /dev/null | head -c 10 > out"));
    EXPECT_EQ("xxxxxxxxxx", Read("out"));
}

TEST_F(ProgramTest, AFolderThatCannotBeWrittenToIsAClearEnd) {
    for (const Writing& writing : kToFiles) {
        // Nobody makes a file or a folder there, whatever his rights.
        EXPECT_EQ(1, Shell(std::string("tolvenar ") + writing.command + "/proc/self/new" +
                           writing.place + " 2> told"))
            << writing.command;
        EXPECT_NE(std::string::npos, Read("told").find("/proc/self/new")) << writing.command;
    }
}

TEST_F(ProgramTest, AFullDiskLeavesNothingThatIsHalf) {
    for (const Writing& writing : kToFiles) {
        const std::string run = std::string("tolvenar ") + writing.command + "out" + writing.place;
        fs::create_directory(In("out"));
        EXPECT_EQ(writing.code_on_a_full_disk, Shell("ulimit -f 0; " + run + " > /dev/null 2>&1"))
            << writing.command;
        EXPECT_EQ(0u, CountFiles(In("out"))) << writing.command;
        fs::remove_all(In("out"));
        fs::create_directory(In("out"));
        EXPECT_NE(1, Shell(run + " > /dev/null")) << writing.command;
        EXPECT_EQ(writing.whole_files, CountFiles(In("out"))) << writing.command;
        fs::remove_all(In("out"));
    }
}

class InterruptedTest : public ProgramTest {
protected:
    // So much that it is not written before the signal comes.
    static constexpr std::size_t kLargeBytes = 64 << 20;

    InterruptedTest() {
        pair.BeginState();
        pair.AddFile(u"\\large", Bytes(kLargeBytes, 'x'), 0x50);
        Save();
    }

    // The exit code of the program, which is asked to end as soon as it has begun a file in "out".
    int Interrupt(const std::vector<std::string>& arguments) const {
        const ::pid_t program = ::fork();
        if (program == 0) {
            std::vector<char*> words = {const_cast<char*>(PC_PROGRAM)};
            for (const std::string& argument : arguments) {
                words.push_back(const_cast<char*>(argument.c_str()));
            }
            words.push_back(nullptr);
            ::close(STDOUT_FILENO);
            ::close(STDERR_FILENO);
            ::execv(PC_PROGRAM, words.data());
            ::_exit(127);
        }
        int status = 0;
        while (!HasBegun() && ::waitpid(program, &status, WNOHANG) == 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        ::kill(program, SIGTERM);
        ::waitpid(program, &status, 0);
        EXPECT_TRUE(WIFEXITED(status));
        return WEXITSTATUS(status);
    }

private:
    bool HasBegun() const {
        std::error_code error;
        return !fs::is_empty(In("out"), error) && !error;
    }
};

TEST_F(InterruptedTest, NothingHalfIsLeft) {
    const std::vector<std::vector<std::string>> commands = {
        {"extract", In("Home.sav"), "/large", "-o", In("out")},
        {"trim", In("Home.sav"), "--keep-last", "1", "-o", In("out/New")},
        {"salvage", In("Home.sav"), "-o", In("out/New")}};
    for (const std::vector<std::string>& arguments : commands) {
        fs::create_directory(In("out"));
        EXPECT_EQ(1, Interrupt(arguments)) << arguments[0];
        EXPECT_TRUE(fs::is_empty(In("out"))) << arguments[0];
        fs::remove_all(In("out"));
    }
}

}  // namespace
}  // namespace tolvenar::pc
