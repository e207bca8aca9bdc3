// The records of one database in one order, kept as they come, change and go. Finding a record or
// its number, by id or by value, takes a few steps however many there are.
#pragma once

#include <cstdint>
#include <ext/pb_ds/assoc_container.hpp>
#include <ext/pb_ds/tree_policy.hpp>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>

#include "simulator/databases/record.h"

namespace sim::databases {

class RecordListing {
public:
    // Sorted by `sort` where it names a property, equal ones by the device's setting "order".
    RecordListing(const SortOrder& sort, std::string order);

    void Put(std::uint32_t oid, const Record& record);
    void Remove(std::uint32_t oid);

    std::size_t size() const { return places_.size(); }
    // 0 behind the end.
    std::uint32_t At(std::size_t index) const;
    std::optional<std::size_t> IndexOf(std::uint32_t oid) const;
    // The first record whose value is not before `value`.
    std::size_t FirstNotBefore(const Property& value) const;
    bool IsEqual(std::size_t index, const Property& value) const;

private:
    struct Place {
        std::optional<Property> value;
        std::uint64_t rank = 0;
        std::uint32_t oid = 0;
    };
    struct Before {
        bool operator()(const Place& a, const Place& b) const;
        SortOrder sort;
    };
    using Tree = __gnu_pbds::tree<Place, __gnu_pbds::null_type, Before, __gnu_pbds::rb_tree_tag,
                                  __gnu_pbds::tree_order_statistics_node_update>;

    SortOrder sort_;
    std::string order_;
    Tree places_;
    std::unordered_map<std::uint32_t, Place> by_oid_;
};

}  // namespace sim::databases
