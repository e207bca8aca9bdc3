// Bytes of a pair damaged, and what a mounted storage and a browser then get: the right bytes or
// none.
#include <algorithm>
#include <map>

#include "pc/mount/mounted_tree.h"
#include "pc/serve/site.h"
#include "pc/storage/lifetimes.h"
#include "pc/storage/state_objects.h"
#include "pc/storage/versions.h"
#include "pc/text/failure.h"
#include "tests/pc/pc_test.h"

namespace tolvenar::pc {
namespace {

// A byte in so many: one that is odd meets every place of a record.
constexpr std::size_t kStride = 5;
constexpr char kFlips[] = {0x01, static_cast<char>(0x80), static_cast<char>(0xFF), 0x10, 0x02};

using Given = std::map<std::string, Bytes>;  // by path or page

bool EndsIn(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// What can be proved of contents: no checksum covers the sort orders of a database, nor the ids of
// the journal.
Bytes ProvableIn(const std::string& name, const Bytes& contents) {
    if (EndsIn(name, ".csv")) {
        return contents.substr(std::min(contents.rfind(','), contents.size()));
    }
    if (!EndsIn(name, ".json")) {
        return contents;
    }
    nlohmann::json databases = nlohmann::json::parse(contents, nullptr, false);
    for (nlohmann::json& database : databases) {
        database.erase("sortOrders");
        database.erase("oid");
        for (nlohmann::json& record : database["records"]) {
            record.erase("oid");
        }
    }
    return databases.dump();
}

// A record's file is called by its id.
std::string ProvableName(const std::string& path) {
    return path.find("/Databases/") == path.npos
               ? path
               : path.substr(0, path.rfind('/')) + path.substr(path.rfind('.'));
}

void ReadAll(MountedTree& tree, const std::string& folder, Given& given) {
    std::vector<std::string> names;
    tree.List(folder, names);
    for (const std::string& name : names) {
        const std::string path = (folder == "/" ? "" : folder) + "/" + name;
        FileAttributes attributes;
        EXPECT_EQ(0, tree.Look(path, attributes)) << path;
        if (attributes.is_folder) {
            ReadAll(tree, path, given);
            continue;
        }
        std::unique_ptr<OpenedFile> file;
        Bytes contents;
        if (tree.Open(path, file) == 0 &&
            file->Read(0, static_cast<std::size_t>(attributes.bytes), contents) == 0) {
            given[ProvableName(path)] = ProvableIn(path, contents);
        }
    }
}

void ReadDownload(Site& site, const std::string& page, Given& given) {
    const Reply reply = site.Answer({page, {}});
    if (reply.saved_as.empty()) {
        return;
    }
    Bytes contents = reply.body;
    if (!reply.read || reply.read(0, reply.read_bytes, contents)) {
        given[page] = ProvableIn(page, contents);
    }
}

void ReadDownloads(StoredPair& pair, Given& given) {
    TextOutput nothing;
    Console console{nothing, nothing};
    Site site(pair, GatherReport(pair, console));
    site.Answer({"", {}});
    for (const std::uint16_t state : StatesOf(pair)) {
        const std::string number = std::to_string(state);
        site.Answer({"state-" + number, {}});
        site.Answer({"changes-" + number, {}});
        ReadDownload(site, "registry-" + number + ".reg", given);
        ReadDownload(site, "databases-" + number + ".json", given);
        for (const StoredObject& object : ObjectsOf(pair, state)) {
            const std::string place = number + "-" + std::to_string(object.record.propOffset);
            ReadDownload(site, "file-" + place, given);
            ReadDownload(site, "key-" + place + ".reg", given);
            ReadDownload(site, "database-" + place + ".csv", given);
        }
    }
}

class ShownDamageTest : public ThreeStatesTest {
protected:
    ShownDamageTest() : right_(Shown()) {}

    // Nothing where the journal is damaged: there every command says so.
    Given Shown() const {
        Given given;
        try {
            StoredPair opened(FindPair(In("Home.sav")));
            MountedTree tree(opened);
            ReadAll(tree, "/", given);
            ReadDownloads(opened, given);
            if (!opened.list_is_sound()) {
                given.clear();
            }
        } catch (const Failure&) {
            given.clear();
        }
        return given;
    }
    void Look(const std::string& what) const {
        for (const auto& [name, bytes] : Shown()) {
            const auto found = right_.find(name);
            EXPECT_TRUE(found != right_.end() && found->second == bytes) << what << ": " << name;
        }
        const int verdict = Run({"report", "HOME"}).code;
        EXPECT_TRUE(verdict == 0 || verdict == 1 || verdict == 4 || verdict == 5)
            << what << ": " << verdict;
    }

    const Given right_;
};

TEST_F(ShownDamageTest, AWholePairIsShownWhole) {
    EXPECT_EQ("Dear Ann", right_.at("/State 1/Files/My Documents/letter.txt"));
    EXPECT_EQ(1u, right_.count("registry-2.reg"));
    EXPECT_EQ(1u, right_.count("/State 1/Databases/Contacts Database.json"));
}

TEST_F(ShownDamageTest, BytesOfTheStorageFile) {
    for (std::size_t i = 236; i < pair.sav.size(); i += kStride) {
        Bytes sav = pair.sav;
        sav[i] = static_cast<char>(sav[i] ^ kFlips[i % sizeof kFlips]);
        Write("Home.sav", sav);
        Look("byte " + std::to_string(i) + " of the storage file");
    }
}

TEST_F(ShownDamageTest, BytesOfTheJournal) {
    const Bytes right = pair.JournalBytes();
    for (std::size_t i = 0; i < right.size(); i += kStride) {
        Bytes journal = right;
        journal[i] = static_cast<char>(journal[i] ^ kFlips[i % sizeof kFlips]);
        Write("Home.jrn", journal);
        Look("byte " + std::to_string(i) + " of the journal");
    }
}

TEST_F(ShownDamageTest, LengthsOfTheStorageFile) {
    for (std::size_t i = 0; i < pair.sav.size(); i += 7 * kStride) {
        Write("Home.sav", pair.sav.substr(0, i));
        Look("storage file of " + std::to_string(i));
    }
}

}  // namespace
}  // namespace tolvenar::pc
