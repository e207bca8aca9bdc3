#include "storage/opened/storage_file.h"

#include <cstring>
#include <string_view>
#include <utility>

#include "app/settings/settings.h"
#include "platform/text.h"
#include "platform/unique_resource.h"
#include "storage/files/handle_bytes.h"
#include "storage/format/storage_reader.h"
#include "storage/log/date_text.h"

namespace tolvenar {
namespace {

constexpr std::size_t kDeviceNameUnits = sizeof(StorageHeader::deviceName) / sizeof(char16_t);

bool WritePlainHead(HandleBytes& file, const StorageHeader& header) {
    return file.MoveTo(0) && file.Append(&header, kStorageHeadBytes);
}

// Head and description in place of the plain head, in one write: a program that is ended leaves one
// of the two. The description may be shorter than the four bytes that stand for none.
bool ReplaceHead(HandleBytes& file, HANDLE handle, const StorageHeader& header,
                 const char16_t* text) {
    std::uint8_t head[kDescriptionOffset + kMaxDescriptionBytes];
    const std::uint32_t bytes = kDescriptionOffset + header.descriptionBytes;
    std::memcpy(head, &header, kDescriptionOffset);
    std::memcpy(head + kDescriptionOffset, text, header.descriptionBytes);
    return file.MoveTo(0) && file.Append(head, bytes) && ::SetEndOfFile(handle);
}

// Without room for the description the storage has none (docs/oddities.md, 64).
void WriteDescription(HandleBytes& file, HANDLE handle, StorageHeader& header, const char16_t* text,
                      std::size_t units) {
    SetDescription(header, text, units);
    if (ReplaceHead(file, handle, header, text)) {
        return;
    }
    SetDescription(header, u"", 0);
    if (WritePlainHead(file, header)) {
        ::SetEndOfFile(handle);
    }
}

// An empty description is none: the head would end before its last four bytes.
bool AskDescription(DescriptionPrompt* prompt, const StorageHeader& header,
                    char16_t (&answer)[kMaxDescriptionUnits], std::size_t& units) {
    if (prompt == nullptr) {
        return false;
    }
    char16_t proposed[kDeviceTextUnits];
    FormatDeviceText(header, proposed);
    if (!prompt->AskDescription(proposed, answer, units)) {
        return false;
    }
    if (units > kMaxDescriptionUnits) {
        units = kMaxDescriptionUnits;
    }
    return units > 0;
}

void SetCreationTime(StorageHeader& header) {
    SYSTEMTIME now;
    FILETIME created{};
    ::GetSystemTime(&now);
    ::SystemTimeToFileTime(&now, &created);
    header.created_low = created.dwLowDateTime;
    header.created_high = created.dwHighDateTime;
}

}  // namespace

std::unique_ptr<StorageHeader> CreateStorage(const char16_t* path, DescriptionPrompt* prompt,
                                             Existing existing) {
    char16_t sav[kStorageNameUnits];
    std::unique_ptr<StorageHeader> header(new StorageHeader());
    if (!header || !MakeSavName(path, sav)) {
        return nullptr;
    }
    const UniqueHandle file = OpenFile(sav, GENERIC_READ | GENERIC_WRITE, 0,
                                       existing == Existing::kReset ? CREATE_ALWAYS : CREATE_NEW);
    if (!file) {
        return nullptr;
    }

    HandleBytes bytes(file.get());
    ReadDeviceIdent(*header);
    SetCreationTime(*header);
    // The question may stay for long, and the program or the battery may end under it: a whole head
    // is on the card by then. Whether the write succeeded shows at the next open.
    if (WritePlainHead(bytes, *header) && prompt != nullptr) {
        Flush(file.get());
    }
    char16_t answer[kMaxDescriptionUnits] = {};
    std::size_t units = 0;
    if (AskDescription(prompt, *header, answer, units)) {
        WriteDescription(bytes, file.get(), *header, answer, units);
    }
    return header;
}

std::unique_ptr<StorageHeader> ReadStorageHeader(const char16_t* sav_path) {
    const UniqueHandle file = OpenFile(sav_path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
    if (!file) {
        return nullptr;
    }
    std::unique_ptr<StorageHeader> header(new StorageHeader());
    HandleBytes bytes(file.get());
    if (!header || !StorageReader(bytes).ReadHead(*header)) {
        return nullptr;
    }
    return header;
}

bool OpenStorage(const char16_t* path, OpenedStorage& storage, OpenStorageResult& result) {
    // Opened without sharing only to see that nobody else holds it.
    if (!OpenForWritingIfAllowed(path, 0, OPEN_EXISTING)) {
        result = OpenStorageResult::kFileMissing;
        return false;
    }
    char16_t sav[kStorageNameUnits];
    std::unique_ptr<StorageHeader> header;
    if (MakeSavName(path, sav)) {
        header = ReadStorageHeader(sav);
    }
    if (!header) {
        result = OpenStorageResult::kHeaderUnreadable;
        return false;
    }
    StorageHeader device{};
    ReadDeviceIdent(device);
    result = CheckStorageHeader(*header, device);
    if (result != OpenStorageResult::kOpened) {
        return false;
    }

    std::unique_ptr<ObjectList> older = ObjectList::CreateList();
    std::unique_ptr<ObjectList> newer = ObjectList::CreateList();
    if (!older || !newer) {
        result = OpenStorageResult::kOutOfMemory;
        return false;
    }
    storage.registry_objects.RegObjectClear();
    storage.header = std::move(header);
    storage.older = std::move(older);
    storage.newer = std::move(newer);
    return true;
}

bool StorageIsWriteProtected(const StorageNames& names) {
    return IsWriteProtected(names.sav) || IsWriteProtected(names.journal);
}

bool IsReallyAbsent(const char16_t* path) {
    if (::GetFileAttributesW(Wide(path)) != INVALID_FILE_ATTRIBUTES) {
        return false;
    }
    const DWORD error = ::GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

void ReadDeviceIdent(StorageHeader& header) {
    if (!ReadText(HKEY_LOCAL_MACHINE, u"Ident", u"OrigName", header.deviceName, kDeviceNameUnits,
                  sizeof header.deviceName)) {
        std::u16string_view(u"Unknown").copy(header.deviceName, kDeviceNameUnits);
    }
    SYSTEM_INFO system{};
    ::GetSystemInfo(&system);
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    ::GetVersionExW(&version);
    header.processorType = system.dwProcessorType;
    header.osMajor = version.dwMajorVersion;
    header.osMinor = version.dwMinorVersion;
    header.formatFamily = kFormatFamily;
    header.formatRevision = kFormatRevision;
}

std::size_t FormatDeviceText(const StorageHeader& header, char16_t (&buffer)[kDeviceTextUnits]) {
    const FILETIME created = {header.created_low, header.created_high};
    FILETIME local{};
    char16_t created_text[kDateTimeTextUnits] = {};
    if (::FileTimeToLocalFileTime(&created, &local)) {
        FormatFileTimeText(local, created_text, LOCALE_SLONGDATE);
    }
    const int length =
        ::wsprintfW(Wide(buffer),
                    L"Device: %s, Processor:%s(%u)\r\nWindows CE v%u.%02u\r\nStorage created at "
                    L"%s\r\n----------\r\n",
                    Wide(header.deviceName), Wide(ProcessorName(header.processorType)),
                    header.processorType, header.osMajor, header.osMinor, Wide(created_text));
    return length < 0 ? 0 : static_cast<std::size_t>(length);
}

}  // namespace tolvenar
