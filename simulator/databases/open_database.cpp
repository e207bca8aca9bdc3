#include "simulator/databases/open_database.h"

#include <algorithm>
#include <windows.h>

#include "simulator/store/device_name.h"

namespace sim::databases {
namespace {

std::wstring InUseName(const Device& device, std::uint32_t oid) {
    const std::wstring name = L"open database " + std::to_wstring(oid);
    return ObjectName(device, name.c_str());
}

SortOrder SortOf(const Database& database, std::uint32_t propid) {
    for (const SortOrder& order : database.sort_orders) {
        if (order.propid == propid) {
            return order;
        }
    }
    return {};
}

}  // namespace

OpenDatabase::OpenDatabase(Device& device, const Database& database, std::uint32_t sort_propid,
                           bool auto_increment)
    : store_(device),
      oid_(database.oid),
      sort_(SortOf(database, sort_propid)),
      auto_increment_(auto_increment),
      in_use_(::CreateMutexW(nullptr, FALSE, InUseName(device, oid_).c_str())) {}

OpenDatabase::~OpenDatabase() { ::CloseHandle(in_use_); }

// Takes the records' present list and finds the place in it again.
void OpenDatabase::Refresh() {
    const std::uint32_t generation = store_.Generation(oid_);
    std::string order = store_.device().Setting("order", "stored");
    if (listed_ && generation == generation_ && order == order_) {
        return;
    }
    const bool was_at_end = listed_ && place_ == records_.size() && !records_.empty();
    records_ = store_.Records(oid_);
    Sort();
    generation_ = generation;
    order_ = std::move(order);
    listed_ = true;
    const auto found = std::find(records_.begin(), records_.end(), current_);
    if (current_ != 0 && found != records_.end()) {
        place_ = static_cast<std::size_t>(found - records_.begin());
        return;
    }
    // The record behind a deleted one has moved to its place.
    current_deleted_ = current_deleted_ || (current_ != 0 && !auto_increment_);
    place_ = was_at_end ? records_.size() : std::min(place_, records_.size());
    current_ = place_ < records_.size() ? records_[place_] : 0;
}

void OpenDatabase::Sort() {
    if (sort_.propid == 0) {
        return;
    }
    std::vector<std::pair<std::uint32_t, Record>> rows;
    for (const std::uint32_t record : records_) {
        rows.emplace_back(record, *store_.Read(oid_, record));
    }
    std::stable_sort(rows.begin(), rows.end(), [this](const auto& a, const auto& b) {
        return Compare(sort_, Find(a.second, sort_.propid), Find(b.second, sort_.propid)) < 0;
    });
    std::transform(rows.begin(), rows.end(), records_.begin(),
                   [](const auto& row) { return row.first; });
}

Error OpenDatabase::Current(std::uint32_t& oid, Record& record) {
    LogStore::View view(store_.device().store());
    Refresh();
    if (current_deleted_) {
        return kKeyDeleted;
    }
    if (place_ >= records_.size()) {
        return kNoMoreItems;
    }
    oid = records_[place_];
    record = *store_.Read(oid_, oid);
    return kOk;
}

void OpenDatabase::Advance() {
    if (auto_increment_ && place_ < records_.size()) {
        ++place_;
        current_ = place_ < records_.size() ? records_[place_] : 0;
    }
}

std::uint32_t OpenDatabase::MoveToEnd() {
    if (store_.device().Setting("database.seek.fails", "end") == "end") {
        place_ = records_.size();
        current_ = 0;
        current_deleted_ = false;
    }
    return 0;
}

std::uint32_t OpenDatabase::MoveTo(std::int64_t index, std::uint32_t& index_out) {
    if (index < 0 || index >= static_cast<std::int64_t>(records_.size())) {
        return MoveToEnd();
    }
    place_ = static_cast<std::size_t>(index);
    current_ = records_[place_];
    current_deleted_ = false;
    index_out = static_cast<std::uint32_t>(index);
    return current_;
}

std::uint32_t OpenDatabase::SeekTo(std::uint32_t way, std::uint32_t value, std::uint32_t& index) {
    LogStore::View view(store_.device().store());
    Refresh();
    const auto count = static_cast<std::int64_t>(records_.size());
    switch (way) {
        case kSeekOid: {
            const auto found = std::find(records_.begin(), records_.end(), value);
            return MoveTo(found - records_.begin(), index);
        }
        case kSeekBeginning: return MoveTo(value, index);
        case kSeekEnd: return MoveTo(count - static_cast<std::int64_t>(value), index);
        case kSeekCurrent:
            return MoveTo(static_cast<std::int64_t>(place_) + static_cast<std::int32_t>(value),
                          index);
        default: return 0;
    }
}

const Property* OpenDatabase::SortValueOf(std::uint32_t record_oid, Record& record) const {
    record = *store_.Read(oid_, record_oid);
    return Find(record, sort_.propid);
}

std::uint32_t OpenDatabase::SeekValue(std::uint32_t way, const Property& value,
                                      std::uint32_t& index) {
    LogStore::View view(store_.device().store());
    Refresh();
    Record record;
    const auto compare = [&](std::uint32_t record_oid) {
        return Compare(sort_, SortValueOf(record_oid, record), &value);
    };
    const auto first_not_below = std::partition_point(
        records_.begin(), records_.end(), [&](std::uint32_t oid) { return compare(oid) < 0; });
    const auto position = first_not_below - records_.begin();
    const bool is_equal = first_not_below != records_.end() && compare(*first_not_below) == 0;
    switch (way) {
        case kSeekSmaller: return MoveTo(position - 1, index);
        case kSeekGreater: return MoveTo(position, index);
        case kSeekFirstEqual: return is_equal ? MoveTo(position, index) : MoveToEnd();
        case kSeekNextEqual: {
            const std::size_t next = place_ + 1;
            const bool equal = next < records_.size() && compare(records_[next]) == 0;
            return equal ? MoveTo(static_cast<std::int64_t>(next), index) : MoveToEnd();
        }
        default: return 0;
    }
}

Error OpenDatabase::Write(std::uint32_t& oid, const Record& changes, const Record& deletions) {
    LogStore::Change change(store_.device().store());
    const std::optional<Database> database = store_.Get(oid_);
    Record record;
    if (!database) {
        return kInvalidParameter;
    }
    if (oid != 0) {
        const std::optional<Record> old = store_.Read(oid_, oid);
        if (!old) {
            return kInvalidParameter;
        }
        record = *old;
    }
    for (const Property& property : deletions) {
        Remove(record, property.propid);
    }
    for (const Property& property : changes) {
        Put(record, property);
    }
    return store_.Write(*database, oid, record);
}

bool IsOpen(const Device& device, std::uint32_t oid) {
    const HANDLE in_use = ::OpenMutexW(SYNCHRONIZE, FALSE, InUseName(device, oid).c_str());
    if (in_use != nullptr) {
        ::CloseHandle(in_use);
    }
    return in_use != nullptr;
}

DatabaseSearch::DatabaseSearch(Device& device, std::uint32_t type) : store_(device) {
    LogStore::View view(device.store());
    oids_ = store_.All(type);
    deletions_ = store_.DeletionCount();
}

std::uint32_t DatabaseSearch::Next(Error& error) {
    error = kOk;
    if (store_.DeletionCount() != deletions_) {
        error = kKeyDeleted;
        return 0;
    }
    if (at_ < oids_.size()) {
        return oids_[at_++];
    }
    error = kNoMoreItems;
    return 0;
}

}  // namespace sim::databases
