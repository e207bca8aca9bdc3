// Small registries whose objects share checksums, backed up and restored on plain lists: every
// state is what the device was, and every restore brings it back.
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>
#include <tuple>

#include "snapshot/compare/difference.h"
#include "snapshot/compare/kept_objects.h"
#include "snapshot/compare/state_identifiers.h"
#include "snapshot/records/checksum.h"
#include "tests/support/fake_info_source.h"
#include "tests/support/records.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kHives[] = {0x80000001, 0x80000002};

// What makes an object: type, hive, key path and, of a value, its name.
struct Name {
    ObjectType type;
    std::uint32_t hive;
    std::u16string key_path;
    std::u16string value_name;

    std::u16string Joined() const {
        return type == kKey ? key_path : key_path + kNameSeparator + value_name;
    }
    auto Parts() const { return std::make_tuple(type, hive, Joined()); }
    bool operator<(const Name& other) const { return Parts() < other.Parts(); }
    bool operator==(const Name& other) const { return Parts() == other.Parts(); }
};

struct Contents {
    std::uint32_t type;
    std::string data;
    bool operator==(const Contents& other) const {
        return type == other.type && data == other.data;
    }
};

using Registry = std::map<Name, Contents>;

std::uint16_t ChecksumOf(const std::u16string& text) {
    return Checksum16(text.data(), text.size() * sizeof(char16_t));
}

// Texts of four units that have one checksum, so that whatever they stand in has one, too.
std::vector<std::u16string> CollidingTexts(std::size_t count) {
    std::map<std::uint16_t, std::vector<std::u16string>> by_checksum;
    for (std::uint32_t i = 0;; ++i) {
        std::u16string text = u"aaaa";
        for (std::uint32_t rest = i, at = 0; at < text.size(); ++at, rest /= 26) {
            text[at] = static_cast<char16_t>(u'a' + rest % 26);
        }
        std::vector<std::u16string>& colliding = by_checksum[ChecksumOf(text)];
        colliding.push_back(text);
        if (colliding.size() == count) {
            return colliding;
        }
    }
}

// Data of three bytes whose checksums differ and have one low byte.
std::vector<std::string> CollidingData(std::uint8_t low_byte) {
    std::map<std::uint16_t, std::string> by_checksum;
    for (int i = 0; by_checksum.size() < 3; ++i) {
        const std::string data = {static_cast<char>(i), static_cast<char>(i >> 8),
                                  static_cast<char>(i >> 16)};
        const std::uint16_t checksum = Checksum16(data.data(), data.size());
        if ((checksum & 0xFF) == low_byte) {
            by_checksum.emplace(checksum, data);
        }
    }
    std::vector<std::string> chosen;
    for (const auto& [checksum, data] : by_checksum) {
        chosen.push_back(data);
    }
    return chosen;
}

// A device, its states on plain lists, and the model that they are held against.
class CollidingRegistry {
public:
    explicit CollidingRegistry(unsigned seed) : random_(seed) {}

    std::uint32_t Below(std::size_t limit) { return static_cast<std::uint32_t>(random_() % limit); }

