// Finding and opening the files of a storage.
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

class OpenTest : public ThreeStatesTest {
protected:
    // What `info` says of a name in the case's folder.
    int Open(const std::string& name) const { return Run({"info", In(name)}).code; }
};

TEST_F(OpenTest, EitherFileAndTheCommonNameMeanTheStorage) {
    for (const char* name : {"Home.sav", "Home.jrn", "Home.jrn_1", "Home", "HOME.SAV"}) {
        EXPECT_EQ(0, Open(name)) << name;
    }
}

TEST_F(OpenTest, OnlyAFinalExtensionIsCut) {
    Write("Home.sav.old.sav", pair.sav);
    Write("Home.sav.old.jrn", pair.JournalBytes());
    EXPECT_EQ(0, Open("Home.sav.old"));
    EXPECT_NE(std::string::npos,
              Run({"info", In("Home.sav.old.sav")}).out.find("Home.sav.old.sav"));
}

TEST_F(OpenTest, NamesOfACardMayBeInAnyCase) {
    Write("CARD.SAV", pair.sav);
    Write("card.JRN", pair.JournalBytes());
    EXPECT_EQ(0, Open("Card"));
}

TEST_F(OpenTest, AJournalWithADotBelongsToTheSavThatEndsAtTheFirst) {
    Write("my.sav", pair.sav);
    Write("my.old.jrn", pair.JournalBytes());
    EXPECT_EQ(0, Open("my.old.jrn"));
}

TEST_F(OpenTest, AnAtSignInAFilesNameIsNoState) {
    Write("a@2.sav", pair.sav);
    Write("a@2.jrn", pair.JournalBytes());
    EXPECT_EQ(0, Open("a@2"));
    EXPECT_EQ(0, Run({"ls", In("a@2@3")}).code);
}

TEST_F(OpenTest, TheJournalOfASaveThatWasStoppedIsReadWhereItLies) {
    std::filesystem::rename(In("Home.jrn"), In("Home.jrn_1"));
    const Result result = Run({"info", "HOME"});
    EXPECT_EQ(0, result.code);
    EXPECT_NE(std::string::npos, result.err.find("saving it was stopped"));
    EXPECT_TRUE(std::filesystem::exists(In("Home.jrn_1")));
    EXPECT_FALSE(std::filesystem::exists(In("Home.jrn")));
}

TEST_F(OpenTest, ATemporaryJournalBesideAJournalIsNotLookedAt) {
    Write("Home.jrn_1", "rubbish");
    EXPECT_EQ(0, Open("Home"));
}

TEST_F(OpenTest, ATemporaryJournalWithoutAStateIsNone) {
    std::filesystem::remove(In("Home.jrn"));
    Write("Home.jrn_1", Bytes(32, '\1'));
    EXPECT_EQ(4, Open("Home"));
}

TEST_F(OpenTest, AStorageWithoutItsJournalIsDamaged) {
    std::filesystem::remove(In("Home.jrn"));
    const Result result = Run({"info", "HOME"});
    EXPECT_EQ(4, result.code);
    EXPECT_NE(std::string::npos, result.err.find("Home.jrn"));
    Write("Home.jrn", "");
    EXPECT_EQ(4, Open("Home"));
}

TEST_F(OpenTest, AStorageOfNoBackupHasNoStates) {
    Write("New.sav", Head(u"Handheld", kTime));
    Write("New.jrn", "");
    EXPECT_EQ(0, Open("New"));
    EXPECT_EQ(1, Run({"ls", In("New")}).code);
}

// On Windows, too, where bytes are of the system's own code page.
TEST_F(OpenTest, NamesMayHaveAnyLetters) {
    const std::string folder = In("");
    const auto rename = [&](const char* from, const char* to) {
        std::filesystem::rename(In(from), std::filesystem::u8path(folder + to));
    };
    pair.BeginState();
    pair.AddFile(u"\\\u017Durn\u00E1l \u4E2D.txt", "letters", 0x40);
    Save();
    rename("Home.sav", "Z\u00FCrich \u0416.sav");
    rename("Home.jrn", "Z\u00FCrich \u0416.jrn");
    const std::string home = folder + "Z\u00FCrich \u0416";
    EXPECT_EQ(0, Run({"verify", home}).code);
    EXPECT_EQ(0, Run({"extract", home, "-o", folder + "\u00E9t\u00E9"}).code);
    const auto file = std::filesystem::u8path(folder + "\u00E9t\u00E9/\u017Durn\u00E1l \u4E2D.txt");
    EXPECT_EQ(7u, std::filesystem::file_size(file));
    EXPECT_EQ(0, Run({"export", home, "reg", "-o", folder + "\u00E9t\u00E9/\u0416.reg"}).code);
    EXPECT_EQ(0,
              Run({"trim", home, "--keep-last", "1", "-o", folder + "\u00E9t\u00E9/\u0416"}).code);
    EXPECT_EQ(0, Run({"verify", folder + "\u00E9t\u00E9/\u0416.sav"}).code);
}

TEST_F(OpenTest, WhatIsNoStorageIsToldFromWhatIsNotThere) {
    Write("letter.sav", "Dear Ann");
    Write("letter.jrn", "");
    EXPECT_EQ(5, Open("letter"));
    Write("letter.txt", "Dear Ann");
    EXPECT_EQ(5, Open("letter.txt"));
    EXPECT_EQ(1, Open("nothing"));
}

TEST_F(OpenTest, AnotherFamilyOrANewerRevisionIsNoStorage) {
    for (const auto& [place, number] : {std::pair{212, 2u}, {216, 5u}, {216, 0u}}) {
        Bytes sav = pair.sav;
        Patch(sav, static_cast<std::size_t>(place), number);
        Write("Home.sav", sav);
        EXPECT_EQ(5, Open("Home")) << place;
    }
}

TEST_F(OpenTest, NothingIsWrittenToTheStorageOrItsFolder) {
    std::filesystem::permissions(In("Home.sav"), std::filesystem::perms(0444));
    std::filesystem::permissions(In(""), std::filesystem::perms(0555));
    for (const char* command : {"info", "ls", "verify"}) {
        EXPECT_EQ(0, Run({command, "HOME"}).code) << command;
    }
    std::filesystem::permissions(In(""), std::filesystem::perms(0755));
    std::filesystem::permissions(In("Home.sav"), std::filesystem::perms(0644));
    EXPECT_EQ(pair.sav, Read("Home.sav"));
    EXPECT_EQ(pair.JournalBytes(), Read("Home.jrn"));
}

}  // namespace
}  // namespace tolvenar::pc
