// Windows CE's view of the registry: handles, buffers and sizes over `sim::registry`. Sizes of
// names are in characters, without the terminator where they come out; access rights do not exist.
#include <algorithm>
#include <cstring>
#include <windows.h>

#include "simulator/exports/gated.h"
#include "simulator/registry/open_keys.h"

namespace {

using sim::registry::KeyId;
using sim::registry::OpenKey;
using sim::registry::Registry;
using sim::registry::Value;
using KeyHandle = std::shared_ptr<OpenKey>;

Registry CurrentRegistry() { return Registry(Device::Current()); }

// Runs `body(registry, key)` for an open key that is still there; the last error stays as it was.
template <typename Body, typename... Arguments>
LONG OnKey(Call call, HKEY hkey, Body&& body, const Arguments&... arguments) {
    return sim::GatedStatus(
        call,
        [&]() -> long {
            LastError keep;
            const KeyHandle key = sim::registry::KeyOfHandle(hkey);
            if (!key) {
                return ERROR_INVALID_HANDLE;
            }
            Registry registry = CurrentRegistry();
            if (!registry.Exists(key->id())) {
                return ERROR_KEY_DELETED;
            }
            return body(registry, *key);
        },
        hkey, arguments...);
}

void PutNumber(LPDWORD out, std::size_t number) {
    if (out != nullptr) {
        *out = static_cast<DWORD>(number);
    }
}

// Whether `text` and its terminator fit; then it is written and its length told.
bool PutText(const std::u16string& text, LPWSTR buffer, LPDWORD units) {
    if (text.size() >= *units) {
        return false;
    }
    std::copy(text.begin(), text.end(), buffer);
    buffer[text.size()] = L'\0';
    *units = static_cast<DWORD>(text.size());
    return true;
}

// `size` comes out as the data's size in any case; without a buffer that is all.
LONG PutData(const std::string& data, LPBYTE buffer, LPDWORD size) {
    const bool fits = size == nullptr || buffer == nullptr || data.size() <= *size;
    PutNumber(size, data.size());
    if (!fits) {
        return ERROR_MORE_DATA;
    }
    if (buffer != nullptr) {
        std::memcpy(buffer, data.data(), data.size());
    }
    return ERROR_SUCCESS;
}

LONG OpenKeyBelow(Registry& registry, const OpenKey& key, LPCWSTR subkey, PHKEY result) {
    KeyId place;
    if (result == nullptr) {
        return ERROR_INVALID_PARAMETER;
    }
    if (const long error = registry.Place(key.id(), sim::StoredText(subkey), place)) {
        return error;
    }
    if (!registry.Exists(place)) {
        return ERROR_FILE_NOT_FOUND;
    }
    *result = static_cast<HKEY>(sim::registry::OpenHandle(place));
    return ERROR_SUCCESS;
}

LONG DeleteKeyBelow(Registry& registry, const OpenKey& key, LPCWSTR subkey) {
    KeyId place;
    if (const long error = registry.Place(key.id(), sim::StoredText(subkey), place)) {
        return error;
    }
    if (place == key.id()) {
        return ERROR_INVALID_PARAMETER;
    }
    if (!registry.Exists(place)) {
        return ERROR_FILE_NOT_FOUND;
    }
    const bool refuses_tree = registry.device().Setting("registry.delete.key", "tree") == "refused";
    if (sim::registry::IsOpen(place) || registry.IsHeld(place) ||
        (refuses_tree && !registry.Subkeys(place).empty())) {
        return ERROR_ACCESS_DENIED;
    }
    registry.Delete(place);
    return ERROR_SUCCESS;
}

constexpr char16_t kUnnamedAsListed[] = u"Default";

// How the device tells the name of the value that has none.
std::string UnnamedValue(const Registry& registry) {
    return registry.device().Setting("registry.unnamed", "empty");
}

std::u16string ListedName(const Registry& registry, const std::u16string& name) {
    return name.empty() && UnnamedValue(registry) != "empty" ? kUnnamedAsListed : name;
}

// The name of a value as a call has it; on some devices the unnamed one may be called as it is
// listed.
std::u16string CalledName(const Registry& registry, LPCWSTR called) {
    std::u16string name = sim::StoredText(called);
    const bool is_unnamed = UnnamedValue(registry) == "default" &&
                            sim::FoldName(name) == sim::FoldName(kUnnamedAsListed);
    return is_unnamed ? std::u16string() : name;
}

LONG EnumKey(const Registry& registry, OpenKey& key, DWORD index, LPWSTR name, LPDWORD name_units,
             LPWSTR class_name, LPDWORD class_units) {
    if (name == nullptr || name_units == nullptr ||
        (class_name != nullptr && class_units == nullptr)) {
        return ERROR_INVALID_PARAMETER;
    }
    const std::vector<KeyId>& subkeys = key.Subkeys(registry);
    if (index >= subkeys.size()) {
        return ERROR_NO_MORE_ITEMS;
    }
    const sim::registry::KeyNames names = registry.NamesOf(subkeys[index]);
    if (!PutText(names.name, name, name_units)) {
        return ERROR_MORE_DATA;
    }
    if (class_name != nullptr && !PutText(names.class_name, class_name, class_units)) {
        return ERROR_MORE_DATA;
    }
    return ERROR_SUCCESS;
}

LONG EnumValue(const Registry& registry, OpenKey& key, DWORD index, LPWSTR name, LPDWORD name_units,
               LPDWORD type, LPBYTE data, LPDWORD size) {
    if (name == nullptr || name_units == nullptr || (data != nullptr && size == nullptr)) {
        return ERROR_INVALID_PARAMETER;
    }
    const std::vector<std::u16string>& values = key.Values(registry);
    if (index >= values.size()) {
        return ERROR_NO_MORE_ITEMS;
    }
    const std::optional<Value> value = registry.Find(key.id(), values[index]);
    if (!value) {
        return ERROR_NO_MORE_ITEMS;
    }
    if (!PutText(ListedName(registry, value->name), name, name_units)) {
        return ERROR_MORE_DATA;
    }
    PutNumber(type, value->type);
    return PutData(value->data, data, size);
}

struct KeyFigures {
    std::size_t subkeys = 0;
    std::size_t longest_name = 0;
    std::size_t longest_class = 0;
    std::size_t values = 0;
    std::size_t longest_value_name = 0;
    std::size_t longest_data = 0;
};

KeyFigures FiguresOf(const Registry& registry, OpenKey& key) {
    KeyFigures figures;
    for (const KeyId& subkey : key.Subkeys(registry)) {
        const sim::registry::KeyNames names = registry.NamesOf(subkey);
        ++figures.subkeys;
        figures.longest_name = std::max(figures.longest_name, names.name.size());
        figures.longest_class = std::max(figures.longest_class, names.class_name.size());
    }
    for (const std::u16string& name : key.Values(registry)) {
        const std::optional<Value> value = registry.Find(key.id(), name);
        if (!value) {
            continue;
        }
        ++figures.values;
        figures.longest_value_name =
            std::max(figures.longest_value_name, ListedName(registry, value->name).size());
        figures.longest_data = std::max(figures.longest_data, value->data.size());
    }
    // Whether these lengths count the terminator is not the same on every device.
    if (registry.device().Setting("registry.lengths", "") == "with-terminator") {
        ++figures.longest_name;
        ++figures.longest_class;
        ++figures.longest_value_name;
    }
    return figures;
}

}  // namespace

