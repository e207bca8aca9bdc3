#include "difftree/model/list_enumerator.h"

#include <algorithm>
#include <memory>
#include <string_view>

#include "snapshot/text/log.h"
#include "storage/format/property_text.h"

namespace tolvenar {
namespace {

constexpr char16_t kModule[] = u"BuildDifferenceTree";
constexpr std::uint32_t kValueTextBytes = kObjectNameUnits * sizeof(char16_t);

}  // namespace

bool ListEnumerator::Describe() {
    const bool described = record_->propOffset == 0
                               ? live_.GetOIDInfo(record_->TolvOID, record_->dwOID, block_)
                               : storage_->GetInfoFromStorage(record_->propOffset, block_);
    return described && block_.type() == record_->type;
}

int ListEnumerator::Next(EnumeratedObject& object) {
    if (!(next_ != Place(nullptr))) {
        return kEndOfList;
    }
    record_ = (*next_).record;
    ++next_;
    if (record_->type == ObjectType::kState) {
        return kNoObject;
    }
    if (record_->propOffset != 0 && storage_ == nullptr) {
        return kAbort;
    }
    if (!Describe()) {
        LogMessage(record_->propOffset != 0 ? u"Fail GetInfoFromStorage" : u"Fail GetOIDInfo",
                   kModule, kLogError);
        return kNoObject;
    }
    const std::u16string_view name(block_.name());
    object.name[name.copy(object.name, kObjectNameUnits - 1)] = 0;
    object.record = record_;
    object.type = record_->type;
    object.flags = record_->flags;
    object.reason = failures_.Of(*record_);
    object.dwOID = record_->dwOID;
    object.hive = IsRegistryObject(*record_) ? block_.head().hive : 0;
    return kObject;
}

bool ListEnumerator::ReadTextProperty(std::uint32_t propid, TextBuilder& text) {
    if (record_->propOffset == 0) {
        return contents_.ReadTextProperty(*record_, block_, propid, text);
    }
    const std::uint32_t bytes = block_.head().data_bytes;
    const std::unique_ptr<std::uint8_t[]> data = storage_->ReadData(record_->data_offset, bytes);
    return data != nullptr &&
           FindTextProperty(data.get(), bytes, block_.head().property_count, propid, text);
}

bool ListEnumerator::ReadValueText(TextBuilder& text) {
    if (record_->propOffset == 0) {
        return contents_.ReadValueText(*record_, text);
    }
    if (!IsTextValue(block_.head().value_type)) {
        return false;
    }
    const std::uint32_t bytes = std::min(block_.head().data_bytes, kValueTextBytes);
    const std::unique_ptr<std::uint8_t[]> data = storage_->ReadData(record_->data_offset, bytes);
    if (data == nullptr) {
        return false;
    }
    AppendStoredText(data.get(), bytes, text);
    return true;
}

}  // namespace tolvenar
