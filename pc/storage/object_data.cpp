#include "pc/storage/object_data.h"

#include <algorithm>
#include <memory>

#include "pc/text/failure.h"
#include "pc/text/utf.h"
#include "snapshot/compare/data_check.h"

namespace tolvenar::pc {
namespace {
constexpr std::uint32_t kPieceBytes = 64 * 1024;
}

bool DataAreSound(StoredPair& pair, const StoredObject& object) {
    InfoBlock block;
    return !object.is_damaged && pair.check().DamageOf(object.record) == Damage::kNone &&
           pair.reader().GetInfoFromStorage(object.record.propOffset, block) &&
           tolvenar::DataAreSound(pair.reader(), object.record, block);
}

bool StreamData(StoredPair& pair, const StoredObject& object, const TakeData& take) {
    if (!object.has_data) {
        return true;
    }
    const std::unique_ptr<char[]> piece(new char[std::min(kPieceBytes, object.data_bytes)]);
    pair.reader().Expect(object.record.data_offset, object.data_bytes);
    for (std::uint32_t done = 0; done < object.data_bytes;) {
        const std::uint32_t bytes = std::min(kPieceBytes, object.data_bytes - done);
        std::uint32_t read = 0;
        if (!pair.reader().ReadUpTo(object.record.data_offset + done, piece.get(), bytes, read) ||
            read != bytes || !take({piece.get(), bytes})) {
            return false;
        }
        done += bytes;
    }
    return true;
}

std::vector<std::uint8_t> ReadData(StoredPair& pair, const StoredObject& object) {
    std::vector<std::uint8_t> data;
    const bool is_whole = StreamData(pair, object, [&data](std::string_view bytes) {
        data.insert(data.end(), bytes.begin(), bytes.end());
        return true;
    });
    if (!is_whole) {
        throw Failure(ExitCode::kDamaged, Printable(PathOf(object)) + ": cannot be read");
    }
    return data;
}

}  // namespace tolvenar::pc
