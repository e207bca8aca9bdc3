// Random journals of a small device whose ids are given out again: whatever a restore enters as new
// ids, every state holds the objects that it held before.
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>

#include "snapshot/compare/difference.h"
#include "snapshot/compare/journal_update.h"
#include "tests/support/fake_info_source.h"
#include "tests/support/records.h"

namespace tolvenar {
namespace {

constexpr std::uint16_t kStates = 4;
constexpr std::uint32_t kIds = 12;  // so few that most are given out twice

class JournalSeries {
public:
    explicit JournalSeries(unsigned seed) : random_(seed) {
        for (std::uint16_t state = 1; state <= kStates; ++state) {
            ChangeDevice(state);
        }
    }

    // A restore of a random state to a device that has some of its objects, with random new ids for
    // the others.
    void Restore() {
        const auto state = static_cast<std::uint16_t>(1 + Below(kStates));
        const auto states = States();
        const auto list = StateList(state);
        std::set<std::uint32_t> taken;
        std::vector<ObjectRecord> restored;
        for (const ObjectRecord& record : RecordsOf(*list)) {
            if (Below(3) == 0) {
                taken.insert(record.dwOID);
            } else {
                restored.push_back(record);
            }
        }
        std::map<std::uint32_t, std::uint32_t> new_ids;  // by offset
        JournalUpdater updater(journal_.get());
        for (const ObjectRecord& record : restored) {
            std::uint32_t id = 1 + Below(kIds);
            while (!taken.insert(id).second) {
                ++id;
            }
            updater.UpdateJournalOid(record, id);
            new_ids[record.propOffset] = id;
        }
        ASSERT_TRUE(updater.SeparateVersions());
        Reload();
        EXPECT_TRUE(states == States());
        for (const ObjectRecord& record : RecordsOf(*StateList(state))) {
            if (new_ids.count(record.propOffset) != 0) {
                EXPECT_EQ(new_ids[record.propOffset], record.dwOID);
            }
        }
    }

private:
    std::uint32_t Below(std::uint32_t limit) {
        return static_cast<std::uint32_t>(random_() % limit);
    }
    // Objects come, go, and change with or without their description.
    void ChangeDevice(std::uint16_t state) {
        for (std::uint32_t id = 1; id <= kIds; ++id) {
            const auto present = device_.find(id);
            if (present == device_.end()) {
                if (Below(2) == 0) {
                    Add(id, state, {});
                }
            } else if (Below(3) == 0) {
                Enter(present->second, state, JF_DELETE);
                device_.erase(present);
            } else if (Below(3) == 0) {
                Add(id, state, present->second);  // new contents under the description of before
            }
        }
    }
    void Add(std::uint32_t id, std::uint16_t state, const ObjectRecord& before) {
        ObjectRecord record = before;
        if (record.type == ObjectType::kNone) {
            record = MakeRecord(Below(4) == 0 ? kDatabase : kFile, id, 0,
                                static_cast<std::uint16_t>(Below(2)));
        }
        record.propOffset = next_offset_;
        record.data_offset = next_offset_ + 50;
        record.content_fingerprint = static_cast<std::uint16_t>(next_offset_);
        next_offset_ += 100;
        Enter(record, state, JF_ADD);
        device_[id] = record;
    }
    void Enter(ObjectRecord record, std::uint16_t state, std::uint16_t flags) {
        record.state_number = state;
        record.flags = flags;
        ASSERT_TRUE(journal_->AddObject(record));
    }
    std::unique_ptr<ObjectList> StateList(std::uint16_t state) {
        auto list = ObjectList::CreateList();
        EXPECT_TRUE(BuildStateList(*list, *journal_, state, info_));
        return list;
    }
    // What every state holds, by the blocks.
    std::vector<std::multiset<std::uint32_t>> States() {
        std::vector<std::multiset<std::uint32_t>> states;
        for (std::uint16_t state = 1; state <= kStates; ++state) {
            const auto offsets = FieldsOf(*StateList(state), &ObjectRecord::propOffset);
            states.emplace_back(offsets.begin(), offsets.end());
        }
        return states;
    }
    void Reload() {
        auto loaded = ObjectList::CreateList();
        for (const ObjectRecord& record : RecordsOf(*journal_)) {
            EXPECT_TRUE(loaded->AddObject(record));
        }
        EXPECT_EQ(journal_->CountRecords(), loaded->CountRecords());
        journal_ = std::move(loaded);
    }

    std::mt19937 random_;
    FakeInfoSource info_;
    std::map<std::uint32_t, ObjectRecord> device_;  // by id
    std::uint32_t next_offset_ = 1000;
    std::unique_ptr<ObjectList> journal_ = ObjectList::CreateList();
};

TEST(JournalSeriesTest, NewIdsChangeNoState) {
    for (unsigned seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(seed);
        JournalSeries series(seed);
        for (int restore = 0; restore < 4; ++restore) {
            series.Restore();
        }
    }
}

}  // namespace
}  // namespace tolvenar
