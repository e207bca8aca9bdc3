// report.
#include "tests/pc/hostile_pair.h"
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

bool Has(const std::string& page, const std::string& part) { return page.find(part) != page.npos; }

class ReportTest : public ThreeStatesTest {
protected:
    std::string Report(int expected_code = 0) const {
        const Result result = Run({"report", "HOME"});
        EXPECT_EQ(expected_code, result.code) << result.err;
        return result.out;
    }
};

TEST_F(ReportTest, TellsOfDeviceAndStates) {
    const std::string page = Report();
    EXPECT_EQ(0u, page.find("<!DOCTYPE html>"));
    EXPECT_TRUE(Has(page, "<h1><bdi>Handheld</bdi></h1>"));
    EXPECT_TRUE(Has(page, "no errors were found"));
    for (const char* made : {"2026-11-16 04:33:10", "2026-11-16 05:33:10", "2026-11-16 06:33:10"}) {
        EXPECT_TRUE(Has(page, made)) << made;
    }
    EXPECT_TRUE(Has(page, "<bdi>second</bdi>"));
    EXPECT_EQ(page.size() - 8, page.find("</html>\n"));
}

// Three circles, the first and the last at the ends.
TEST_F(ReportTest, StatesStandAtTheirTimes) {
    const std::string page = Report();
    for (const char* place : {"cx=\"2.00%\"", "cx=\"50.00%\"", "cx=\"98.00%\""}) {
        EXPECT_TRUE(Has(page, place)) << place;
    }
}

TEST_F(ReportTest, DifferencesAreATreeThatOpens) {
    const std::string page = Report();
    EXPECT_TRUE(Has(page,
                    "<details class=card id=\"changes-3\"><summary>State 3 against 2"
                    "<span class=count><span class=a>+1</span> "
                    "<span class=d>\u22122</span></span></summary>"));
    EXPECT_TRUE(Has(page, "<li class=a><bdi>plan.txt (+)</bdi>"));
    EXPECT_TRUE(Has(page, "<li class=d><bdi>notes.txt (-)</bdi>"));
    EXPECT_TRUE(Has(page, "<li class=c><bdi>letter.txt (\u00B1)</bdi>"));
}

TEST_F(ReportTest, TellsTheLargestAndTheMostOftenChanged) {
    const std::string page = Report();
    const std::size_t largest = page.find("Largest in the last state");
    const std::size_t changed = page.find("Most often changed");
    EXPECT_LT(largest, changed);
    EXPECT_LT(largest, page.find("<bdi>\\My Documents\\letter.txt</bdi></td>", largest));
    EXPECT_LT(changed, page.find("<bdi>HKCU\\Software\\Notes\\\\Font</bdi></td>", changed));
    EXPECT_TRUE(Has(page.substr(changed), "<a href=\"#changes-2\">2</a>"));
}

TEST_F(ReportTest, WhatFailedIsToldAndWhereItIsWhole) {
    pair.sav[pair.sav.find("Dear Ann, bye")] ^= 1;
    Save();
    const std::string page = Report(4);
    EXPECT_TRUE(Has(page, "class=\"verdict bad\""));
    EXPECT_TRUE(Has(page,
                    "damaged contents: <bdi>\\My Documents\\letter.txt</bdi>, in states: 2 to 3; a "
                    "whole version is in states: 1"));
}

TEST_F(ReportTest, NamesAreText) {
    AddHostileState(pair);
    Save();
    const std::string page = Report();
    EXPECT_FALSE(Has(page, "<img"));
    EXPECT_FALSE(Has(page, "<script"));
    EXPECT_FALSE(Has(page, "</script"));
    EXPECT_TRUE(Has(page, "&lt;/script&gt;&lt;img src=x onerror="));
    EXPECT_TRUE(Has(page, "lone&lt;U+D800&gt;"));
    EXPECT_TRUE(Has(page, "turn&lt;U+202E&gt;fdp.exe"));
}

TEST_F(ReportTest, NothingComesFromAnotherPlace) {
    AddHostileState(pair);
    Save();
    const std::string page = Report();
    EXPECT_TRUE(Has(page, "content=\"default-src 'none'; "));
    for (const char* part : {"<link", "<iframe", "@import", "url(", "<base", "=\"http"}) {
        EXPECT_FALSE(Has(page, part)) << part;
    }
}

TEST_F(ReportTest, AFileIsTheSamePage) {
    EXPECT_EQ(0, Run({"report", "HOME", "-o", In("page.html")}).code);
    EXPECT_EQ(Report(), Read("page.html"));
}

TEST_F(ReportTest, AFileThatIsThereStays) {
    Write("page.html", "mine");
    EXPECT_EQ(1, Run({"report", "HOME", "-o", In("page.html")}).code);
    EXPECT_EQ("mine", Read("page.html"));
}

TEST_F(ReportTest, JsonTellsOfTheFile) {
    const auto told = RunJson({"report", "HOME", "-o", In("page.html")});
    EXPECT_EQ(In("page.html"), told["to"]);
    EXPECT_EQ(3, told["states"]);
    EXPECT_EQ(0, told["damaged"]);
    EXPECT_EQ(2, Run({"report", "HOME", "--json"}).code);
}

// A browser opens some megabytes at once.
TEST_F(ReportTest, AStorageOfManyFilesStaysUsable) {
    AddManyFiles();
    Save();
    const std::string page = Report();
    EXPECT_TRUE(Has(page, "file 19999 (+)"));
    EXPECT_GT(20000u * 100, page.size());
}

}  // namespace
}  // namespace tolvenar::pc
