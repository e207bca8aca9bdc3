// Every byte of a pair damaged, and every length of its files: no command ends in a crash, gives a
// wrong byte as right, or says that all is well when it is not.
#include <map>
#include <set>

#include "pc/storage/lifetimes.h"
#include "pc/storage/object_data.h"
#include "pc/storage/state_objects.h"
#include "pc/text/failure.h"
#include "pc/text/utf.h"
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

// The damage of byte `i` is one of these, chosen by it.
constexpr char kFlips[] = {0x01, static_cast<char>(0x80), static_cast<char>(0xFF), 0x10, 0x02};

// The contents of the objects of each state by their names.
using Contents = std::map<std::string, Bytes>;
using States = std::map<int, Contents>;

// The id of a record is in the journal alone, of a record's number some bytes mean nothing, and of
// a database's data no checksum is kept: nothing could prove them.
std::string NameOf(const StoredObject& object) {
    return object.type() == ObjectType::kDatabaseRecord ? ToUtf8(object.name) + "#"
                                                        : ToUtf8(PathOf(object));
}
Bytes MeantBytes(StoredPair& pair, const StoredObject& object) {
    if (object.type() == ObjectType::kDatabase) {
        return {};
    }
    const std::vector<std::uint8_t> data = ReadData(pair, object);
    const Bytes bytes(data.begin(), data.end());
    return object.type() == ObjectType::kDatabaseRecord ? bytes.substr(0, 4) + bytes.substr(6, 6)
                                                        : bytes;
}

class PcDamageTest : public ThreeStatesTest {
protected:
    PcDamageTest() : journal_(pair.JournalBytes()), right_(Given()) {}

    // What is given as right: nothing at all from a damaged journal.
    States Given(const std::string& storage = "Home.sav") const {
        States given;
        try {
            StoredPair opened(FindPair(In(storage)));
            if (!opened.list_is_sound()) {
                return {};
            }
            for (const std::uint16_t state : StatesOf(opened)) {
                for (const StoredObject& object : ObjectsOf(opened, state)) {
                    if (DataAreSound(opened, object)) {
                        given[state][NameOf(object)] = MeantBytes(opened, object);
                    }
                }
            }
        } catch (const Failure&) {
            return {};
        }
        return given;
    }
    // Holds what is given against what is right, and has one of the other commands run.
    void Look(std::size_t number, const std::string& what) const {
        const States given = Given();
        for (const auto& [state, contents] : given) {
            for (const auto& [name, bytes] : contents) {
                const auto& right = right_.at(state);
                const auto found = right.find(name);
                EXPECT_TRUE(found != right.end() && found->second == bytes)
                    << what << ", state " << state << ", " << name;
            }
        }
        const int verdict = Run({"verify", "HOME"}).code;
        EXPECT_TRUE(verdict == 4 || verdict == 5 || given == right_) << what << ": " << verdict;
        RunAnother(number);
    }
    // A salvage gives nothing that no state ever held: one of both files is whole.
    void Salvage(const std::string& what) const {
        std::set<std::pair<std::string, Bytes>> versions;
        for (const auto& [state, contents] : right_) {
            versions.insert(contents.begin(), contents.end());
        }
        const int verdict = Run({"salvage", "HOME", "-o", In("New")}).code;
        EXPECT_TRUE(verdict == 3 || verdict == 4 || verdict == 5) << what << ": " << verdict;
        const States given = verdict == 5 ? States() : Given("New.sav");
        EXPECT_TRUE(verdict != 3 || given.size() == 3) << what;
        for (const auto& [state, contents] : given) {
            for (const auto& [name, bytes] : contents) {
                EXPECT_EQ(1u, versions.count({name, bytes})) << what << ", " << name;
            }
        }
        std::filesystem::remove(In("New.sav"));
        std::filesystem::remove(In("New.jrn"));
    }
    void RunAnother(std::size_t number) const {
        const std::vector<std::vector<std::string>> commands = {
            {"info", "HOME"},
            {"ls", "HOME@2", "-l"},
            {"find", "HOME", "*"},
            {"cat", "HOME@2", "/My Documents/letter.txt"},
            {"extract", "HOME@2", "--dry-run"},
            {"diff", "HOME", "1", "3", "--contents"},
            {"diff", "HOME", "0", "2"},
            {"export", "HOME@1", "json"},
            {"export", "HOME@1", "csv"},
            {"export", "HOME@1", "vcard4"},
            {"export", "HOME@1", "ical"},
            {"export", "HOME@2", "tar"},
            {"export", "HOME@2", "profile", "--ids", "-o", In("profile " + std::to_string(number))},
        };
        if (number % 4 == 0) {
            LookAtRegistry(number, number % 8 == 0 ? "reg" : "reg4");
        } else {
            Run(commands[number % commands.size()]);
        }
    }
    // Every byte of it can be proved, unlike ids and sort orders in other forms.
    void LookAtRegistry(std::size_t number, const std::string& form) const {
        const Result result = Run({"export", "HOME@2", form});
        EXPECT_TRUE(result.code == 1 || result.code == 4 || result.code == 5 ||
                    (result.code == 0 && result.out == registry_.at(form)))
            << form << " of " << number << ": " << result.code;
    }

