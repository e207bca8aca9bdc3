#include "snapshot/engine/proved_blocks.h"

#include <algorithm>

namespace tolvenar {

void ProvedBlocks::Prove(const PairCheck& check, const char16_t* sav_path) {
    check_ = mapping_.Open(sav_path) ? &check : nullptr;
}

bool ProvedBlocks::GetInfoFromStorage(std::uint32_t offset, InfoBlock& block) {
    if (check_ != nullptr && check_->BlockIsSound(offset)) {
        const std::uint32_t size = mapping_.size();
        const std::uint32_t bytes = std::min<std::uint32_t>(kInfoBlockBytes, size - offset);
        const std::uint8_t* const mapped = offset < size ? window_.At(offset, bytes) : nullptr;
        if (mapped != nullptr) {
            return ParseInfoBlock(mapped, bytes, block);
        }
    }
    return stored_.GetInfoFromStorage(offset, block);
}

}  // namespace tolvenar
