// extract: what comes out, and that a hostile storage reaches nothing outside the folder.
#include <csignal>
#include <sys/stat.h>

#include "pc/command/interrupt.h"
#include "pc/storage/folder_writer.h"
#include "pc/storage/safe_names.h"
#include "pc/text/utf.h"
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

namespace fs = std::filesystem;

class ExtractTest : public ThreeStatesTest {
protected:
    Result Extract(std::vector<std::string> more = {}) const {
        std::vector<std::string> arguments = {"extract", "HOME", "-o", In("out")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Run(arguments);
    }
    // A storage of one state with one file of that path.
    void MakeFile(const std::u16string& path) {
        pair = PairBuilder();
        pair.BeginState();
        pair.AddFile(path, "hostile", 0x30);
        Save();
    }
    // The only file below the folder, relative to it.
    std::string TheFile() const {
        std::string found;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(In("out"))) {
            if (entry.is_regular_file()) {
                EXPECT_EQ("", found);
                found = fs::relative(entry.path(), In("out")).generic_string();
            }
        }
        return found;
    }
    // Where the file of that path goes; nothing else may appear beside the folder.
    std::string PlaceOf(const std::u16string& path) {
        MakeFile(path);
        const Result result = Extract();
        EXPECT_EQ(0, result.code) << result.err;
        std::size_t beside = 0;
        for (const fs::directory_entry& entry : fs::directory_iterator(In(""))) {
            beside += entry.path().filename() == "out" ? 0 : 1;
        }
        EXPECT_EQ(2u, beside);  // the pair
        return TheFile();
    }
};

TEST_F(ExtractTest, GivesTheFilesOfAStateWithTheirTimes) {
    const Result result = Run({"extract", "HOME@2", "-o", In("out")});
    EXPECT_EQ(0, result.code);
    EXPECT_EQ("2 files, 1 folders, 17 bytes extracted\n", result.out);
    EXPECT_EQ("Dear Ann, bye", Read("out/My Documents/letter.txt"));
    EXPECT_EQ("milk", Read("out/My Documents/notes.txt"));
    struct stat status {};
    ASSERT_EQ(0, ::stat(In("out/My Documents/letter.txt").c_str(), &status));
    EXPECT_EQ(1794803590 + 3600, status.st_mtime);
}

TEST_F(ExtractTest, APatternChooses) {
    EXPECT_EQ(0, Extract({"*plan*"}).code);
    EXPECT_EQ("My Documents/plan.txt", TheFile());
    EXPECT_EQ(1, Extract({"*.doc"}).code);
}

TEST_F(ExtractTest, ADryRunWritesNothing) {
    const Result result = Extract({"--dry-run"});
    EXPECT_EQ(0, result.code);
    EXPECT_NE(std::string::npos, result.out.find("letter.txt -> My Documents/letter.txt\n"));
    EXPECT_FALSE(fs::exists(In("out")));
}

TEST_F(ExtractTest, JsonTellsWhereEachFileIs) {
    const nlohmann::json told = RunJson({"extract", "HOME", "-o", In("out")});
    ASSERT_EQ(3u, told["extracted"].size());
    EXPECT_EQ("My Documents/letter.txt", told["extracted"][1]["to"]);
    EXPECT_EQ(false, told["extracted"][1]["renamed"]);
    EXPECT_EQ(0u, told["not_extracted"].size());
}

TEST_F(ExtractTest, WhatIsThereIsNotReplaced) {
    fs::create_directories(In("out/My Documents"));
    Write("out/My Documents/letter.txt", "mine");
    const Result result = Extract();
    EXPECT_EQ(3, result.code);
    EXPECT_EQ("mine", Read("out/My Documents/letter.txt"));
    EXPECT_TRUE(fs::exists(In("out/My Documents/plan.txt")));
    EXPECT_NE(std::string::npos, result.out.find("not extracted: \\My Documents\\letter.txt"));
}

TEST_F(ExtractTest, DamagedContentsStayOutAndTheRestComes) {
    pair.sav[pair.sav.find("Dear Ann, bye")] ^= 1;
    Save();
    EXPECT_EQ(4, Extract().code);
    EXPECT_FALSE(fs::exists(In("out/My Documents/letter.txt")));
    EXPECT_EQ("My Documents/plan.txt", TheFile());
}

TEST_F(ExtractTest, AFileWithADamagedBlockIsTold) {
    pair.sav[pair.sav.find(Units(u"plan.txt"))] ^= 1;
    Save();
    const Result result = Extract();
    EXPECT_EQ(4, result.code);
    EXPECT_NE(std::string::npos, result.out.find("its block is damaged"));
    EXPECT_EQ("Dear Ann, bye", Read("out/My Documents/letter.txt"));
}

