// The hash of a name in which the case of letters does not count. Header only and platform-free.
#pragma once

#include <cstdint>
#include <string_view>

#include "snapshot/records/hash_index.h"
#include "snapshot/text/letter_case.h"

namespace tolvenar {

// The hash of `name` behind the words that gave `hash`.
inline std::uint32_t HashOfName(std::uint32_t hash, std::u16string_view name) {
    for (const char16_t unit : name) {
        hash = MixBits(hash, Capital(unit));
    }
    return hash;
}

}  // namespace tolvenar
