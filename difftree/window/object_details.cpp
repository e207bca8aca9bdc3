#include "difftree/window/object_details.h"

#include <algorithm>
#include <memory>
#include <new>

#include "difftree/window/live_data.h"
#include "platform/resource_text.h"
#include "platform/text.h"
#include "res/resource.h"
#include "storage/log/date_text.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kFileBytesShown = 2048;
constexpr std::uint32_t kValueBytesShown = 4096;     // the most that a value holds
constexpr std::uint32_t kMostRecordBytes = 0x20000;  // of a record as databases hold it

struct AttributeRow {
    std::uint32_t bit;
    UINT text;
};
constexpr AttributeRow kAttributes[] = {
    {FILE_ATTRIBUTE_READONLY, IDS_DETAILS_READ_ONLY}, {FILE_ATTRIBUTE_HIDDEN, IDS_DETAILS_HIDDEN},
    {FILE_ATTRIBUTE_SYSTEM, IDS_DETAILS_SYSTEM},      {FILE_ATTRIBUTE_ARCHIVE, IDS_DETAILS_ARCHIVE},
    {FILE_ATTRIBUTE_INROM, IDS_DETAILS_ROM},
};

void AppendLocalTime(std::uint32_t low, std::uint32_t high, TextBuilder& text) {
    const FILETIME time = {low, high};
    FILETIME local{};
    char16_t buffer[kDateTimeTextUnits];
    if (::FileTimeToLocalFileTime(&time, &local) &&
        FormatFileTimeText(local, buffer, LOCALE_SSHORTDATE) != 0) {
        text.Append(buffer);
    }
}

bool HasData(const InfoBlock& block) {
    switch (block.type()) {
        case ObjectType::kFile: return (block.head().attributes & kAttributesWithoutData) == 0;
        case ObjectType::kRegistryValue:
        case ObjectType::kDatabaseRecord: return true;
        default: return false;
    }
}

// How much of the data is read; 0 when they are more than any object has.
std::uint32_t BytesToRead(const InfoBlock& block) {
    const std::uint32_t bytes = block.head().data_bytes;
    switch (block.type()) {
        case ObjectType::kFile: return std::min(bytes, kFileBytesShown);
        case ObjectType::kRegistryValue: return std::min(bytes, kValueBytesShown);
        default: return bytes <= kMostRecordBytes ? bytes : 0;
    }
}

}  // namespace

ObjectDetails::ObjectDetails(HINSTANCE instance, Engine& engine)
    : instance_(instance), engine_(engine), has_storage_(mapping_.Open(engine.storage.names.sav)) {}

void ObjectDetails::AppendId(UINT id, TextBuilder& text) const {
    text.Append(Utf16(ResourceText(instance_, id).text()));
}

void ObjectDetails::AppendFormat(UINT id, std::uint32_t number, TextBuilder& text) const {
    wchar_t line[kResourceTextUnits];
    ::wsprintfW(line, ResourceText(instance_, id).text(), number);
    text.Append(Utf16(line));
    EndLine(text);
}

void ObjectDetails::AppendTimeOf(const InfoBlockHead& head, TextBuilder& text) const {
    if (head.time_low != 0 || head.time_high != 0) {
        AppendLocalTime(head.time_low, head.time_high, text);
        EndLine(text);
    }
}

void ObjectDetails::AppendAttributes(std::uint32_t attributes, TextBuilder& text) const {
    for (const AttributeRow& row : kAttributes) {
        if ((attributes & row.bit) != 0) {
            AppendId(row.text, text);
            text.AppendUnit(u' ');
        }
    }
    EndLine(text);
}

