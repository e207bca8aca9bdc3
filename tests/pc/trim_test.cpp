// trim.
#include "pc/storage/stored_pair.h"
#include "snapshot/compare/states.h"
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

class TrimTest : public ThreeStatesTest {
protected:
    Result Trim(std::vector<std::string> more) const {
        std::vector<std::string> arguments = {"trim", "HOME", "-o", In("New.sav")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Run(arguments);
    }
    // A state as every command that tells it sees it, but for who stored what.
    std::string Look(const std::string& storage, const std::string& state) const {
        const std::string address = In(storage) + "@" + state;
        nlohmann::json objects =
            nlohmann::json::parse(Run({"ls", address, "--json"}).out)["objects"];
        for (nlohmann::json& object : objects) {
            object.erase("stored_by");
            const std::string kind = object["kind"];
            if (kind == "file" || kind == "value" || kind == "record") {
                object["data"] = Run({"cat", "--raw", address, object["path"]}).out;
            }
        }
        return objects.dump(1, ' ', false, nlohmann::json::error_handler_t::replace);
    }
    // The new pair has no finding, and its states are the old ones of these numbers.
    void ExpectStates(const std::vector<std::string>& old) const {
        EXPECT_EQ(0, Run({"verify", In("New")}).code) << Run({"verify", In("New")}).out;
        EXPECT_EQ(old.size(), RunJson({"info", In("New")})["states"].size());
        for (std::size_t i = 0; i < old.size(); ++i) {
            EXPECT_EQ(Look("Home.sav", old[i]), Look("New.sav", std::to_string(i + 1)));
        }
    }
    // The record of the object's newest addition, and what the records of the last state are.
    static std::vector<ObjectRecord> LastState(const StoredPair& opened, StoredPair& pair_of) {
        std::vector<ObjectRecord> records;
        const auto list =
            pair_of.BuildState(static_cast<std::uint16_t>(LastStoredState(&opened.journal())));
        for (const ObjectList::Node& node : *list) {
            ObjectRecord record = *node.record;
            record.propOffset = record.data_offset = 0;
            record.state_number = 0;
            records.push_back(record);
        }
        std::sort(records.begin(), records.end(),
                  [](const auto& a, const auto& b) { return BytesOf(a) < BytesOf(b); });
        return records;
    }
};

TEST_F(TrimTest, KeepsTheStatesThatAreSaid) {
    const Result result = Trim({"--keep", "1,3"});
    EXPECT_EQ(0, result.code) << result.err;
    EXPECT_NE(std::string::npos, result.out.find("state 3 is state 2 now"));
    ExpectStates({"1", "3"});
}

TEST_F(TrimTest, AnyChoiceOfStatesHoldsWhatTheyHeld) {
    for (const std::vector<std::string>& kept : std::vector<std::vector<std::string>>{
             {"1"}, {"2"}, {"3"}, {"1", "2"}, {"2", "3"}, {"1", "2", "3"}}) {
        std::string list;
        for (const std::string& state : kept) {
            list += (list.empty() ? "" : ",") + state;
        }
        EXPECT_EQ(0, Trim({"--keep", list}).code) << list;
        ExpectStates(kept);
        std::filesystem::remove(In("New.sav"));
        std::filesystem::remove(In("New.jrn"));
    }
}

TEST_F(TrimTest, AllStatesGiveTheSameStorageFile) {
    EXPECT_EQ(0, Trim({"--keep-last", "3"}).code);
    EXPECT_EQ(pair.sav, Read("New.sav"));
}

TEST_F(TrimTest, WhatNoKeptStateHoldsIsGone) {
    EXPECT_EQ(0, Trim({"--keep-last", "1"}).code);
    EXPECT_EQ(Bytes::npos, Read("New.sav").find("milk"));
    EXPECT_LT(Read("New.sav").size(), pair.sav.size());
}

TEST_F(TrimTest, TheLastStateKeepsIdsAndChecksumsForTheNextBackup) {
    EXPECT_EQ(0, Trim({"--keep", "1,3"}).code);
    StoredPair old_pair(FindPair(In("Home.sav")));
    StoredPair new_pair(FindPair(In("New.sav")));
    const auto before = LastState(old_pair, old_pair);
    const auto after = LastState(new_pair, new_pair);
    ASSERT_EQ(before.size(), after.size());
    for (std::size_t i = 0; i < before.size(); ++i) {
        EXPECT_EQ(BytesOf(before[i]), BytesOf(after[i]));
    }
}

// Only its contents changed: key and id stay, so a deletion would take the new version away.
TEST_F(TrimTest, AFileOfWhichOnlyTheContentsChangedIsAnAdditionAlone) {
    pair = PairBuilder();
    pair.BeginState();
    pair.AddFile(u"\\a", "old", 0x30);
    pair.BeginState();
    pair.AddFile(u"\\a", "new", 0x30);
    Save();
    EXPECT_EQ(0, Trim({"--keep", "1,2"}).code);
    ExpectStates({"1", "2"});
    EXPECT_EQ(4u * 32, Read("New.jrn").size());
}

TEST_F(TrimTest, AnObjectThatComesBackIsStoredAgain) {
    pair = PairBuilder();
    pair.BeginState();
    const ObjectRecord first = pair.AddFile(u"\\a", "same", 0x30);
    pair.BeginState();
    pair.Delete(first);
    pair.BeginState();
    pair.AddFile(u"\\a", "same", 0x31);
    Save();
    EXPECT_EQ(0, Trim({"--keep", "1,3"}).code);
    ExpectStates({"1", "3"});
}

TEST_F(TrimTest, DaysAndMonthsKeepTheirLastStates) {
    pair.time += 24 * kHour;  // 17 November
    pair.BeginState(Terminated(u"fourth"));
    pair.time += 20 * 24 * kHour;  // 7 December
    pair.BeginState(Terminated(u"fifth"));
    Save();
    const auto kept = [this](const std::string& rule, const std::string& count) {
        std::vector<int> numbers;
        const nlohmann::json told =
            RunJson({"trim", "HOME", "-o", In("New"), "--dry-run", rule, count});
        for (const nlohmann::json& state : told["states"]) {
            numbers.push_back(state["old"]);
        }
        return numbers;
    };
    EXPECT_EQ((std::vector<int>{3, 4, 5}), kept("--keep-daily", "9"));
    EXPECT_EQ((std::vector<int>{4, 5}), kept("--keep-daily", "2"));
    EXPECT_EQ((std::vector<int>{4, 5}), kept("--keep-monthly", "3"));
    EXPECT_EQ((std::vector<int>{5}), kept("--keep-last", "1"));
    EXPECT_FALSE(std::filesystem::exists(In("New.sav")));
}

TEST_F(TrimTest, UnreferencedBytesStayBehind) {
    const Bytes sound = pair.sav;
    pair.sav += Block(0, 0, kTime, 0, kState, u"Title");
    Save();
    EXPECT_EQ(0, Trim({"--keep-last", "3"}).code);
    EXPECT_EQ(sound, Read("New.sav"));
}

TEST_F(TrimTest, DamageIsNotCopied) {
    pair.sav[pair.sav.find(Units(u"plan.txt"))] ^= 1;
    Save();
    EXPECT_EQ(4, Trim({"--keep", "3"}).code);
    EXPECT_FALSE(std::filesystem::exists(In("New.sav")));
    // The other states have nothing of it.
    EXPECT_EQ(0, Trim({"--keep", "1,2"}).code);
    ExpectStates({"1", "2"});
}

TEST_F(TrimTest, NothingThatIsThereIsReplaced) {
    Write("New.jrn", "mine");
    EXPECT_EQ(1, Trim({"--keep", "1"}).code);
    EXPECT_EQ("mine", Read("New.jrn"));
    EXPECT_FALSE(std::filesystem::exists(In("New.sav")));
}

TEST_F(TrimTest, SayingNothingToKeepIsWrongUsage) {
    EXPECT_EQ(2, Trim({}).code);
    EXPECT_EQ(1, Trim({"--keep", "9"}).code);
}

}  // namespace
}  // namespace tolvenar::pc
