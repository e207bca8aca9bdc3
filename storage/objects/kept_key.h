// A registry key that stays open for the values that come next.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/registry_key.h"
#include "storage/format/info_block.h"

namespace tolvenar {

// An open key cannot be deleted: whoever deletes keys closes it first.
class KeptKey {
public:
    explicit KeptKey(REGSAM access) : access_(access) {}
    KeptKey(const KeptKey&) = delete;
    KeptKey& operator=(const KeptKey&) = delete;

    // Calls `use` with the key at `path`; it answers as the platform's registry calls do. A key
    // that was open already may have been deleted and made again since: after a failure it is
    // opened anew and `use` is called once more. The answer of the last call, or of the opening.
    template <typename Use>
    LONG With(std::uint32_t hive, const char16_t* path, Use use) {
        if (Holds(hive, path) && use(key_.get()) == ERROR_SUCCESS) {
            return ERROR_SUCCESS;
        }
        const LONG opened = Open(hive, path);
        return opened == ERROR_SUCCESS ? use(key_.get()) : opened;
    }
    // Whether the key was there at the last use.
    bool is_open() const { return static_cast<bool>(key_); }
    void Close();

private:
    static constexpr std::size_t kPathUnits = kMaxNameBytes / sizeof(char16_t) + 1;

    bool Holds(std::uint32_t hive, const char16_t* path) const;
    LONG Open(std::uint32_t hive, const char16_t* path);

    REGSAM access_;
    UniqueHkey key_;
    std::uint32_t hive_ = 0;
    char16_t path_[kPathUnits];
};

}  // namespace tolvenar