void ObjectDetails::AppendHead(const InfoBlock& block, TextBuilder& text) const {
    const InfoBlockHead& head = block.head();
    switch (block.type()) {
        case ObjectType::kRegistryKey: AppendFormat(IDS_DETAILS_KEY, 0, text); return;
        case ObjectType::kDatabase:
            AppendFormat(IDS_DETAILS_DATABASE, head.database_type, text);
            break;
        case ObjectType::kDatabaseRecord:
            AppendFormat(IDS_DETAILS_RECORD, head.property_count, text);
            break;
        default: {
            const bool is_folder = block.type() == ObjectType::kFile &&
                                   (head.attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
            AppendFormat(is_folder ? IDS_DETAILS_FOLDER : IDS_DETAILS_SIZE, head.data_bytes, text);
            break;
        }
    }
    AppendTimeOf(head, text);
    if (block.type() == ObjectType::kFile) {
        AppendAttributes(head.attributes, text);
    }
}

void ObjectDetails::AppendFileStart(const std::uint8_t* data, std::uint32_t size,
                                    TextBuilder& text) const {
    const TextKind kind = KindOfText(data, size);
    if (kind == TextKind::kUtf16) {
        AppendLines(data, size, text);
        return;
    }
    if (kind == TextKind::kNone) {
        AppendHexLines(data, std::min<std::uint32_t>(size, kFileBytesShown / 16), text);
        return;
    }
    // In the device's own code page no text has more units than bytes.
    const std::unique_ptr<char16_t[]> units(new (std::nothrow) char16_t[size]);
    if (units != nullptr) {
        const int count = ::MultiByteToWideChar(CP_ACP, 0, reinterpret_cast<const char*>(data),
                                                static_cast<int>(size), Wide(units.get()),
                                                static_cast<int>(size));
        AppendLines(reinterpret_cast<const std::uint8_t*>(units.get()),
                    static_cast<std::size_t>(count) * sizeof(char16_t), text);
    }
}

void ObjectDetails::AppendData(const InfoBlock& block, const std::uint8_t* data, std::uint32_t size,
                               TextBuilder& text) const {
    EndLine(text);
    switch (block.type()) {
        case ObjectType::kFile: AppendFileStart(data, size, text); break;
        case ObjectType::kRegistryValue:
            AppendValueData(block.head().value_type, data, size, text);
            break;
        default:
            AppendProperties(data, size, block.head().property_count, AppendLocalTime, text);
            break;
    }
}

// False when it cannot be read.
bool ObjectDetails::AppendStoredData(const ObjectRecord& record, const InfoBlock& block,
                                     TextBuilder& text) {
    const std::uint32_t size = BytesToRead(block);
    if (size == 0) {
        return block.head().data_bytes == 0;
    }
    const std::unique_ptr<std::uint8_t[]> data = storage_.ReadData(record.data_offset, size);
    if (data == nullptr) {
        return false;
    }
    AppendData(block, data.get(), size, text);
    return true;
}

bool ObjectDetails::AppendLiveData(const ObjectRecord& record, const InfoBlock& block,
                                   TextBuilder& text) {
    if (block.type() == ObjectType::kDatabaseRecord) {
        RecordBuffer buffer;
        const bool is_read = ReadLiveRecord(engine_.databases, record, block, buffer);
        if (is_read) {
            AppendData(block, buffer.bytes(), buffer.size(), text);
        }
        return is_read;
    }
    DWORD size = kValueBytesShown;
    DWORD type = 0;
    const std::unique_ptr<std::uint8_t[]> data(new (std::nothrow) std::uint8_t[kValueBytesShown]);
    if (data == nullptr) {
        return false;
    }
    if (block.type() == ObjectType::kFile) {
        size = kFileBytesShown;
    }
    const bool is_read = block.type() == ObjectType::kFile
                             ? ReadLiveFile(block.name(), data.get(), size)
                             : ReadLiveValue(engine_.info, record, data.get(), size, type);
    if (is_read) {
        AppendData(block, data.get(), size, text);
    }
    return is_read;
}

void ObjectDetails::Append(const ObjectRecord& record, TextBuilder& text) {
    const bool is_live = record.propOffset == 0;
    InfoBlock block;
    const bool is_described =
        is_live ? engine_.info.GetOIDInfo(record.TolvOID, record.dwOID, block)
                : has_storage_ && storage_.GetInfoFromStorage(record.propOffset, block);
    if (!is_described || block.type() != record.type) {
        AppendId(IDS_DETAILS_UNREADABLE, text);
        return;
    }
    AppendHead(block, text);
    if (!HasData(block)) {
        return;
    }
    if (!(is_live ? AppendLiveData(record, block, text) : AppendStoredData(record, block, text))) {
        AppendId(IDS_DETAILS_UNREADABLE, text);
    }
}

}  // namespace tolvenar
