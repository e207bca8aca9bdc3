// ls, cat and find.
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

class ListTest : public ThreeStatesTest {};

TEST_F(ListTest, NamesTheObjectsOfAStateInOrder) {
    EXPECT_EQ(
        "\\My Documents\n\\My Documents\\letter.txt\n\\My Documents\\notes.txt\n"
        "HKCU\\Software\\Notes\nHKCU\\Software\\Notes\\\\Font\n"
        "db:Contacts Database\ndb:Contacts Database#33\n",
        Run({"ls", "HOME@1"}).out);
}

TEST_F(ListTest, WithoutAStateTheLastOneIsMeant) {
    const std::string last =
        "\\My Documents\n\\My Documents\\letter.txt\n\\My Documents\\plan.txt\n"
        "HKCU\\Software\\Notes\nHKCU\\Software\\Notes\\\\Font\ndb:Contacts Database\n";
    EXPECT_EQ(last, Run({"ls", "HOME"}).out);
    EXPECT_EQ(last, Run({"ls", "HOME@last"}).out);
    EXPECT_EQ(last, Run({"ls", "HOME@3"}).out);
}

TEST_F(ListTest, ATimeMeansTheLastStateUntilThen) {
    EXPECT_EQ(Run({"ls", "HOME@2"}).out, Run({"ls", "HOME@2026-11-16 06:00"}).out);
    EXPECT_EQ(Run({"ls", "HOME@3"}).out, Run({"ls", "HOME@2026-11-16"}).out);
    EXPECT_EQ(1, Run({"ls", "HOME@2026-11-15"}).code);
    EXPECT_EQ(1, Run({"ls", "HOME@4"}).code);
    EXPECT_EQ(1, Run({"ls", "HOME@0"}).code);
    EXPECT_EQ(2, Run({"ls", "HOME@first"}).code);
}

TEST_F(ListTest, APatternTakesWhatIsBelow) {
    EXPECT_EQ("\\My Documents\n\\My Documents\\letter.txt\n\\My Documents\\notes.txt\n",
              Run({"ls", "HOME@1", "/my documents"}).out);
    EXPECT_EQ("db:Contacts Database\ndb:Contacts Database#33\n",
              Run({"ls", "HOME@1", "db:contacts database"}).out);
    EXPECT_EQ("\\My Documents\\notes.txt\nHKCU\\Software\\Notes\\\\Font\n",
              Run({"ls", "HOME@1", "*notes.txt", "*Font"}).out);
    EXPECT_EQ(1, Run({"ls", "HOME@1", "*.doc"}).code);
}

TEST_F(ListTest, TheLongFormHasKindSizeAndTime) {
    EXPECT_EQ("file              8  2026-11-16 04:33:10  \\My Documents\\letter.txt\n",
              Run({"ls", "-l", "HOME@1", "*letter*"}).out);
}

TEST_F(ListTest, JsonHasEveryField) {
    const nlohmann::json list = RunJson({"ls", "HOME@2"});
    EXPECT_EQ(2, list["state"]);
    ASSERT_EQ(7u, list["objects"].size());
    const nlohmann::json& letter = list["objects"][1];
    EXPECT_EQ("\\My Documents\\letter.txt", letter["path"]);
    EXPECT_EQ("file", letter["kind"]);
    EXPECT_EQ(13, letter["bytes"]);
    EXPECT_EQ("2026-11-16T05:33:10Z", letter["time"]);
    EXPECT_EQ(2, letter["stored_by"]);
    EXPECT_EQ(0x11, letter["id"]);
    EXPECT_EQ(0x20, letter["attributes"]);
    const nlohmann::json& font = list["objects"][4];
    EXPECT_EQ("HKCU", font["hive"]);
    EXPECT_EQ("Software\\Notes", font["key"]);
    EXPECT_EQ("Font", font["value"]);
    EXPECT_EQ(1, font["value_type"]);
}

TEST_F(ListTest, ANameThatIsNoTextHasItsUnitsToo) {
    pair.BeginState();
    pair.AddFile(std::u16string(u"\\a") + char16_t{0xD800}, "x", 0x30);
    Save();
    const nlohmann::json file = RunJson({"ls", "HOME", "/a?"})["objects"][0];
    EXPECT_EQ("\\a\xEF\xBF\xBD", file["path"]);
    EXPECT_EQ("005c0061d800", file["path_utf16"]);
}

TEST_F(ListTest, ADamagedObjectIsListedAsOne) {
    const std::size_t name = pair.sav.find(Units(u"notes.txt"));
    pair.sav[name] ^= 1;
    Save();
    const Result result = Run({"ls", "HOME@1"});
    EXPECT_EQ(4, result.code);
    EXPECT_EQ(std::string::npos, result.out.find("otes.txt"));
    EXPECT_NE(std::string::npos, result.out.find("damaged:"));
    EXPECT_EQ(0, Run({"ls", "HOME@3"}).code);
}

// A failed backup leaves the older version without its deletion.
TEST_F(ListTest, OfTwoVersionsOfOneFileTheNewerIsListed) {
    pair.BeginState();
    pair.AddFile(u"\\My Documents\\LETTER.txt", "newest", 0x44);
    Save();
    EXPECT_EQ("\\My Documents\\LETTER.txt\n", Run({"ls", "HOME", "*letter*"}).out);
    EXPECT_EQ("newest", Run({"cat", "HOME", "/My Documents/letter.txt"}).out);
}