LONG WINAPI RegOpenKeyExW(HKEY hkey, LPCWSTR subkey, DWORD, REGSAM, PHKEY result) {
    return OnKey(
        Call::RegOpenKeyExW, hkey,
        [&](Registry& registry, OpenKey& key) {
            return OpenKeyBelow(registry, key, subkey, result);
        },
        subkey);
}

LONG WINAPI RegCreateKeyExW(HKEY hkey, LPCWSTR subkey, DWORD, LPWSTR class_name, DWORD, REGSAM,
                            LPSECURITY_ATTRIBUTES, PHKEY result, LPDWORD disposition) {
    return OnKey(
        Call::RegCreateKeyExW, hkey,
        [&](Registry& registry, OpenKey& key) -> long {
            const std::u16string name_of_class = sim::StoredText(class_name);
            if (subkey == nullptr || result == nullptr ||
                name_of_class.size() > sim::registry::kMaxNameUnits) {
                return ERROR_INVALID_PARAMETER;
            }
            KeyId place;
            bool created = false;
            if (const long error = registry.Create(key.id(), sim::StoredText(subkey), name_of_class,
                                                   place, created)) {
                return error;
            }
            *result = static_cast<HKEY>(sim::registry::OpenHandle(place));
            PutNumber(disposition, created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY);
            return ERROR_SUCCESS;
        },
        subkey);
}

LONG WINAPI RegCloseKey(HKEY hkey) {
    return sim::GatedStatus(
        Call::RegCloseKey,
        [&]() -> long {
            return sim::registry::CloseKeyHandle(hkey) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
        },
        hkey);
}

