// salvage.
#include <algorithm>

#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

class SalvageTest : public ThreeStatesTest {
protected:
    Result Salvage() const {
        for (const char* file : {"New.sav", "New.jrn"}) {
            std::filesystem::remove(In(file));
        }
        return Run({"salvage", "HOME", "-o", In("New")});
    }
    void LoseJournal() const { std::filesystem::remove(In("Home.jrn")); }
    std::string Cat(const std::string& state, const std::string& path) const {
        return Run({"cat", "--raw", In("New") + "@" + state, path}).out;
    }
    std::vector<std::string> Paths(const std::string& state) const {
        std::vector<std::string> paths;
        const nlohmann::json list = RunJson({"ls", In("New") + "@" + state});
        for (const nlohmann::json& object : list["objects"]) {
            paths.push_back(object["path"]);
        }
        return paths;
    }
    // The new pair is as a backup leaves one.
    void ExpectSound() const { EXPECT_EQ(0, Run({"verify", In("New")}).code); }
};

TEST_F(SalvageTest, AllVersionsComeOutOfAStorageFileAlone) {
    LoseJournal();
    const Result result = Salvage();
    EXPECT_EQ(3, result.code) << result.err;
    ExpectSound();
    EXPECT_EQ(3u, RunJson({"info", In("New")})["states"].size());
    EXPECT_EQ("Dear Ann", Cat("1", "/My Documents/letter.txt"));
    EXPECT_EQ("Dear Ann, bye", Cat("2", "/My Documents/letter.txt"));
    EXPECT_EQ(Terminated(u"Courier"), Cat("3", "HKCU\\Software\\Notes\\\\Font"));
    EXPECT_EQ("second", RunJson({"info", In("New")})["states"][1]["description"]);
}

// The storage file tells of no deletion.
TEST_F(SalvageTest, WhatWasDeletedStays) {
    LoseJournal();
    EXPECT_NE(std::string::npos, Salvage().out.find("What was deleted"));
    EXPECT_EQ("milk", Cat("3", "/My Documents/notes.txt"));
    EXPECT_EQ("", Cat("3", "/My Documents/plan.txt"));
    EXPECT_EQ(8u, Paths("3").size());
}

TEST_F(SalvageTest, SurvivingRecordsTellOfDeletions) {
    const nlohmann::json told = RunJson({"salvage", "HOME", "-o", In("New")}, 3);
    ASSERT_EQ(2u, told["deleted"].size());
    EXPECT_EQ("\\My Documents\\notes.txt", told["deleted"][0]["path"]);
    EXPECT_EQ(0, told["unproved"]);
    EXPECT_EQ(3, told["states"][2]["old"]);
}

TEST_F(SalvageTest, TheBlocksAreCopiedByteForByte) {
    LoseJournal();
    Salvage();
    EXPECT_EQ(pair.sav, Read("New.sav"));
}

TEST_F(SalvageTest, AJournalThatSurvivedGivesTheIds) {
    EXPECT_EQ(3, Salvage().code);
    const Bytes journal = Read("New.jrn");
    for (const ObjectRecord& record : pair.Journal()) {
        if ((record.flags & JF_ADD) != 0) {
            EXPECT_NE(Bytes::npos, journal.find(BytesOf(record).substr(0, 20)));
        }
    }
}

TEST_F(SalvageTest, IdsThatAreLostAreUniqueAndOfNoDevice) {
    LoseJournal();
    Salvage();
    std::vector<std::uint32_t> ids;
    const nlohmann::json list = RunJson({"ls", In("New") + "@3"});
    for (const nlohmann::json& object : list["objects"]) {
        if (object.contains("id")) {
            ids.push_back(object["id"]);
        }
    }
    std::sort(ids.begin(), ids.end());
    EXPECT_EQ(6u, ids.size());
    EXPECT_EQ(ids.end(), std::adjacent_find(ids.begin(), ids.end()));
    EXPECT_LT(0xFFFF0000u, ids.front());
}

