// reg-import, reg-export, reg-set, reg-delete, reg-lock, reg-unlock: the device's registry.
#include "simulator/command/command_row.h"
#include "simulator/command/registry_edit.h"
#include "simulator/registry/registry.h"
#include "simulator/registry/registry_text.h"
#include "simulator/store/hex.h"

namespace sim {
namespace {

using registry::KeyId;
using registry::Registry;

constexpr struct {
    const char* name;
    std::uint32_t type;
} kTypes[] = {
    {"REG_SZ", registry::kSz},
    {"REG_EXPAND_SZ", registry::kExpandSz},
    {"REG_BINARY", registry::kBinary},
    {"REG_DWORD", registry::kDword},
    {"REG_MULTI_SZ", registry::kMultiSz},
};

std::uint32_t TypeOf(const std::string& word) {
    for (const auto& row : kTypes) {
        if (word == row.name) {
            return row.type;
        }
    }
    return static_cast<std::uint32_t>(Number(word));
}

KeyId PlaceOf(const Registry& registry, const std::string& path) {
    std::u16string rest;
    const auto root = registry::RootOfPath(Wide16(path), rest);
    KeyId place;
    if (!root || registry.Place(*root, rest, place) != registry::kOk) {
        throw CommandError("not a registry key: " + path);
    }
    return place;
}

std::string TextBytes(const std::string& text) {
    const std::u16string units = Wide16(text) + u'\0';
    return std::string(reinterpret_cast<const char*>(units.data()),
                       units.size() * sizeof(char16_t));
}

std::string NumberBytes(std::uint32_t number) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(number >> shift);
    }
    return bytes;
}

// Only the type's name tells that its data is text or a number; a type's number stands with hex.
std::string DataOf(const std::string& type, const std::string& word) {
    if (type == "REG_SZ" || type == "REG_EXPAND_SZ") {
        return TextBytes(word);
    }
    if (type == "REG_DWORD") {
        return NumberBytes(static_cast<std::uint32_t>(Number(word)));
    }
    const auto bytes = FromHex(word);
    if (!bytes) {
        throw CommandError("not hexadecimal: " + word);
    }
    return *bytes;
}

Json HoldKey(Device& device, const std::string& path, bool is_held) {
    Registry registry(device);
    return DoneOrThrow(registry.Hold(PlaceOf(registry, path), is_held),
                       "not in the registry: " + path);
}

}  // namespace

Json RunRegSet(Device& device, const Words& words) {
    SetRegistryValue(device, words[0], words[1], TypeOf(words[2]), DataOf(words[2], words[3]));
    return Done();
}

Json RunRegDelete(Device& device, const Words& words) {
    Registry registry(device);
    const KeyId place = PlaceOf(registry, words[0]);
    const bool done =
        words.size() > 1 ? registry.DeleteValue(place, Wide16(words[1])) : registry.Delete(place);
    return DoneOrThrow(done, "not in the registry: " + words.back());
}

Json RunRegLock(Device& device, const Words& words) { return HoldKey(device, words[0], true); }

Json RunRegUnlock(Device& device, const Words& words) { return HoldKey(device, words[0], false); }

Json RunRegImport(Device& device, const Words& words) {
    registry::ImportText(device, ReadHostFile(words[0]));
    return Done();
}

Json RunRegExport(Device& device, const Words& words) {
    WriteHostFile(words[0], registry::ExportText(device));
    return Done();
}

void SetRegistryValue(Device& device, const std::string& path, const std::string& name,
                      std::uint32_t type, const std::string& bytes) {
    std::u16string rest;
    const auto root = registry::RootOfPath(Wide16(path), rest);
    Registry registry(device);
    const LogStore::Change change(device.store());
    KeyId place = root.value_or(KeyId());
    bool created = false;
    if (!root ||
        (!rest.empty() && registry.Create(*root, rest, u"", place, created) != registry::kOk)) {
        throw CommandError("not a registry key: " + path);
    }
    registry.Set(place, {Wide16(name), type, bytes});
}

void SetRegistryText(Device& device, const std::string& path, const std::string& name,
                     const std::string& text) {
    SetRegistryValue(device, path, name, registry::kSz, TextBytes(text));
}

void SetRegistryNumber(Device& device, const std::string& path, const std::string& name,
                       std::uint32_t number) {
    SetRegistryValue(device, path, name, registry::kDword, NumberBytes(number));
}

}  // namespace sim