    void Backup(const Registry& device) {
        const auto last = static_cast<std::uint16_t>(states_.size());
        const auto diff = DifferencesTo(last, device);
        states_.push_back(device);
        for (KeyedRecord entry : Walk(*diff)) {
            ObjectRecord& record = entry.record;
            if (record.flags & JF_ADD) {
                Store(record);
            }
            record.state_number = static_cast<std::uint16_t>(last + 1);
            const std::size_t before = journal_->CountRecords();
            ASSERT_TRUE(journal_->AddObject(record));
            ASSERT_EQ(before + 1, journal_->CountRecords()) << "a record of the state was replaced";
        }
        if (Below(2) != 0) {
            Reload();
        }
    }
    // What a replay of every state holds.
    void ExpectStates() {
        for (std::uint16_t state = 1; state <= states_.size(); ++state) {
            Registry held;
            for (const ObjectRecord& record : RecordsOf(*StateList(state))) {
                const bool is_new =
                    held.emplace(names_[record.propOffset], contents_[record.propOffset]).second;
                EXPECT_TRUE(is_new) << "twice in state " << state;
            }
            EXPECT_TRUE(states_[state - 1u] == held) << "state " << state;
        }
    }
    void ExpectNoDifference(const Registry& device) {
        const auto last = static_cast<std::uint16_t>(states_.size());
        EXPECT_EQ(0u, DifferencesTo(last, device)->CountRecords());
    }
    // A restore of every state onto the device.
    void ExpectRestores(const Registry& device) {
        for (std::uint16_t state = 1; state <= states_.size(); ++state) {
            const auto diff = DifferencesTo(state, device);
            ASSERT_TRUE(KeepStoredObjects(*diff, info_));
            EXPECT_TRUE(states_[state - 1u] == Restored(device, *diff, JF_ADD, JF_DELETE)) << state;
        }
    }
    // The changes between every two states, applied and taken back.
    void ExpectChanges() {
        for (std::uint16_t older = 1; older <= states_.size(); ++older) {
            for (std::uint16_t newer = 1; newer <= states_.size(); ++newer) {
                const Registry& from = states_[older - 1u];
                const Registry& to = states_[newer - 1u];
                const auto diff = ObjectList::CreateList();
                ASSERT_TRUE(
                    FindChanges(StateList(older).get(), StateList(newer).get(), *diff, info_));
                EXPECT_TRUE(to == Restored(from, *diff, JF_DELETE, JF_ADD)) << older << newer;
                EXPECT_TRUE(from == Restored(to, *diff, JF_ADD, JF_DELETE)) << older << newer;
            }
        }
    }

private:
    std::unique_ptr<ObjectList> StateList(std::uint16_t state) {
        auto list = ObjectList::CreateList();
        EXPECT_TRUE(BuildStateList(*list, *journal_, state, info_));
        return list;
    }
    std::unique_ptr<ObjectList> DifferencesTo(std::uint16_t state, const Registry& device) {
        const auto older = StateList(state);
        const auto newer = Scan(device, *older);
        auto diff = ObjectList::CreateList();
        EXPECT_TRUE(FindChanges(older.get(), newer.get(), *diff, info_));
        return diff;
    }
    std::unique_ptr<ObjectList> Scan(const Registry& device, const ObjectList& older) {
        auto list = ObjectList::CreateList();
        StateIdentifiers holders(info_);
        EXPECT_TRUE(holders.Build(older));
        table_.RegObjectClear();
        info_.live.clear();
        std::vector<std::pair<Name, Contents>> objects(device.begin(), device.end());
        std::shuffle(objects.begin(), objects.end(), random_);
        for (const auto& [name, contents] : objects) {
            EXPECT_TRUE(list->AddObject(ScanOne(name, contents, holders)));
        }
        return list;
    }
    ObjectRecord ScanOne(const Name& name, const Contents& contents, IdentifierHolders& holders) {
        const bool is_key = name.type == kKey;
        const std::u16string full_name =
            (name.hive == kHives[0] ? u"80000001" : u"80000002") + name.Joined();
        const RegistryEntry entry{is_key,
                                  name.hive,
                                  name.key_path.c_str(),
                                  is_key ? nullptr : name.value_name.c_str(),
                                  contents.type,
                                  contents.data.data(),
                                  static_cast<std::uint32_t>(contents.data.size())};
        std::uint32_t TolvOID = 0;
        EXPECT_TRUE(table_.Generate(full_name.c_str(), entry, TolvOID, &holders));
        info_.live[{TolvOID, 0}] = {name.Joined(), name.type, name.hive};
        live_[TolvOID] = {name, contents};

        InfoBlock block;
        EXPECT_TRUE(info_.GetOIDInfo(TolvOID, 0, block));
        block.head().value_type = contents.type;
        block.head().data_bytes = entry.data_bytes;
        return MakeRecord(
            name.type, 0, TolvOID, Checksum16(block.bytes(), block.size()),
            is_key ? std::uint16_t{0xFFFF} : Checksum16(entry.data, entry.data_bytes));
    }
    void Store(ObjectRecord& record) {
        record.propOffset = next_offset_;
        record.data_offset = next_offset_ + 500;
        next_offset_ += 1000;
        info_.stored[record.propOffset] = info_.live[{record.TolvOID, 0}];
        names_[record.propOffset] = live_[record.TolvOID].first;
        contents_[record.propOffset] = live_[record.TolvOID].second;
    }
    // As saving and loading do: the order of the records is reversed.
    void Reload() {
        auto loaded = ObjectList::CreateList();
        for (const ObjectRecord& record : RecordsOf(*journal_)) {
            EXPECT_TRUE(loaded->AddObject(record));
        }
        journal_ = std::move(loaded);
    }
    // Deletions first; what is not there to be deleted is a mistake.
    Registry Restored(Registry device, const ObjectList& diff, std::uint16_t deleting,
                      std::uint16_t writing) {
        for (const ObjectRecord& record : RecordsOf(diff)) {
            if (record.flags & deleting) {
                EXPECT_EQ(1u, device.erase(record.propOffset != 0 ? names_[record.propOffset]
                                                                  : live_[record.TolvOID].first));
            }
        }
        for (const ObjectRecord& record : RecordsOf(diff)) {
            if (record.flags & writing) {
                device[names_[record.propOffset]] = contents_[record.propOffset];
            }
        }
        return device;
    }