LONG WINAPI RegQueryValueExW(HKEY hkey, LPCWSTR name, LPDWORD, LPDWORD type, LPBYTE data,
                             LPDWORD size) {
    return OnKey(
        Call::RegQueryValueExW, hkey,
        [&](Registry& registry, OpenKey& key) -> long {
            if (data != nullptr && size == nullptr) {
                return ERROR_INVALID_PARAMETER;
            }
            const std::optional<Value> value = registry.Find(key.id(), CalledName(registry, name));
            if (!value) {
                return ERROR_FILE_NOT_FOUND;
            }
            PutNumber(type, value->type);
            return PutData(value->data, data, size);
        },
        name);
}

LONG WINAPI RegSetValueExW(HKEY hkey, LPCWSTR name, DWORD, DWORD type, const BYTE* data,
                           DWORD size) {
    return OnKey(
        Call::RegSetValueExW, hkey,
        [&](Registry& registry, OpenKey& key) -> long {
            Value value{CalledName(registry, name), type, {}};
            const std::int64_t most = registry.device().NumberSetting("registry.value.limit", size);
            // Whether no data may be a null is not the same on every system.
            const bool refuses_null =
                size != 0 || registry.device().Setting("registry.null.data", "") == "refused";
            if (value.name.size() > sim::registry::kMaxNameUnits || size > most ||
                (data == nullptr && refuses_null)) {
                return ERROR_INVALID_PARAMETER;
            }
            if (size != 0) {
                value.data.assign(reinterpret_cast<const char*>(data), size);
            }
            registry.Set(key.id(), value);
            return ERROR_SUCCESS;
        },
        name, type, size);
}

LONG WINAPI RegDeleteValueW(HKEY hkey, LPCWSTR name) {
    return OnKey(
        Call::RegDeleteValueW, hkey,
        [&](Registry& registry, OpenKey& key) -> long {
            return registry.DeleteValue(key.id(), CalledName(registry, name))
                       ? ERROR_SUCCESS
                       : ERROR_FILE_NOT_FOUND;
        },
        name);
}

// The registry is in the object store, which is its own medium.
LONG WINAPI RegFlushKey(HKEY hkey) {
    return OnKey(Call::RegFlushKey, hkey,
                 [](Registry&, OpenKey&) -> long { return ERROR_SUCCESS; });
}

LONG WINAPI RegDeleteKeyW(HKEY hkey, LPCWSTR subkey) {
    return OnKey(
        Call::RegDeleteKeyW, hkey,
        [&](Registry& registry, OpenKey& key) { return DeleteKeyBelow(registry, key, subkey); },
        subkey);
}

LONG WINAPI RegEnumKeyExW(HKEY hkey, DWORD index, LPWSTR name, LPDWORD name_units, LPDWORD,
                          LPWSTR class_name, LPDWORD class_units, PFILETIME) {
    return OnKey(
        Call::RegEnumKeyExW, hkey,
        [&](Registry& registry, OpenKey& key) {
            return EnumKey(registry, key, index, name, name_units, class_name, class_units);
        },
        index);
}

LONG WINAPI RegEnumValueW(HKEY hkey, DWORD index, LPWSTR name, LPDWORD name_units, LPDWORD,
                          LPDWORD type, LPBYTE data, LPDWORD size) {
    return OnKey(
        Call::RegEnumValueW, hkey,
        [&](Registry& registry, OpenKey& key) {
            return EnumValue(registry, key, index, name, name_units, type, data, size);
        },
        index);
}

LONG WINAPI RegQueryInfoKeyW(HKEY hkey, LPWSTR class_name, LPDWORD class_units, LPDWORD,
                             LPDWORD subkeys, LPDWORD longest_name, LPDWORD longest_class,
                             LPDWORD values, LPDWORD longest_value_name, LPDWORD longest_data,
                             LPDWORD security_size, PFILETIME last_write) {
    return OnKey(Call::RegQueryInfoKeyW, hkey, [&](Registry& registry, OpenKey& key) -> long {
        const KeyFigures figures = FiguresOf(registry, key);
        PutNumber(subkeys, figures.subkeys);
        PutNumber(longest_name, figures.longest_name);
        PutNumber(longest_class, figures.longest_class);
        PutNumber(values, figures.values);
        PutNumber(longest_value_name, figures.longest_value_name);
        PutNumber(longest_data, figures.longest_data);
        PutNumber(security_size, 0);
        if (last_write != nullptr) {
            *last_write = FILETIME{};
        }
        if (class_name == nullptr) {
            return ERROR_SUCCESS;
        }
        if (class_units == nullptr) {
            return ERROR_INVALID_PARAMETER;
        }
        const bool fits = PutText(registry.NamesOf(key.id()).class_name, class_name, class_units);
        return fits ? ERROR_SUCCESS : ERROR_MORE_DATA;
    });
}
