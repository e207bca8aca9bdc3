#include "simulator/windows/dialog_template.h"

#include <cstring>

namespace sim::windows {
namespace {

constexpr std::uint16_t kExtendedSignature = 0xFFFF;
constexpr std::uint16_t kOrdinalMark = 0xFFFF;
constexpr std::uint32_t kSetFont = 0x40;  // DS_SETFONT

// Sizes and places that differ between the two forms, in bytes.
struct Form {
    std::size_t style_at;
    std::size_t item_count_at;
    std::size_t head_bytes;  // up to the menu
    std::size_t font_bytes;  // before the face name
    std::size_t item_bytes;  // up to an item's class
};
constexpr Form kOldForm = {0, 8, 18, 2, 18};
constexpr Form kExtendedForm = {12, 16, 26, 6, 24};

class Reader {
public:
    explicit Reader(const void* bytes) : bytes_(static_cast<const std::uint8_t*>(bytes)) {}
    std::uint16_t Word(std::size_t at) const {
        std::uint16_t word;
        std::memcpy(&word, bytes_ + at, sizeof word);
        return word;
    }
    std::uint32_t Double(std::size_t at) const {
        std::uint32_t value;
        std::memcpy(&value, bytes_ + at, sizeof value);
        return value;
    }
    std::size_t AfterText(std::size_t at) const {
        while (Word(at) != 0) {
            at += 2;
        }
        return at + 2;
    }
    // A menu, class or title: nothing, an ordinal behind a mark, or text.
    std::size_t AfterName(std::size_t at) const {
        return Word(at) == kOrdinalMark ? at + 4 : AfterText(at);
    }
    const std::uint8_t* bytes() const { return bytes_; }

private:
    const std::uint8_t* bytes_;
};

std::size_t Aligned(std::size_t at) { return (at + 3) & ~std::size_t{3}; }

std::size_t AfterHead(const Reader& reader, const Form& form, std::size_t class_at) {
    std::size_t at = reader.AfterName(class_at);
    at = reader.AfterText(at);
    if ((reader.Double(form.style_at) & kSetFont) != 0) {
        at = reader.AfterText(at + form.font_bytes);
    }
    return at;
}

std::size_t AfterItems(const Reader& reader, const Form& form, std::size_t at) {
    for (int left = reader.Word(form.item_count_at); left > 0; --left) {
        at = reader.AfterName(Aligned(at) + form.item_bytes);
        at = reader.AfterName(at);
        at += 2u + reader.Word(at);  // creation data behind its size
    }
    return at;
}

void Append(std::vector<std::uint8_t>& out, const Reader& reader, std::size_t from,
            std::size_t to) {
    out.insert(out.end(), reader.bytes() + from, reader.bytes() + to);
}

}  // namespace

std::vector<std::uint8_t> WithDialogClass(const void* bytes) {
    const Reader reader(bytes);
    const Form& form = reader.Word(2) == kExtendedSignature ? kExtendedForm : kOldForm;
    const std::size_t class_at = reader.AfterName(form.head_bytes);
    const std::size_t head_end = AfterHead(reader, form, class_at);
    const std::size_t end = AfterItems(reader, form, Aligned(head_end));
    std::vector<std::uint8_t> out;
    Append(out, reader, 0, class_at);
    std::size_t rest = class_at;
    if (reader.Word(class_at) == 0) {
        const auto* name = reinterpret_cast<const std::uint8_t*>(kDialogClass);
        out.insert(out.end(), name, name + sizeof kDialogClass);
        rest = class_at + 2;
    }
    Append(out, reader, rest, head_end);
    if (end > Aligned(head_end)) {  // items begin at multiples of four, wherever the head ends
        out.resize(Aligned(out.size()));
        Append(out, reader, Aligned(head_end), end);
    }
    return out;
}

}  // namespace sim::windows
