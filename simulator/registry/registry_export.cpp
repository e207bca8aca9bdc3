#include <algorithm>
#include <cstdio>
#include <cstring>

#include "simulator/registry/registry_text.h"
#include "simulator/store/utf8.h"

namespace sim::registry {
namespace {

constexpr std::size_t kLineWidth = 77;  // a byte, a comma and a backslash still fit into 80 columns

std::string Escaped(std::u16string_view text) {
    std::u16string escaped;
    for (const char16_t unit : text) {
        if (unit == u'\\' || unit == u'"') {
            escaped += u'\\';
        }
        escaped += unit;
    }
    return Utf8(escaped);
}

bool IsUnpairedSurrogate(std::u16string_view text, std::size_t at) {
    const bool high = (text[at] & 0xFC00) == 0xD800;
    const bool low = (text[at] & 0xFC00) == 0xDC00;
    const bool after_high = at > 0 && (text[at - 1] & 0xFC00) == 0xD800;
    const bool before_low = at + 1 < text.size() && (text[at + 1] & 0xFC00) == 0xDC00;
    return (high && !before_low) || (low && !after_high);
}

// The text of data that is one terminated string which a quoted form carries unchanged.
std::optional<std::u16string> PlainText(const std::string& data) {
    if (data.size() < sizeof(char16_t) || data.size() % sizeof(char16_t) != 0) {
        return std::nullopt;
    }
    std::u16string text(data.size() / sizeof(char16_t), u'\0');
    std::memcpy(&text[0], data.data(), data.size());
    if (text.back() != u'\0') {
        return std::nullopt;
    }
    text.pop_back();
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] < u' ' || IsUnpairedSurrogate(text, at)) {
            return std::nullopt;
        }
    }
    return text;
}

std::string HexLines(std::string line, const std::string& data) {
    std::string out;
    for (std::size_t i = 0; i < data.size(); ++i) {
        char byte[4];
        std::snprintf(byte, sizeof byte, "%02x", static_cast<unsigned>(data[i]) & 0xFF);
        line += byte;
        if (i + 1 == data.size()) {
            break;
        }
        line += ',';
        if (line.size() >= kLineWidth) {
            out += line + "\\\r\n";
            line = "  ";
        }
    }
    return out + line;
}

std::string ValueLine(const Value& value) {
    const std::string name = value.name.empty() ? "@" : "\"" + Escaped(value.name) + "\"";
    const std::optional<std::u16string> text =
        value.type == kSz ? PlainText(value.data) : std::nullopt;
    if (text) {
        return name + "=\"" + Escaped(*text) + "\"\r\n";
    }
    char mark[24] = "hex:";
    std::uint32_t number = 0;
    if (value.type == kDword && value.data.size() == sizeof number) {
        std::memcpy(&number, value.data.data(), sizeof number);
        std::snprintf(mark, sizeof mark, "dword:%08x", static_cast<unsigned>(number));
        return name + "=" + mark + "\r\n";
    }
    if (value.type != kBinary) {
        std::snprintf(mark, sizeof mark, "hex(%x):", static_cast<unsigned>(value.type));
    }
    return HexLines(name + "=" + mark, value.data) + "\r\n";
}

void ExportKey(const Registry& registry, const KeyId& key, const std::u16string& path,
               std::string& out) {
    out += "\r\n[" + Utf8(path) + "]\r\n";
    std::vector<std::u16string> names = registry.Values(key);
    std::sort(names.begin(), names.end());
    for (const std::u16string& name : names) {
        out += ValueLine(*registry.Find(key, name));
    }
    std::vector<KeyId> subkeys = registry.Subkeys(key);
    std::sort(subkeys.begin(), subkeys.end());
    for (const KeyId& subkey : subkeys) {
        ExportKey(registry, subkey, path + u"\\" + registry.NamesOf(subkey).name, out);
    }
}

}  // namespace

std::string ExportText(Device& device) {
    LogStore::View view(device.store());
    const Registry registry(device);
    std::string out = "REGEDIT4\r\n";
    for (std::uint32_t root = 0; root < kRootCount; ++root) {
        const KeyId key = RootId(root);
        ExportKey(registry, key, RootName(key, false), out);
    }
    return out;
}

}  // namespace sim::registry