// The older file is one that is there no longer: the newer one has the id on the device.
TEST_F(SalvageTest, OfTwoObjectsWithOneIdTheNewerKeepsIt) {
    pair = PairBuilder();
    pair.BeginState();
    const ObjectRecord older = pair.AddFile(u"\\a", "old", 0x30);
    pair.BeginState();
    pair.Delete(older);
    pair.AddFile(u"\\b", "new", 0x30);
    Save();
    EXPECT_EQ(3, Salvage().code);
    ExpectSound();
    const nlohmann::json objects = RunJson({"ls", In("New") + "@2"})["objects"];
    ASSERT_EQ(2u, objects.size());
    EXPECT_EQ(0xFFFFFFFEu, objects[0]["id"]);
    EXPECT_EQ(0x30, objects[1]["id"]);
}

TEST_F(SalvageTest, AVersionOfARecordWithItsIdTakesThePlaceOfTheOlder) {
    pair = PairBuilder();
    pair.BeginState();
    const ObjectRecord older = pair.AddRecord(u"Tasks", 1, 0x40);
    pair.BeginState();
    pair.Delete(older);
    pair.AddRecord(u"Tasks", 2, 0x40);
    Save();
    Salvage();
    EXPECT_EQ(1u, Paths("2").size());
    LoseJournal();
    const Result result = Salvage();
    EXPECT_NE(std::string::npos, result.out.find("2 database records have no id"));
    EXPECT_EQ(2u, Paths("2").size());
    ExpectSound();
}

TEST_F(SalvageTest, AnEndedBackupIsMarked) {
    pair.sav += Block(0, 0, kTime + 9 * kHour, 0, kState, u"Title");
    pair.sav += Block(0x20, 0, kTime, 3, kFile, u"\\new.txt") + "abc";
    Save();
    const Result result = Salvage();
    EXPECT_NE(std::string::npos, result.out.find("not in the journal: a backup that was ended"));
    EXPECT_EQ("abc", Cat("4", "\\new.txt"));
    ExpectSound();
}

TEST_F(SalvageTest, BehindADamagedBlockTheNextHeadIsFound) {
    LoseJournal();
    Bytes sav = pair.sav;
    sav[sav.find(Units(u"\\My Documents\\notes.txt")) - 4] ^= 0x40;  // length of the name
    Write("Home.sav", sav);
    const Result result = Salvage();
    EXPECT_EQ(4, result.code);
    EXPECT_NE(std::string::npos, result.out.find("lost: "));
    ExpectSound();
    EXPECT_EQ("Dear Ann", Cat("1", "/My Documents/letter.txt"));
    EXPECT_EQ("Dear Ann, bye", Cat("2", "/My Documents/letter.txt"));
    EXPECT_EQ(7u, Paths("3").size());
}

TEST_F(SalvageTest, AnObjectThatIsStoredTwiceTellsOfALostState) {
    LoseJournal();
    Bytes sav = pair.sav;
    sav[sav.find(Units(u"Title"), sav.find(Units(u"Title")) + 1)] = 'L';
    Write("Home.sav", sav);
    EXPECT_EQ(4, Salvage().code);
    ExpectSound();
    EXPECT_EQ("Dear Ann", Cat("1", "/My Documents/letter.txt"));
    EXPECT_EQ("Dear Ann, bye", Cat("2", "/My Documents/letter.txt"));
    EXPECT_EQ("Salvaged: the block of the state itself is lost.",
              RunJson({"info", In("New")})["states"][1]["description"]);
}

// A copy of a storage is a file like any other.
TEST_F(SalvageTest, AStorageInsideAFileIsNotLookedInto) {
    const Bytes copy = pair.sav;
    pair.BeginState();
    pair.AddFile(u"\\copy.sav", copy, 0x50);
    pair.AddFile(u"\\last.txt", "end", 0x51);
    Save();
    LoseJournal();
    EXPECT_EQ(3, Salvage().code);
    EXPECT_EQ(4u, RunJson({"info", In("New")})["states"].size());
    EXPECT_EQ("end", Cat("4", "\\last.txt"));
}

