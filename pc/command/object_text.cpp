#include "pc/command/object_text.h"

#include <algorithm>

#include "difftree/model/data_text.h"
#include "pc/text/file_time.h"
#include "pc/text/utf.h"

namespace tolvenar::pc {
namespace {

void AppendLocalTime(std::uint32_t low, std::uint32_t high, TextBuilder& text) {
    text.Append(ToUtf16(LocalText(FileTime::Of(low, high))).c_str());
}

std::vector<std::string> SplitLines(std::u16string text) {
    text.erase(std::remove(text.begin(), text.end(), u'\r'), text.end());
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find(u'\n', begin), text.size());
        lines.push_back(Printable(std::u16string_view(text).substr(begin, end - begin)));
        begin = end + 1;
    }
    return lines;
}

// Bytes of no known code page: each as the Western one has it.
std::u16string TextOfBytes(const std::vector<std::uint8_t>& data) {
    return {data.begin(), data.end()};
}

}  // namespace

bool IsText(const std::vector<std::uint8_t>& data) {
    return data.empty() || KindOfText(data.data(), data.size()) != TextKind::kNone;
}

std::vector<std::string> LinesOf(const StoredObject& object,
                                 const std::vector<std::uint8_t>& data) {
    // A byte is three units at most, a property some forty more.
    std::vector<char16_t> buffer(4 * data.size() + 64);
    TextBuilder text(buffer.data(), buffer.size());
    text.Clear();
    switch (object.type()) {
        case ObjectType::kRegistryValue:
            AppendValueData(object.value_type(), data.data(), data.size(), text);
            break;
        case ObjectType::kDatabaseRecord:
            AppendProperties(data.data(), data.size(), object.property_count(), AppendLocalTime,
                             text);
            break;
        case ObjectType::kFile:
            switch (KindOfText(data.data(), data.size())) {
                case TextKind::kBytes: return SplitLines(TextOfBytes(data));
                case TextKind::kUtf16: AppendLines(data.data(), data.size(), text); break;
                default: break;
            }
            break;
        default: break;
    }
    return SplitLines({text.text(), text.length()});
}

}  // namespace tolvenar::pc
