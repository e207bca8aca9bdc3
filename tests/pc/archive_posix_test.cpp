// export tar.
#include <cstdlib>

#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

class ArchiveTest : public ThreeStatesTest {
protected:
    // Runs a line of the shell in the case's folder; PROGRAM stands for the built program.
    int Shell(std::string line) const {
        const std::string program = "PROGRAM";
        for (std::size_t at; (at = line.find(program)) != line.npos;) {
            line.replace(at, program.size(), PC_PROGRAM);
        }
        const std::string command = "cd '" + In("") + "' && umask 022 && " + line;
        return WEXITSTATUS(std::system(("bash -c '" + command + "'").c_str()));
    }
    // What a line of the shell tells.
    std::string Told(const std::string& line) const {
        EXPECT_EQ(0, Shell("( " + line + " ) >told 2>&1")) << Read("told");
        return Read("told");
    }
};

TEST_F(ArchiveTest, TarHasTheFilesAsExtractGivesThem) {
    pair.time += 1234567;  // parts of a second
    pair.BeginState();
    pair.AddFolder(u"\\empty", 0x30);
    pair.AddFile(u"\\My Documents\\Caf\u00E9 \u0436.txt", Bytes(100000, 'x'), 0x31);
    pair.AddFile(u"\\My Documents\\CON", "console", 0x32);
    Save();
    const Result result = Run({"export", "HOME", "tar", "-o", In("home.tar")});
    EXPECT_EQ(0, result.code);
    EXPECT_NE(std::string::npos,
              result.err.find("renamed: \\My Documents\\CON -> My Documents/_CON"));
    EXPECT_EQ(0, Run({"extract", "HOME", "-o", In("all/files")}).code);
    EXPECT_EQ("", Told("tar -df home.tar -C all files"));
    EXPECT_EQ("", Told("mkdir out && tar -xf home.tar -C out && diff -r out/files all/files"));
}

TEST_F(ArchiveTest, TarDiffersFromAnotherState) {
    EXPECT_EQ(0, Run({"export", "HOME@1", "tar", "-o", In("home.tar")}).code);
    EXPECT_EQ(0, Run({"extract", "HOME@2", "-o", In("all/files")}).code);
    EXPECT_EQ(1, Shell("tar -df home.tar -C all files >told"));
}

TEST_F(ArchiveTest, TarHasRegistryAndDatabases) {
    EXPECT_EQ(0, Run({"export", "HOME@2", "tar", "-o", In("home.tar")}).code);
    EXPECT_EQ(Run({"export", "HOME@2", "reg"}).out, Told("tar -xOf home.tar registry.reg"));
    EXPECT_EQ(Run({"export", "HOME@2", "json"}).out, Told("tar -xOf home.tar databases.json"));
}

TEST_F(ArchiveTest, TarGoesThroughAPipe) {
    EXPECT_EQ(Run({"export", "HOME@1", "tar"}).out, Told("PROGRAM export Home@1 tar | cat"));
    EXPECT_EQ("Dear Ann",
              Told("PROGRAM export Home@1 tar | tar -xO \"files/My Documents/letter.txt\""));
}

TEST_F(ArchiveTest, WhatIsNotInTarIsTold) {
    pair.BeginState();
    pair.AddRomFile(u"\\Windows\\shell.exe", 0x30);
    Save();
    Result result = Run({"export", "HOME", "tar", "-o", In("rom.tar")});
    EXPECT_EQ(3, result.code);
    EXPECT_NE(std::string::npos, result.err.find("not exported: \\Windows\\shell.exe"));
    pair.sav[pair.sav.find("Dear Ann, bye")] ^= 1;
    Save();
    result = Run({"export", "HOME", "tar", "-o", In("damaged.tar")});
    EXPECT_EQ(4, result.code);
    EXPECT_EQ(std::string::npos, Told("tar -tf damaged.tar").find("letter.txt"));
    EXPECT_NE(std::string::npos, Told("tar -tf damaged.tar").find("plan.txt"));
}

TEST_F(ArchiveTest, JsonTellsWhatIsNotThere) {
    pair.BeginState();
    pair.AddRomFile(u"\\Windows\\shell.exe", 0x30);
    pair.AddFile(u"\\CON", "console", 0x31);
    Save();
    const nlohmann::json told = RunJson({"export", "HOME", "tar", "-o", In("home.tar")}, 3);
    EXPECT_EQ(4, told["state"]);
    EXPECT_EQ("tar", told["form"]);
    EXPECT_EQ(In("home.tar"), told["to"]);
    ASSERT_EQ(1u, told["not_exported"].size());
    EXPECT_EQ("\\Windows\\shell.exe", told["not_exported"][0]["path"]);
    EXPECT_NE("", told["not_exported"][0]["reason"]);
    EXPECT_EQ(nlohmann::json({"renamed: \\CON -> _CON"}), told["notes"]);
}

TEST_F(ArchiveTest, JsonNeedsAFileOfItsOwn) {
    EXPECT_EQ(2, Run({"export", "HOME", "tar", "--json"}).code);
}

TEST_F(ArchiveTest, AFullDiskLeavesNoFile) {
    pair.BeginState();
    pair.AddFile(u"\\big", Bytes(100000, 'x'), 0x30);
    Save();
    EXPECT_EQ(1, Shell("trap \"\" XFSZ; ulimit -f 8; PROGRAM export Home tar -o home.tar 2>told"));
    EXPECT_NE(std::string::npos, Read("told").find("home.tar: File too large")) << Read("told");
    EXPECT_EQ("Home.jrn\nHome.sav\ntold\n", Told("ls -A"));
}

TEST_F(ArchiveTest, APipeThatClosesIsAnEndWithCodeOne) {
    pair.BeginState();
    pair.AddFile(u"\\big", Bytes(1000000, 'x'), 0x30);
    Save();
    EXPECT_EQ(1, Shell("trap \"\" PIPE; PROGRAM export Home tar 2>told | head -c 1 >told2; "
                       "exit ${PIPESTATUS[0]}"));
}

}  // namespace
}  // namespace tolvenar::pc
