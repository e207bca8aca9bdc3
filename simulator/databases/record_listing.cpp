#include "simulator/databases/record_listing.h"

#include "simulator/files/key_number.h"
#include "simulator/store/names.h"

namespace sim::databases {
namespace {

const Property* Pointer(const std::optional<Property>& value) { return value ? &*value : nullptr; }

}  // namespace

bool RecordListing::Before::operator()(const Place& a, const Place& b) const {
    const int order = sort.propid != 0 ? Compare(sort, Pointer(a.value), Pointer(b.value)) : 0;
    if (order != 0) {
        return order < 0;
    }
    return a.rank != b.rank ? a.rank < b.rank : a.oid < b.oid;
}

RecordListing::RecordListing(const SortOrder& sort, std::string order)
    : sort_(sort), order_(std::move(order)), places_(Before{sort}) {}

void RecordListing::Put(std::uint32_t oid, const Record& record) {
    Remove(oid);
    Place place;
    place.rank = RankOf({oid, files::KeyNumber(oid)}, order_);
    place.oid = oid;
    const Property* value = sort_.propid != 0 ? Find(record, sort_.propid) : nullptr;
    if (value != nullptr) {
        place.value = *value;
    }
    places_.insert(place);
    by_oid_.emplace(oid, std::move(place));
}

void RecordListing::Remove(std::uint32_t oid) {
    const auto found = by_oid_.find(oid);
    if (found != by_oid_.end()) {
        places_.erase(found->second);
        by_oid_.erase(found);
    }
}

std::uint32_t RecordListing::At(std::size_t index) const {
    const auto found = places_.find_by_order(index);
    return found != places_.end() ? found->oid : 0;
}

std::optional<std::size_t> RecordListing::IndexOf(std::uint32_t oid) const {
    const auto found = by_oid_.find(oid);
    return found != by_oid_.end() ? std::optional(places_.order_of_key(found->second))
                                  : std::nullopt;
}

std::size_t RecordListing::FirstNotBefore(const Property& value) const {
    return places_.order_of_key(Place{value, 0, 0});
}

bool RecordListing::IsEqual(std::size_t index, const Property& value) const {
    const auto found = places_.find_by_order(index);
    return found != places_.end() && Compare(sort_, Pointer(found->value), &value) == 0;
}

}  // namespace sim::databases