TEST_F(ExtractTest, UpwardPathsStayInside) { EXPECT_EQ("__/__/x", PlaceOf(u"\\..\\..\\x")); }
TEST_F(ExtractTest, ADotIsAName) { EXPECT_EQ("_/x", PlaceOf(u"\\.\\x")); }
TEST_F(ExtractTest, DoubledRootsStayInside) { EXPECT_EQ("_/etc/x", PlaceOf(u"\\\\etc\\x")); }
TEST_F(ExtractTest, SlashesArePartOfAName) { EXPECT_EQ("_etc_x", PlaceOf(u"/etc/x")); }
TEST_F(ExtractTest, DrivesAndStreamsArePartOfAName) { EXPECT_EQ("C_/x_y", PlaceOf(u"\\C:\\x:y")); }
TEST_F(ExtractTest, NamesOfDevicesAreNone) {
    EXPECT_EQ("_CON/_nul.txt", PlaceOf(u"\\CON\\nul.txt"));
}
TEST_F(ExtractTest, DotsAndBlanksAtTheEndStay) { EXPECT_EQ("a__/b_", PlaceOf(u"\\a. \\b.")); }
TEST_F(ExtractTest, ControlCharactersGo) { EXPECT_EQ("a_b_c", PlaceOf(u"\\a\nb\u202ec")); }
TEST_F(ExtractTest, AnEmptyNameIsNone) { EXPECT_EQ("_", PlaceOf(u"\\")); }
TEST_F(ExtractTest, ANameThatIsNoTextIsExtracted) {
    EXPECT_EQ("a\xEF\xBF\xBD", PlaceOf(std::u16string(u"\\a") + char16_t{0xD800}));
}
TEST_F(ExtractTest, ANameThatIsTooLongForTheFileSystemIsCut) {
    EXPECT_EQ(198u, PlaceOf(u"\\" + std::u16string(250, u'\u20AC')).size());
}

TEST_F(ExtractTest, RenamedFilesAreTold) {
    MakeFile(u"\\a:b");
    EXPECT_EQ("renamed: \\a:b -> a_b\n1 files, 0 folders, 7 bytes extracted\n", Extract().out);
}

TEST_F(ExtractTest, TwoNamesThatBecomeOneAreBothThere) {
    pair = PairBuilder();
    pair.BeginState();
    pair.AddFile(u"\\a:b.txt", "first", 0x30);
    pair.AddFile(u"\\A?b.txt", "second", 0x31);
    pair.AddFile(u"\\a_b.txt", "third", 0x32);
    Save();
    EXPECT_EQ(0, Extract().code);
    EXPECT_EQ(3, std::distance(fs::directory_iterator(In("out")), fs::directory_iterator()));
}

TEST_F(ExtractTest, AFileThatIsAFolderTooStandsBesideIt) {
    pair = PairBuilder();
    pair.BeginState();
    pair.AddFile(u"\\a", "file", 0x30);
    pair.AddFile(u"\\a\\b", "below", 0x31);
    Save();
    EXPECT_EQ(0, Extract().code);
    EXPECT_EQ("file", Read("out/a"));
    EXPECT_EQ("below", Read("out/a (2)/b"));
}

TEST_F(ExtractTest, AFileOfTheRomIsTold) {
    pair.BeginState();
    pair.AddRomFile(u"\\Windows\\rom.exe", 0x60);
    Save();
    const Result result = Extract({"*rom.exe"});
    EXPECT_EQ(3, result.code);
    EXPECT_NE(std::string::npos, result.out.find("ROM"));
    EXPECT_FALSE(fs::exists(In("out/Windows/rom.exe")));
    EXPECT_EQ(3, Run({"cat", "HOME", "/Windows/rom.exe"}).code);
}

TEST_F(ExtractTest, AFolderThatCannotBeMadeIsAClearEnd) {
    Write("out", "a file");
    EXPECT_EQ(1, Extract().code);
}

TEST(SafeNames, FoldersThatDifferInCaseAreOne) {
    SafeNames names;
    EXPECT_EQ((std::vector<std::string>{"Docs", "a"}), names.Place(u"\\Docs\\a", false).components);
    EXPECT_EQ((std::vector<std::string>{"Docs", "b"}), names.Place(u"\\DOCS\\b", false).components);
    EXPECT_FALSE(names.Place(u"\\DOCS\\c", false).is_renamed);
}

TEST(SafeNames, EveryDevicesNameIsAvoided) {
    for (const char16_t* name : {u"con", u"Prn.txt", u"AUX", u"nul .x", u"COM1", u"lpt9.a.b",
                                 u"com\u00B9", u"conin$", u"CONOUT$"}) {
        EXPECT_EQ('_', SafeComponent(name)[0]) << ToUtf8(name);
    }
    for (const char16_t* name : {u"CONS", u"COM", u"COM10", u"nu", u"a.con"}) {
        EXPECT_NE('_', SafeComponent(name)[0]) << ToUtf8(name);
    }
}

class FolderWriterTest : public PcTest {};

TEST_F(FolderWriterTest, AFileThatIsHalfWrittenIsNotThere) {
    FolderWriter writer(In("out"));
    EXPECT_NE("", writer.WriteFile({"a", "b"}, {}, [](const FolderWriter::Take& take) {
        return take("half") && false;
    }));
    EXPECT_TRUE(fs::is_empty(In("out/a")));
}

TEST_F(FolderWriterTest, AnInterruptIsRememberedWhileItIsWatched) {
    const InterruptWatch watch;
    EXPECT_FALSE(IsInterrupted());
    std::raise(SIGTERM);
    EXPECT_TRUE(IsInterrupted());
}

}  // namespace
}  // namespace tolvenar::pc
