#include "snapshot/scan/registry_scanner.h"

#include <memory>
#include <new>
#include <string_view>

#include "platform/keep_awake.h"
#include "platform/registry_key.h"
#include "platform/text.h"
#include "snapshot/compare/exclusion.h"
#include "snapshot/records/checksum.h"
#include "snapshot/text/letter_case.h"
#include "snapshot/text/text_buffer.h"
#include "storage/format/info_block.h"

namespace tolvenar {
namespace {

// What a block can name: key path, separator and value name together.
constexpr std::size_t kMaxNameUnits = kMaxNameBytes / sizeof(char16_t);
constexpr std::size_t kMaxSubkeyUnits = 256;  // with terminator
constexpr std::size_t kHiveDigits = 8;
constexpr std::uint16_t kKeyFingerprint = 0xFFFF;

struct KeyCounts {
    DWORD subkeys;
    DWORD values;
    DWORD longest_data_bytes;
};

bool QueryKey(HKEY key, KeyCounts& counts) {
    return ::RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &counts.subkeys, nullptr, nullptr,
                              &counts.values, nullptr, &counts.longest_data_bytes, nullptr,
                              nullptr) == ERROR_SUCCESS;
}

// What all levels of one walk share, so that a level costs little of a device's stack.
class Walk {
public:
    Walk(RegistryScan& scan, std::uint32_t hive, RegistryMaker maker)
        : scan_(scan), hive_(hive), maker_(maker) {}

    bool Start(std::u16string_view key_path) {
        if (key_path.size() > kMaxNameUnits) {
            return false;
        }
        length_ = key_path.copy(path_, key_path.size());
        path_[length_] = 0;
        return true;
    }

    // Visits the key in path_. Each level lengthens the path, so the path's limit bounds the depth.
    void VisitKey() {
        UniqueHkey key = OpenKey(RootKey(hive_), Wide(path_), KEY_READ);
        KeyCounts counts{};
        if (!key || !QueryKey(key.get(), counts)) {
            return;
        }
        StayAwakeBetweenObjects();
        maker_(scan_, {true, hive_, path_});
        const std::size_t key_length = length_;
        for (DWORD i = 0; i < counts.subkeys && EnterSubkey(key.get(), i); ++i) {
            if (length_ <= kMaxNameUnits) {
                VisitKey();
            }
            length_ = key_length;
            path_[length_] = 0;
        }
        VisitValues(key.get(), counts);
        key.Close();
    }

private:
    // Lengthens the path by the subkey's name; false, and the path as before, when there is none.
    bool EnterSubkey(HKEY key, DWORD index) {
        const std::size_t name_place = length_ == 0 ? 0 : length_ + 1;
        DWORD name_units = kMaxSubkeyUnits;
        const LONG status = ::RegEnumKeyExW(key, index, Wide(path_ + name_place), &name_units,
                                            nullptr, nullptr, nullptr, nullptr);
        if (status != ERROR_SUCCESS) {
            path_[length_] = 0;
            return false;
        }
        if (name_place != 0) {
            path_[length_] = u'\\';
        }
        length_ = name_place + name_units;
        return true;
    }

    void VisitValues(HKEY key, const KeyCounts& counts) {
        if (counts.values == 0) {
            return;
        }
        if (!ReserveData(counts.longest_data_bytes)) {
            scan_.left_out.NoteLackOfMemory();
            return;
        }
        for (DWORD i = 0; i < counts.values; ++i) {
            DWORD name_units = kMaxNameUnits + 1;
            DWORD type = 0;
            DWORD data_bytes = data_capacity_;
            // A name that does not fit is longer than a block can name: such a value is left out.
            if (::RegEnumValueW(key, i, Wide(value_name_), &name_units, nullptr, &type, data_.get(),
                                &data_bytes) == ERROR_SUCCESS) {
                StayAwakeBetweenObjects();
                TakeOffListedName(key);
                maker_(scan_, {false, hive_, path_, value_name_, type, data_.get(), data_bytes});
            }
        }
    }

    // The value without a name may be listed under one that no other call knows.
    void TakeOffListedName(HKEY key) {
        if (EqualIgnoringCase(value_name_, u"Default") &&
            ::RegQueryValueExW(key, Wide(value_name_), nullptr, nullptr, nullptr, nullptr) ==
                ERROR_FILE_NOT_FOUND) {
            value_name_[0] = 0;
        }
    }

    // Room for a value's data and a terminator that some drivers add.
    bool ReserveData(DWORD longest_data_bytes) {
        const DWORD needed = longest_data_bytes + sizeof(char16_t);
        if (needed <= data_capacity_) {
            return true;
        }
        data_capacity_ = 0;
        data_.reset(new (std::nothrow) std::uint8_t[needed]);
        if (data_ == nullptr) {
            return false;
        }
        data_capacity_ = needed;
        return true;
    }

    RegistryScan& scan_;
    std::uint32_t hive_;
    RegistryMaker maker_;
    std::size_t length_ = 0;
    std::unique_ptr<std::uint8_t[]> data_;
    DWORD data_capacity_ = 0;
    char16_t path_[kMaxNameUnits + 1 + kMaxSubkeyUnits];
    char16_t value_name_[kMaxNameUnits + 1];
};

// Takes a free identifier for the object and enters it in the table; 0 when there is none.
std::uint32_t Identify(RegistryScan& scan, const RegistryEntry& entry) {
    TextBuffer<kHiveDigits + kMaxNameUnits + 1> full_name;
    full_name.AppendHex(entry.hive).Append(entry.key_path);
    if (!entry.is_key) {
        full_name.AppendUnit(kNameSeparator).Append(entry.value_name);
    }
    if (full_name.cut()) {
        return 0;
    }
    std::uint32_t TolvOID = 0;
    return scan.objects.Generate(full_name.text(), entry, TolvOID, scan.holders) ? TolvOID : 0;
}

}  // namespace

void ScanRegistry(RegistryScan& scan, std::uint32_t hive, const char16_t* key_path,
                  RegistryMaker maker) {
    // Too big for the stack of a device's thread.
    const std::unique_ptr<Walk> walk(new (std::nothrow) Walk(scan, hive, maker));
    if (walk == nullptr) {
        scan.left_out.NoteLackOfMemory();
    } else if (walk->Start(key_path)) {
        walk->VisitKey();
    }
}

void MakeRegistryObject(RegistryScan& scan, const RegistryEntry& entry) {
    if (IsExcludedRegistryObject(entry.hive, entry.key_path, entry.value_name)) {
        return;
    }
    const std::uint32_t TolvOID = Identify(scan, entry);
    if (scan.objects.lacks_memory()) {
        scan.left_out.NoteLackOfMemory();
    }
    InfoBlock block;
    if (TolvOID == 0 || !scan.info.GetOIDInfo(TolvOID, 0, block)) {
        return;
    }
    ObjectRecord record{};
    record.TolvOID = TolvOID;
    record.info_checksum = Checksum16(block.bytes(), block.size());
    record.content_fingerprint =
        entry.is_key ? kKeyFingerprint : Checksum16(entry.data, entry.data_bytes);
    record.flags = JF_PRESENT;
    record.type = entry.is_key ? ObjectType::kRegistryKey : ObjectType::kRegistryValue;
    if (!scan.list.AddObject(record)) {
        scan.left_out.NoteLackOfMemory();
    }
}

}  // namespace tolvenar