// Its length leads into the next block, which a record proves.
TEST_F(SalvageTest, AnUnprovedBlockGivesWayToAProvedOne) {
    Bytes sav = pair.sav;
    const std::size_t name = sav.find(Units(u"\\My Documents\\letter.txt"));
    Patch(sav, name - 10, std::uint32_t{20});  // bytes of its data
    Write("Home.sav", sav);
    EXPECT_EQ(4, Salvage().code);
    ExpectSound();
    EXPECT_EQ("milk", Cat("1", "/My Documents/notes.txt"));
    EXPECT_EQ("Dear Ann, bye", Cat("2", "/My Documents/letter.txt"));
}

TEST_F(SalvageTest, ContentsThatARecordDisprovesAreLeftOut) {
    Bytes sav = pair.sav;
    sav[sav.find("milk")] ^= 1;
    Write("Home.sav", sav);
    const nlohmann::json told = RunJson({"salvage", "HOME", "-o", In("New")}, 4);
    ASSERT_EQ(1u, told["damaged"].size());
    EXPECT_EQ("\\My Documents\\notes.txt", told["damaged"][0]["path"]);
    EXPECT_EQ("", Cat("3", "/My Documents/notes.txt"));
    ExpectSound();
}

TEST_F(SalvageTest, ANameThatARecordDisprovesIsLeftOut) {
    Bytes sav = pair.sav;
    sav[sav.find(Units(u"notes.txt"))] ^= 1;
    Write("Home.sav", sav);
    EXPECT_EQ(4, Salvage().code);
    EXPECT_EQ(7u, Paths("3").size());
}

TEST_F(SalvageTest, ADamagedLengthOfTheDescriptionHidesNoBlock) {
    LoseJournal();
    Bytes sav = pair.sav;
    Patch(sav, 228, std::uint32_t{300});
    Write("Home.sav", sav);
    const Result result = Salvage();
    EXPECT_EQ(4, result.code);
    EXPECT_NE(std::string::npos, result.out.find("lost: the description"));
    EXPECT_EQ(3u, RunJson({"info", In("New")})["states"].size());
    EXPECT_EQ("Dear Ann", Cat("1", "/My Documents/letter.txt"));
    ExpectSound();
}

TEST_F(SalvageTest, ARecordThatLeadsToNoBlockTellsOfALoss) {
    const std::size_t last = pair.sav.find(Units(u"\\My Documents\\plan.txt")) - 26;
    Write("Home.sav", pair.sav.substr(0, last));
    const Result result = Salvage();
    EXPECT_EQ(4, result.code);
    EXPECT_NE(std::string::npos, result.out.find("lost: 1 blocks"));
}

TEST_F(SalvageTest, OneStateWithoutDamageIsWhole) {
    pair = PairBuilder();
    pair.BeginState();
    pair.AddFile(u"\\a", "all", 0x30);
    Save();
    LoseJournal();
    EXPECT_EQ(0, Salvage().code);
    EXPECT_EQ("all", Cat("1", "\\a"));
}

TEST_F(SalvageTest, NothingIsWrittenOverOrWithoutNeed) {
    Write("New.jrn", "mine");
    EXPECT_EQ(1, Run({"salvage", "HOME", "-o", In("New")}).code);
    EXPECT_EQ("mine", Read("New.jrn"));
    EXPECT_EQ(3, Run({"salvage", "HOME", "-o", In("Dry"), "--dry-run"}).code);
    EXPECT_FALSE(std::filesystem::exists(In("Dry.sav")));
    EXPECT_FALSE(std::filesystem::exists(In("New.sav")));
}

TEST_F(SalvageTest, WhatIsNoStorageGivesNothing) {
    Write("Home.sav", Bytes(300, 'x'));
    EXPECT_EQ(5, Salvage().code);
    Write("Home.sav", pair.sav.substr(0, 236));
    EXPECT_EQ(4, Salvage().code);
}

}  // namespace
}  // namespace tolvenar::pc
