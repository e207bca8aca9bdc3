#include "pc/storage/content_proof.h"

#include <system_error>

#include "snapshot/compare/data_check.h"

namespace tolvenar::pc {
namespace {

// What one thread takes at a time: long enough to be read as a stream.
constexpr std::uint32_t kPartBytes = 4 * 1024 * 1024;

Damage DamageOf(StorageReader& reader, const StoredVersion& version) {
    const ObjectRecord& record = *version.record;
    if (version.damage != Damage::kNone || !CarriesDataChecksum(record.type)) {
        return version.damage;
    }
    InfoBlock block;
    if (!reader.GetInfoFromStorage(record.propOffset, block) || block.type() != record.type) {
        return Damage::kBlock;
    }
    return DataAreSound(reader, record, block) ? Damage::kNone : Damage::kData;
}

}  // namespace

ContentProof::ContentProof(StoredPair& pair)
    : check_(pair.check()),
      damage_(static_cast<std::size_t>(check_.end() - check_.begin())),
      own_reader_(pair.storage_bytes()),
      helper_reader_(pair.storage_bytes()) {
    for (const StoredVersion* version = check_.begin(); version != check_.end(); ++version) {
        if (parts_.empty() ||
            version->record->propOffset - parts_.back()->record->propOffset >= kPartBytes) {
            parts_.push_back(version);
        }
    }
    parts_.push_back(check_.end());
    try {
        helper_ = std::thread([this] {
            while (ProveNextPart(helper_reader_)) {
            }
        });
    } catch (const std::system_error&) {
        // Without another thread it takes longer.
    }
}

ContentProof::~ContentProof() {
    next_part_ = parts_.size();
    Join();
}

bool ContentProof::ProveNextPart(StorageReader& reader) {
    const std::size_t part = next_part_++;
    if (part + 1 >= parts_.size()) {
        return false;
    }
    for (const StoredVersion* version = parts_[part]; version != parts_[part + 1]; ++version) {
        damage_[static_cast<std::size_t>(version - check_.begin())] = DamageOf(reader, *version);
    }
    const bool is_last = parts_[part + 1] == check_.end();
    proved_bytes_ +=
        is_last ? 0 : parts_[part + 1]->record->propOffset - parts_[part]->record->propOffset;
    return true;
}

void ContentProof::Join() {
    if (helper_.joinable()) {
        helper_.join();
    }
}

}  // namespace tolvenar::pc
