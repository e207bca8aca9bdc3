#include "benchmarks/floor/floor.h"
#include "platform/file_mapping.h"
#include "platform/registry_key.h"
#include "platform/text.h"
#include "snapshot/records/checksum.h"

namespace floor_program {
namespace {

using tolvenar::Checksum16;
using tolvenar::UniqueFind;
using tolvenar::UniqueHandle;
using tolvenar::UniqueHkey;
using tolvenar::UniqueView;

constexpr DWORD kNotStored = FILE_ATTRIBUTE_INROM | FILE_ATTRIBUTE_ROMMODULE;
constexpr int kNameUnits = 260;
constexpr DWORD kDataBytes = 0x10000;

volatile unsigned checksums;  // what is read is needed
BYTE data[kDataBytes];

void ReadFileOnce(const wchar_t* path, const WIN32_FIND_DATAW& entry) {
    UniqueHandle mapping =
        tolvenar::MapFileForReading(path, 0, entry.dwFileAttributes | FILE_FLAG_RANDOM_ACCESS);
    UniqueView view(mapping
                        ? ::MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, entry.nFileSizeLow)
                        : nullptr);
    if (view) {
        checksums = checksums + Checksum16(view.get(), entry.nFileSizeLow);
        view.Close();
        mapping.Close();
    }
}

class Scan {
public:
    explicit Scan(Things& things) : things_(things) {}

    // `length` units of the path are the folder's.
    void Files(std::size_t length) {
        WIN32_FIND_DATAW entry;
        ::wcscpy(path_ + length, L"\\*.*");
        UniqueFind find(::FindFirstFileW(path_, &entry));
        if (!find) {
            return;
        }
        do {
            const std::size_t name = ::wcslen(entry.cFileName);
            if (length + 1 + name + 5 < kNameUnits) {
                path_[length] = L'\\';
                ::wcscpy(path_ + length + 1, entry.cFileName);
                File(entry, length + 1 + name);
            }
        } while (::FindNextFileW(find.get(), &entry));
        find.Close();
    }

    void Key(HKEY root, std::size_t length) {
        UniqueHkey key = tolvenar::OpenKey(root, path_);
        DWORD subkeys = 0;
        DWORD values = 0;
        FILETIME time;
        if (!key ||
            ::RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr,
                               &values, nullptr, nullptr, nullptr, &time) != ERROR_SUCCESS) {
            return;
        }
        things_.AddKey(root, path_);
        Values(key.get(), values);
        Subkeys(root, key.get(), subkeys, length);
        key.Close();
    }

private:
    void File(const WIN32_FIND_DATAW& entry, std::size_t length) {
        const bool is_folder = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        if ((entry.dwFileAttributes & (kNotStored | FILE_ATTRIBUTE_TEMPORARY)) != 0) {
            return;
        }
        tolvenar::InfoBlock block;
        if (!Describe(entry.dwOID, block)) {
            return;
        }
        things_.AddFile(entry.dwOID, path_);
        if (is_folder) {
            Files(length);
        } else if (entry.nFileSizeLow != 0) {
            ReadFileOnce(path_, entry);
        }
    }

    void Values(HKEY key, DWORD count) {
        for (DWORD i = 0; i < count; ++i) {
            wchar_t name[kNameUnits];
            DWORD units = kNameUnits;
            DWORD bytes = kDataBytes;
            DWORD type = 0;
            if (::RegEnumValueW(key, i, name, &units, nullptr, &type, data, &bytes) ==
                ERROR_SUCCESS) {
                checksums = checksums + Checksum16(data, bytes);
                things_.AddValue(name);
            }
        }
    }

    void Subkeys(HKEY root, HKEY key, DWORD count, std::size_t length) {
        for (DWORD i = 0; i < count; ++i) {
            const std::size_t start = length != 0 ? length + 1 : 0;
            DWORD units = static_cast<DWORD>(kNameUnits - start);
            if (::RegEnumKeyExW(key, i, path_ + start, &units, nullptr, nullptr, nullptr,
                                nullptr) == ERROR_SUCCESS) {
                if (length != 0) {
                    path_[length] = L'\\';
                }
                Key(root, start + units);
            }
            path_[length] = 0;
        }
    }

    Things& things_;
    wchar_t path_[kNameUnits] = L"";
};

}  // namespace

bool Describe(CEOID oid, tolvenar::InfoBlock& block) {
    CEOIDINFO info{};
    CEGUID volume{};
    if (!::CeOidGetInfoEx(&volume, oid, &info)) {
        return false;
    }
    const bool is_file = info.wObjType == OBJTYPE_FILE;
    const wchar_t* const name = is_file ? info.infFile.szFileName : info.infDirectory.szDirName;
    block.SetName(tolvenar::Utf16(name), ::wcslen(name));
    block.head().attributes = is_file ? info.infFile.dwAttributes
                                      : info.infDirectory.dwAttributes | FILE_ATTRIBUTE_DIRECTORY;
    block.head().data_bytes = is_file ? info.infFile.dwLength : 0;
    block.head().time_low = is_file ? info.infFile.ftLastChanged.dwLowDateTime : 0;
    block.head().time_high = is_file ? info.infFile.ftLastChanged.dwHighDateTime : 0;
    block.head().type = static_cast<std::uint16_t>(tolvenar::ObjectType::kFile);
    checksums = checksums + Checksum16(block.bytes(), block.size());
    return true;
}

void ScanDevice(Things& things) {
    Scan(things).Files(0);
    for (const HKEY root : {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS}) {
        Scan(things).Key(root, 0);
    }
}

}  // namespace floor_program
