#include "simulator/databases/open_database.h"

#include <algorithm>
#include <windows.h>

#include "simulator/databases/database_index.h"
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

const RecordListing& OpenDatabase::Refresh(const LogStore::View& view) {
    Device& device = store_.device();
    const std::uint32_t generation = store_.Generation(oid_);
    std::string order = device.Setting("order", "stored");
    const RecordListing& records =
        DatabaseIndex::Of(device, view).Listing(view, oid_, sort_, order);
    if (listed_ && generation == generation_ && order == order_) {
        return records;
    }
    const bool was_at_end = listed_ && place_ == count_ && count_ != 0;
    generation_ = generation;
    order_ = std::move(order);
    count_ = records.size();
    listed_ = true;
    if (const auto index = records.IndexOf(current_)) {
        place_ = *index;
        return records;
    }
    // The record behind a deleted one has moved to its place.
    current_deleted_ = current_deleted_ || (current_ != 0 && !auto_increment_);
    place_ = was_at_end ? count_ : std::min(place_, count_);
    current_ = records.At(place_);
    return records;
}

Error OpenDatabase::Current(std::uint32_t& oid, Record& record) {
    LogStore::View view(store_.device().store());
    const RecordListing& records = Refresh(view);
    if (current_deleted_) {
        return kKeyDeleted;
    }
    if (place_ >= records.size()) {
        return kNoMoreItems;
    }
    oid = records.At(place_);
    following_ = records.At(place_ + 1);
    record = *store_.Read(oid_, oid);
    return kOk;
}

void OpenDatabase::Advance() {
    if (auto_increment_ && place_ < count_) {
        ++place_;
        current_ = following_;
    }
}

std::uint32_t OpenDatabase::MoveToEnd(const RecordListing& records) {
    if (store_.device().Setting("database.seek.fails", "end") == "end") {
        place_ = records.size();
        current_ = 0;
        current_deleted_ = false;
    }
    return 0;
}

std::uint32_t OpenDatabase::MoveTo(const RecordListing& records, std::int64_t index,
                                   std::uint32_t& index_out) {
    if (index < 0 || index >= static_cast<std::int64_t>(records.size())) {
        return MoveToEnd(records);
    }
    place_ = static_cast<std::size_t>(index);
    current_ = records.At(place_);
    current_deleted_ = false;
    index_out = static_cast<std::uint32_t>(index);
    return current_;
}

std::uint32_t OpenDatabase::SeekTo(std::uint32_t way, std::uint32_t value, std::uint32_t& index) {
    LogStore::View view(store_.device().store());
    const RecordListing& records = Refresh(view);
    const auto count = static_cast<std::int64_t>(records.size());
    const auto place = static_cast<std::int64_t>(place_);
    switch (way) {
        case kSeekOid: {
            const std::optional<std::size_t> found = records.IndexOf(value);
            return MoveTo(records, found ? static_cast<std::int64_t>(*found) : count, index);
        }
        case kSeekBeginning: return MoveTo(records, value, index);
        case kSeekEnd: return MoveTo(records, count - static_cast<std::int64_t>(value), index);
        case kSeekCurrent: return MoveTo(records, place + static_cast<std::int32_t>(value), index);
        default: return 0;
    }
}

std::uint32_t OpenDatabase::SeekValue(std::uint32_t way, const Property& value,
                                      std::uint32_t& index) {
    LogStore::View view(store_.device().store());
    const RecordListing& records = Refresh(view);
    const std::size_t first = records.FirstNotBefore(value);
    const auto move_if_equal = [&](std::size_t at) {
        return records.IsEqual(at, value) ? MoveTo(records, static_cast<std::int64_t>(at), index)
                                          : MoveToEnd(records);
    };
    switch (way) {
        case kSeekSmaller: return MoveTo(records, static_cast<std::int64_t>(first) - 1, index);
        case kSeekGreater: return MoveTo(records, static_cast<std::int64_t>(first), index);
        case kSeekFirstEqual: return move_if_equal(first);
        case kSeekNextEqual: return move_if_equal(place_ + 1);
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