class CatTest : public ThreeStatesTest {};

TEST_F(CatTest, WritesAFileOfAState) {
    EXPECT_EQ("Dear Ann", Run({"cat", "HOME@1", "\\My Documents\\letter.txt"}).out);
    EXPECT_EQ("Dear Ann, bye", Run({"cat", "HOME@2", "/my documents/LETTER.TXT"}).out);
    const Result empty = Run({"cat", "HOME@3", "/My Documents/plan.txt"});
    EXPECT_EQ(0, empty.code);
    EXPECT_EQ("", empty.out);
}

TEST_F(CatTest, ALargeFileComesWhole) {
    const Bytes bytes = RandomBytes(300000, 1);
    pair.BeginState();
    pair.AddFile(u"\\large", bytes, 0x50);
    Save();
    EXPECT_EQ(bytes, Run({"cat", "HOME", "/large"}).out);
}

TEST_F(CatTest, ShowsValuesAndRecordsAsText) {
    EXPECT_EQ("Courier\n", Run({"cat", "HOME", "HKCU\\Software\\Notes\\\\Font"}).out);
    EXPECT_EQ("0002: 7\n", Run({"cat", "HOME@1", "db:Contacts Database#33"}).out);
}

TEST_F(CatTest, RawGivesTheStoredBytes) {
    EXPECT_EQ(Terminated(u"Courier"),
              Run({"cat", "--raw", "HOME", "hkcu\\software\\notes\\\\font"}).out);
    EXPECT_EQ(Property(0x00020003, 7),
              Run({"cat", "--raw", "HOME@1", "db:contacts database#33"}).out);
    EXPECT_EQ("54006100", RunJson({"cat", "HOME@1", "HKCU\\Software\\Notes\\\\Font"})["data"]
                              .get<std::string>()
                              .substr(0, 8));
}

TEST_F(CatTest, EveryTypeOfValueFitsItsText) {
    pair.BeginState();
    pair.AddValue(u"Software\\Notes", u"Bytes", RandomBytes(5000, 2), 3);
    pair.AddValue(u"Software\\Notes", u"List", Terminated(u"a\n\n\nb") + Terminated(u"c") + Half(0),
                  7);
    pair.AddValue(u"Software\\Notes", u"Number", Word(258), 4);
    Save();
    EXPECT_EQ(15000u, Run({"cat", "HOME", "HKCU\\Software\\Notes\\\\Bytes"}).out.size());
    EXPECT_EQ("a\n\n\nb\nc\n", Run({"cat", "HOME", "HKCU\\Software\\Notes\\\\List"}).out);
    EXPECT_EQ("258 (0x00000102)\n", Run({"cat", "HOME", "HKCU\\Software\\Notes\\\\Number"}).out);
}

TEST_F(CatTest, DamagedContentsAreNotShown) {
    pair.sav[pair.sav.find("Dear Ann, bye")] ^= 1;
    Save();
    const Result damaged = Run({"cat", "HOME@2", "/My Documents/letter.txt"});
    EXPECT_EQ(4, damaged.code);
    EXPECT_EQ("", damaged.out);
    EXPECT_EQ("Dear Ann", Run({"cat", "HOME@1", "/My Documents/letter.txt"}).out);
}

TEST_F(CatTest, TellsWhatHasNoContents) {
    EXPECT_EQ(1, Run({"cat", "HOME", "/My Documents"}).code);
    EXPECT_EQ(1, Run({"cat", "HOME", "db:Contacts Database"}).code);
    EXPECT_EQ(1, Run({"cat", "HOME", "/nothing"}).code);
}

class FindTest : public ThreeStatesTest {};

TEST_F(FindTest, TellsStatesAndChanges) {
    EXPECT_EQ(
        "\\My Documents\\letter.txt\n"
        "    file              8 bytes  2026-11-16 04:33:10  in states: 1\n"
        "    file             13 bytes  2026-11-16 05:33:10  in states: 2 to 3\n"
        "\\My Documents\\notes.txt\n"
        "    file              4 bytes  2026-11-16 04:33:10  in states: 1 to 2\n"
        "    deleted before the backup of state 3\n",
        Run({"find", "HOME", "*letter.txt", "*notes.txt"}).out);
}

TEST_F(FindTest, JsonHasTheStatesOfEachVersion) {
    const nlohmann::json found = RunJson({"find", "HOME", "*Font"});
    EXPECT_EQ((std::vector<int>{1, 2, 3}), found["states"].get<std::vector<int>>());
    ASSERT_EQ(1u, found["objects"].size());
    const nlohmann::json& versions = found["objects"][0]["versions"];
    ASSERT_EQ(2u, versions.size());
    EXPECT_EQ((std::vector<int>{1}), versions[0]["states"].get<std::vector<int>>());
    EXPECT_EQ((std::vector<int>{2, 3}), versions[1]["states"].get<std::vector<int>>());
}

TEST_F(FindTest, NothingFoundIsToldByTheCode) { EXPECT_EQ(1, Run({"find", "HOME", "*.doc"}).code); }

TEST_F(FindTest, ADamagedVersionIsTold) {
    pair.sav[pair.sav.find(Units(u"notes.txt"))] ^= 1;
    Save();
    EXPECT_EQ(4, Run({"find", "HOME", "*letter*"}).code);
}

}  // namespace
}  // namespace tolvenar::pc
