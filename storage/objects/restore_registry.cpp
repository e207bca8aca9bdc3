#include "storage/objects/restore_registry.h"

#include <cstring>

#include "platform/registry_key.h"
#include "platform/system_function.h"
#include "platform/text.h"
#include "snapshot/compare/exclusion.h"

namespace tolvenar {
namespace {

RestoreOutcome Outcome(LONG status) {
    return status == ERROR_SUCCESS ? RestoreOutcome::kDone : FailWith(static_cast<DWORD>(status));
}

RestoreOutcome RestoreKey(KeptKey& kept, HKEY root, const char16_t* key_path, RestoreMode mode) {
    if (mode == RestoreMode::kDelete) {
        kept.Close();
        // A key that cannot be deleted, as one that is open, does not hold the restore up: the last
        // error tells of it. A hive itself is no key to delete.
        ::SetLastError(static_cast<DWORD>(*key_path == 0 ? ERROR_SUCCESS
                                                         : ::RegDeleteKeyW(root, Wide(key_path))));
        return RestoreOutcome::kDone;
    }
    UniqueHkey key;
    const LONG status = ::RegCreateKeyExW(root, Wide(key_path), 0, nullptr, 0, KEY_ALL_ACCESS,
                                          nullptr, key.Put(), nullptr);
    if (status == ERROR_SUCCESS) {
        key.Close();
    }
    return Outcome(status);
}

bool EqualIgnoringCase(const char16_t* a, const char16_t* b) {
    return ::CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, Wide(a), -1, Wide(b), -1) ==
           CSTR_EQUAL;
}

// Of a system that cannot tell nothing is known to be there.
BOOL IsInstalledLocale(DWORD value) {
    auto* const is_valid = FindSystemFunction<decltype(::IsValidLocale)>(L"IsValidLocale");
    return is_valid != nullptr && is_valid(value, LCID_INSTALLED);
}
BOOL IsKnownCodePage(DWORD value) {
    auto* const is_valid = FindSystemFunction<decltype(::IsValidCodePage)>(L"IsValidCodePage");
    return is_valid != nullptr && is_valid(value);
}

// Values that keep the device from starting when they name what it does not have.
struct LocaleValue {
    const char16_t* name;
    BOOL (*is_valid)(DWORD value);
};
constexpr LocaleValue kLocaleValues[] = {
    {u"DefaultLCID", IsInstalledLocale},
    {u"DefaultACP", IsKnownCodePage},
};

const LocaleValue* FindLocaleValue(std::uint32_t hive, const RegistryName& name) {
    if (hive != kHiveLocalMachine || !EqualIgnoringCase(name.key_path, u"nls")) {
        return nullptr;
    }
    for (const LocaleValue& row : kLocaleValues) {
        if (EqualIgnoringCase(name.value_name, row.name)) {
            return &row;
        }
    }
    return nullptr;
}

bool MayChange(const LocaleValue& guarded, const StoredBytes& data, RestoreMode mode) {
    std::uint32_t value = 0;
    if (mode == RestoreMode::kDelete || data.bytes == nullptr || data.length != sizeof value) {
        return false;
    }
    std::memcpy(&value, data.bytes, sizeof value);
    return guarded.is_valid(value) != FALSE;
}

// Some releases answer 87 for a value that is not there, as the result or as the last error.
LONG DeleteValue(HKEY key, const char16_t* value_name) {
    ::SetLastError(ERROR_SUCCESS);
    const LONG status = ::RegDeleteValueW(key, Wide(value_name));
    const DWORD error = ::GetLastError();
    return status == ERROR_INVALID_PARAMETER || error == ERROR_INVALID_PARAMETER ? ERROR_SUCCESS
                                                                                 : status;
}

LONG RestoreValueOf(HKEY key, const StoredBytes& data, const InfoBlock& block,
                    const RegistryName& name, RestoreMode mode) {
    const LocaleValue* guarded = FindLocaleValue(block.head().hive, name);
    if (guarded != nullptr && !MayChange(*guarded, data, mode)) {
        return ERROR_SUCCESS;
    }
    if (mode == RestoreMode::kDelete) {
        return DeleteValue(key, name.value_name);
    }
    if (!data.complete()) {
        return ERROR_INVALID_DATA;
    }
    // A system may refuse a null even for no data.
    const BYTE nothing = 0;
    return ::RegSetValueExW(key, Wide(name.value_name), 0, block.head().value_type,
                            data.bytes != nullptr ? data.bytes : &nothing, data.length);
}

RestoreOutcome RestoreValue(KeptKey& kept, const StoredBytes& data, const InfoBlock& block,
                            const RegistryName& name, RestoreMode mode) {
    const LONG status = kept.With(block.head().hive, name.key_path, [&](HKEY key) {
        return RestoreValueOf(key, data, block, name, mode);
    });
    if (!kept.is_open()) {
        return mode == RestoreMode::kDelete ? RestoreOutcome::kDone
                                            : FailWith(ERROR_PATH_NOT_FOUND);
    }
    return Outcome(status);
}

}  // namespace

RestoreOutcome RestoreRegistryObject(KeptKey& kept, const StoredBytes& data, const InfoBlock& block,
                                     const RegistryName& name, RestoreMode mode) {
    if (!IsHive(block.head().hive)) {
        return FailWith(ERROR_INVALID_DATA);
    }
    return block.type() == ObjectType::kRegistryKey
               ? RestoreKey(kept, RootKey(block.head().hive), name.key_path, mode)
               : RestoreValue(kept, data, block, name, mode);
}

}  // namespace tolvenar
