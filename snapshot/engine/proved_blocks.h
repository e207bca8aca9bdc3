// The stored blocks of a storage file, by a window of it once it is proved.
#pragma once

#include "snapshot/compare/pair_check.h"
#include "storage/files/storage_window.h"
#include "storage/format/stored_objects.h"

namespace tolvenar {

// A mapped sector that cannot be read ends the program, where a call answers that it failed. So
// only the blocks that a check has read are taken from the window, all others from `stored`.
class ProvedBlocks final : public StoredObjects {
public:
    explicit ProvedBlocks(StorageReader& stored) : stored_(stored) {}
    ProvedBlocks(const ProvedBlocks&) = delete;
    ProvedBlocks& operator=(const ProvedBlocks&) = delete;

    // From now on as `check` says, which stays for as long as blocks are asked for.
    void Prove(const PairCheck& check, const char16_t* sav_path);
    bool GetInfoFromStorage(std::uint32_t offset, InfoBlock& block) override;

private:
    StorageReader& stored_;
    StorageMapping mapping_;
    StorageWindow window_{mapping_};
    const PairCheck* check_ = nullptr;  // null without a mapping
};

}  // namespace tolvenar
