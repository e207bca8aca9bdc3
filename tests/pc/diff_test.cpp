// diff, and the lines that differ between two texts.
#include <fstream>
#include <sstream>

#include "pc/storage/differences.h"
#include "pc/text/line_difference.h"
#include "pc/text/utf.h"
#include "tests/pc/pc_test.h"
#include "tests/support/fake_tree.h"

namespace tolvenar::pc {
namespace {

using Lines = std::vector<std::string>;

class DiffTest : public ThreeStatesTest {};

TEST_F(DiffTest, TheTreeIsTheDevices) {
    EXPECT_EQ(
        "Differences (\u00B12)\n"
        "  Applications\n"
        "  Databases\n"
        "  Registry (\u00B11)\n"
        "    HKCU\n"
        "      Software\n"
        "        Notes\n"
        "          Font (\u00B1)\n"
        "  Files (\u00B11)\n"
        "    My Documents\n"
        "      letter.txt (\u00B1)\n",
        Run({"diff", "HOME", "1", "2"}).out);
}

TEST_F(DiffTest, TheSimpleViewIsByDocuments) {
    const std::string tree = Run({"diff", "HOME", "2", "3", "--simple"}).out;
    EXPECT_NE(std::string::npos, tree.find("  Documents (+1, -1)\n"));
    EXPECT_NE(std::string::npos, tree.find("  Outlook Data (-1)\n"));
}

TEST_F(DiffTest, FlatHasACodeForEachObject) {
    EXPECT_EQ("C \\My Documents\\letter.txt\nC HKCU\\Software\\Notes\\\\Font\n",
              Run({"diff", "HOME", "1", "2", "--flat"}).out);
    EXPECT_EQ(
        "D \\My Documents\\notes.txt\nA \\My Documents\\plan.txt\nD db:Contacts Database#33\n",
        Run({"diff", "HOME", "2", "3", "--flat"}).out);
    EXPECT_EQ("A \\My Documents\\plan.txt\n",
              Run({"diff", "HOME", "2", "3", "--flat", "*plan*"}).out);
    EXPECT_EQ("", Run({"diff", "HOME", "2", "2", "--flat"}).out);
}

TEST_F(DiffTest, NothingIsOlderThanTheFirstState) {
    EXPECT_EQ(7u, RunJson({"diff", "HOME", "0", "1"})["objects"].size());
    EXPECT_EQ(1, Run({"diff", "HOME", "1", "9"}).code);
}

TEST_F(DiffTest, ContentsAreToldLineByLine) {
    EXPECT_EQ(
        "C \\My Documents\\letter.txt\n    @@ -1,1 +1,1 @@\n    -Dear Ann\n    +Dear Ann, bye\n"
        "C HKCU\\Software\\Notes\\\\Font\n    @@ -1,1 +1,1 @@\n    -Tahoma\n    +Courier\n",
        Run({"diff", "HOME", "1", "2", "--contents"}).out);
    EXPECT_EQ("D db:Contacts Database#33\n    @@ -1,1 +0,0 @@\n    -0002: 7\n",
              Run({"diff", "HOME", "2", "3", "--contents", "db:*"}).out);
}

TEST_F(DiffTest, WhatIsNoTextIsToldBySize) {
    pair.BeginState();
    pair.AddFile(u"\\picture", Raw({0, 1, 2}), 0x70);
    Save();
    EXPECT_EQ("A \\picture\n    nothing -> 3 bytes, not shown: no text, too long or damaged\n",
              Run({"diff", "HOME", "3", "4", "--contents"}).out);
}

TEST_F(DiffTest, JsonHasBothVersionsAndTheTree) {
    const nlohmann::json told = RunJson({"diff", "HOME", "1", "2"});
    ASSERT_EQ(2u, told["objects"].size());
    EXPECT_EQ("changed", told["objects"][0]["change"]);
    EXPECT_EQ(8, told["objects"][0]["before"]["bytes"]);
    EXPECT_EQ(13, told["objects"][0]["after"]["bytes"]);
    EXPECT_EQ("Differences", told["tree"]["caption"]);
    EXPECT_EQ("Files", told["tree"]["items"][3]["caption"]);
}

TEST_F(DiffTest, ADamagedObjectIsTold) {
    pair.sav[pair.sav.find(Units(u"plan.txt"))] ^= 1;
    Save();
    const Result result = Run({"diff", "HOME", "2", "3", "--flat"});
    EXPECT_EQ(4, result.code);
    EXPECT_NE(std::string::npos, result.out.find("! damaged:"));
}

TEST_F(DiffTest, TheProgramsOwnValuesAreInNoState) {
    pair.BeginState();
    pair.AddValue(u"Software\\Kestrin2\\Tolvenar", u"OwnLastAutomatic", "1234");
    pair.AddValue(u"Software\\Kestrin2\\Tolvenar", u"onTime", Word(1), 4);
    Save();
    EXPECT_EQ("A HKCU\\Software\\Kestrin2\\Tolvenar\\\\onTime\n",
              Run({"diff", "HOME", "3", "4", "--flat"}).out);
}

std::string Source(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(std::string(TOLVENAR_SOURCE_DIR "/") + path).rdbuf();
    return text.str();
}

TEST(Differences, TheProgramsOwnValuesAreCalledAsOnTheDevice) {
    EXPECT_NE(std::string::npos,
              Source("app/settings/settings.h")
                  .find("kSettingsKey[] = u\"Software\\\\Kestrin2\\\\Tolvenar\""));
    EXPECT_NE(std::string::npos,
              Source("app/settings/own_values.h").find("kOwnValuePrefix[] = u\"Own\""));
    EXPECT_EQ(u"Software\\Kestrin2\\Tolvenar", kOwnValues.key_path);
    EXPECT_EQ(u"Own", kOwnValues.prefix);
}

TEST(LineDifference, EqualTextsHaveNone) {
    EXPECT_EQ(Lines(), UnifiedDifference({"a", "b"}, {"a", "b"}));
    EXPECT_EQ(Lines(), UnifiedDifference({}, {}));
}

TEST(LineDifference, AHunkHasItsContext) {
    EXPECT_EQ((Lines{"@@ -2,3 +2,3 @@", " b", "-c", "+C", " d"}),
              UnifiedDifference({"a", "b", "c", "d", "e"}, {"a", "b", "C", "d", "e"}, 1));
}

TEST(LineDifference, NearHunksAreOneAndFarOnesTwo) {
    EXPECT_EQ((Lines{"@@ -1,4 +1,4 @@", "-a", "+A", " b", " c", "-d", "+D"}),
              UnifiedDifference({"a", "b", "c", "d"}, {"A", "b", "c", "D"}, 1));
    EXPECT_EQ((Lines{"@@ -1,2 +1,2 @@", "-a", "+A", " b", "@@ -4,2 +4,3 @@", " d", "+x", " e"}),
              UnifiedDifference({"a", "b", "c", "d", "e"}, {"A", "b", "c", "d", "x", "e"}, 1));
}

TEST(LineDifference, OneSideMayBeEmpty) {
    EXPECT_EQ((Lines{"@@ -0,0 +1,1 @@", "+a"}), UnifiedDifference({}, {"a"}));
    EXPECT_EQ((Lines{"@@ -1,1 +0,0 @@", "-a"}), UnifiedDifference({"a"}, {}));
}

TEST(LineDifference, LongTextsThatHaveNothingInCommonAreReplaced) {
    const Lines older(3000, "a");
    const Lines newer(3000, "b");
    EXPECT_EQ(6001u, UnifiedDifference(older, newer).size());
}

}  // namespace
}  // namespace tolvenar::pc
