// What the areas with named things share: how names are compared, and in which order things are
// enumerated.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

// The form under which a name is compared; one unit for one unit.
std::u16string FoldName(std::u16string_view name);

// Platform text and stored text hold the same 16-bit units. A null pointer is the empty text.
std::u16string StoredText(const wchar_t* text);

// Something to be enumerated: `sequence` tells when it came, `key` stays the same while it lives.
struct Enumerated {
    std::uint32_t sequence = 0;
    std::u16string key;
};

// Where the item stands among others under the device setting "order": below another's is before
// it, the same is as they came. What `Arrange` sorts by.
std::uint64_t RankOf(const Enumerated& item, const std::string& order);

// Puts the items into the order of the device setting "order": "stored" as they came, "reversed",
// or "shuffled:<seed>". What is left after an item is gone keeps its order.
void Arrange(std::vector<Enumerated>& items, const std::string& order);

}  // namespace sim
