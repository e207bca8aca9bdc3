// Journals of a small device whose ids are given out again, and restores that enter new ids in
// them. Header only and platform-free.
#pragma once

#include <functional>
#include <map>
#include <set>

#include "snapshot/compare/difference.h"
#include "snapshot/compare/journal_update.h"
#include "tests/support/fake_info_source.h"
#include "tests/support/records.h"

namespace tolvenar {

class JournalSeries {
public:
    // `below` chooses a number below its argument.
    explicit JournalSeries(std::function<std::uint32_t(std::uint32_t)> below)
        : below_(std::move(below)) {
        for (std::uint16_t state = 1; state <= kStates; ++state) {
            ChangeDevice(state);
        }
    }

    // A restore of some state to a device that has some of its objects, with new ids for the
    // others. True when every state holds what it held, and each object has its new id.
    bool Restore() {
        const auto state = static_cast<std::uint16_t>(1 + below_(kStates));
        const auto states = States();
        std::set<std::uint32_t> taken;
        std::vector<ObjectRecord> restored;
        for (const ObjectRecord& record : RecordsOf(*StateList(state))) {
            if (below_(3) == 0) {
                taken.insert(record.dwOID);
            } else {
                restored.push_back(record);
            }
        }
        std::map<std::uint32_t, std::uint32_t> new_ids;  // by offset
        JournalUpdater updater(journal_.get());
        for (const ObjectRecord& record : restored) {
            std::uint32_t id = 1 + below_(kIds);
            while (!taken.insert(id).second) {
                ++id;
            }
            updater.UpdateJournalOid(record, id);
            new_ids[record.propOffset] = id;
        }
        return updater.SeparateVersions() && Reload() && states == States() &&
               HaveIds(*StateList(state), new_ids);
    }

private:
    static constexpr std::uint16_t kStates = 4;
    static constexpr std::uint32_t kIds = 12;  // so few that most are given out twice

    // Objects come, go, and change with or without their description.
    void ChangeDevice(std::uint16_t state) {
        for (std::uint32_t id = 1; id <= kIds; ++id) {
            const auto present = device_.find(id);
            if (present == device_.end()) {
                if (below_(2) == 0) {
                    Add(id, state, {});
                }
            } else if (below_(3) == 0) {
                Enter(present->second, state, JF_DELETE);
                device_.erase(present);
            } else if (below_(3) == 0) {
                Add(id, state, present->second);  // new contents under the description of before
            }
        }
    }
    void Add(std::uint32_t id, std::uint16_t state, const ObjectRecord& before) {
        ObjectRecord record = before;
        if (record.type == ObjectType::kNone) {
            record = MakeRecord(below_(4) == 0 ? kDatabase : kFile, id, 0,
                                static_cast<std::uint16_t>(below_(2)));
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
        journal_->AddObject(record);
    }
    std::unique_ptr<ObjectList> StateList(std::uint16_t state) {
        auto list = ObjectList::CreateList();
        BuildStateList(*list, *journal_, state, info_);
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
    // False when a record got lost, since its key is another's.
    bool Reload() {
        auto loaded = ObjectList::CreateList();
        for (const ObjectRecord& record : RecordsOf(*journal_)) {
            loaded->AddObject(record);
        }
        std::swap(journal_, loaded);
        return journal_->CountRecords() == loaded->CountRecords();
    }
    static bool HaveIds(const ObjectList& list,
                        const std::map<std::uint32_t, std::uint32_t>& new_ids) {
        for (const ObjectRecord& record : RecordsOf(list)) {
            const auto found = new_ids.find(record.propOffset);
            if (found != new_ids.end() && found->second != record.dwOID) {
                return false;
            }
        }
        return true;
    }

    std::function<std::uint32_t(std::uint32_t)> below_;
    FakeInfoSource info_;
    std::map<std::uint32_t, ObjectRecord> device_;  // by id
    std::uint32_t next_offset_ = 1000;
    std::unique_ptr<ObjectList> journal_ = ObjectList::CreateList();
};

}  // namespace tolvenar