    std::mt19937 random_;
    FakeInfoSource info_;
    RegistryObjects table_;
    std::map<std::uint32_t, std::pair<Name, Contents>> live_;  // by TolvOID
    std::map<std::uint32_t, Name> names_;                      // by offset
    std::map<std::uint32_t, Contents> contents_;
    std::uint32_t next_offset_ = 1000;
    std::unique_ptr<ObjectList> journal_ = ObjectList::CreateList();
    std::vector<Registry> states_;
};

class CollidingRegistryTest : public testing::Test {
protected:
    static const std::vector<std::u16string>& Texts() {
        static const std::vector<std::u16string> texts = CollidingTexts(3);
        return texts;
    }
    static Name KeyName(std::size_t i, std::uint32_t hive = kHives[0]) {
        return {kKey, hive, u"Software\\" + Texts()[i], u""};
    }
    static Name ValueName(std::size_t i, std::uint32_t hive = kHives[0]) {
        return {kValue, hive, u"Software", Texts()[i]};
    }
    // Every object that a registry of a series is made of, with the contents that it may have.
    static std::vector<std::pair<Name, std::vector<Contents>>> Pool() {
        std::vector<std::pair<Name, std::vector<Contents>>> pool;
        // The name of a key and of a value below another key may be one; so may their identifiers.
        const Name key{kKey, kHives[0], u"Software\u00FF" + Texts()[0], u""};
        const auto low_byte = static_cast<std::uint8_t>(ChecksumOf(key.key_path));
        std::vector<Contents> contents;
        for (const std::string& data : CollidingData(low_byte)) {
            contents.push_back({3, data});
        }
        contents.push_back({1, contents[0].data});
        pool.push_back({key, {{0, ""}}});
        for (std::size_t i = 0; i < Texts().size(); ++i) {
            for (const std::uint32_t hive : kHives) {
                pool.push_back({KeyName(i, hive), {{0, ""}}});
                pool.push_back({ValueName(i, hive), contents});
            }
        }
        return pool;
    }
};

TEST_F(CollidingRegistryTest, TheTextsAndDataOfTheSeriesDoCollide) {
    const std::u16string one = u"80000001Software\\" + Texts()[0];
    const std::u16string two = u"80000001Software\\" + Texts()[1];
    EXPECT_NE(one, two);
    EXPECT_EQ(MakeTolvOID(one.c_str(), one.data(), 34, 0),
              MakeTolvOID(two.c_str(), two.data(), 34, 0));
    const std::vector<std::string> data = CollidingData(7);
    EXPECT_NE(Checksum16(data[0].data(), 3), Checksum16(data[1].data(), 3));
    EXPECT_EQ(7, Checksum16(data[0].data(), 3) & 0xFF);
    EXPECT_EQ(7, Checksum16(data[1].data(), 3) & 0xFF);
}

// Every order in which two objects come and go over three states.
TEST_F(CollidingRegistryTest, TwoObjectsComeAndGoInEveryOrder) {
    const Name pairs[][2] = {
        {KeyName(0), KeyName(1)},
        {ValueName(0), ValueName(1)},
        {{kKey, kHives[0], u"Software\u00FF" + Texts()[0], u""}, ValueName(0)}};
    for (const auto& pair : pairs) {
        for (unsigned order = 0; order < 4 * 4 * 4; ++order) {
            SCOPED_TRACE(order);
            CollidingRegistry series(order);
            Registry device;
            for (unsigned state = 0; state < 3; ++state) {
                const unsigned present = order >> (2 * state) & 3;
                device.clear();
                for (unsigned i = 0; i < 2; ++i) {
                    if (present >> i & 1) {
                        device[pair[i]] = {0, ""};
                    }
                }
                series.Backup(device);
            }
            series.ExpectStates();
            series.ExpectRestores(device);
            series.ExpectChanges();
            series.ExpectNoDifference(device);
        }
    }
}

TEST_F(CollidingRegistryTest, RandomRegistriesAreWhatTheyWereInEveryState) {
    const auto pool = Pool();
    for (unsigned seed = 1; seed <= 120; ++seed) {
        SCOPED_TRACE(seed);
        CollidingRegistry series(seed);
        Registry device;
        for (int state = 0; state < 4; ++state) {
            for (const auto& [name, contents] : pool) {
                if (series.Below(3) == 0) {
                    device.erase(name);
                } else if (series.Below(2) == 0) {
                    device[name] = contents[series.Below(contents.size())];
                }
            }
            series.ExpectRestores(device);
            series.Backup(device);
            series.ExpectNoDifference(device);
        }
        series.ExpectStates();
        series.ExpectChanges();
    }
}

}  // namespace
}  // namespace tolvenar