    const Bytes journal_;
    const States right_;
    const std::map<std::string, Bytes> registry_ = {
        {"reg", Run({"export", "HOME@2", "reg"}).out},
        {"reg4", Run({"export", "HOME@2", "reg4"}).out}};
};

TEST_F(PcDamageTest, AnyByteOfTheJournal) {
    for (std::size_t i = 0; i < journal_.size(); ++i) {
        Bytes journal = journal_;
        journal[i] = static_cast<char>(journal[i] ^ kFlips[i % sizeof kFlips]);
        Write("Home.jrn", journal);
        Look(i, "byte " + std::to_string(i) + " of the journal");
        Salvage("byte " + std::to_string(i) + " of the journal");
    }
}

// A deletion that is lost as a whole leaves no trace in either file.
TEST_F(PcDamageTest, AnyLengthOfTheJournal) {
    const std::vector<ObjectRecord> records = pair.Journal();
    for (std::size_t i = 0; i < journal_.size(); i += i % 32 == 0 ? 1 : 5) {
        bool loses_a_version = i % 32 != 0;
        for (std::size_t lost = i / 32; lost < records.size(); ++lost) {
            loses_a_version = loses_a_version || records[lost].flags == JF_ADD;
        }
        Write("Home.jrn", journal_.substr(0, i));
        if (loses_a_version) {
            Look(i, "journal of " + std::to_string(i));
        } else {
            RunAnother(i);
        }
    }
}

// The objects of a state whose own record is lost are objects of no listed state.
TEST_F(PcDamageTest, AJournalWithoutAnyState) {
    Bytes journal;
    for (const ObjectRecord& record : pair.Journal()) {
        journal += record.type == kState ? "" : BytesOf(record);
    }
    Write("Home.jrn", journal);
    EXPECT_EQ(4, Run({"find", "HOME", "*"}).code);
    EXPECT_EQ(4, Run({"verify", "HOME"}).code);
    EXPECT_EQ(1, Run({"ls", "HOME"}).code);
}

TEST_F(PcDamageTest, AnyByteOfTheStorageFile) {
    for (std::size_t i = 236; i < pair.sav.size(); ++i) {
        Bytes sav = pair.sav;
        sav[i] = static_cast<char>(sav[i] ^ kFlips[i % sizeof kFlips]);
        Write("Home.sav", sav);
        Look(i, "byte " + std::to_string(i) + " of the storage file");
        Salvage("byte " + std::to_string(i) + " of the storage file");
    }
}

TEST_F(PcDamageTest, AnyLengthOfTheStorageFile) {
    for (std::size_t i = 0; i < pair.sav.size(); i += 3) {
        Write("Home.sav", pair.sav.substr(0, i));
        Look(i, "storage file of " + std::to_string(i));
        Salvage("storage file of " + std::to_string(i));
        EXPECT_EQ(i < 236 ? 5 : 4, Run({"info", "HOME"}).code) << i;
    }
}

}  // namespace
}  // namespace tolvenar::pc
