#include "difftree/model/caption_index.h"

#include <algorithm>
#include <new>

namespace tolvenar {
namespace {

// False when a unit is none of ASCII, whose letters are folded here: most captions have no other.
bool FoldAscii(char16_t* text, std::size_t units) {
    bool is_ascii = true;
    for (std::size_t i = 0; i < units; ++i) {
        if (text[i] >= u'A' && text[i] <= u'Z') {
            text[i] = static_cast<char16_t>(text[i] + (u'a' - u'A'));
        }
        is_ascii = is_ascii && text[i] < 0x80;
    }
    return is_ascii;
}

}  // namespace

FoldedCaption::FoldedCaption(TreeControl& control, std::u16string_view caption)
    : length_(caption.copy(units_, kCaptionUnits - 1)) {
    if (!FoldAscii(units_, length_)) {
        control.FoldCase(units_, length_);
    }
}

std::uint32_t FoldedCaption::hash() const {
    std::uint32_t hash = 0;
    for (const char16_t unit : text()) {
        hash = MixBits(hash, unit);
    }
    return hash;
}

bool EqualIgnoringCase(TreeControl& control, std::u16string_view a, std::u16string_view b) {
    return a.size() == b.size() &&
           FoldedCaption(control, a).text() == FoldedCaption(control, b).text();
}

std::unique_ptr<char16_t[]> CopyCaption(std::u16string_view text) {
    const std::size_t units = std::min(text.size(), kCaptionUnits - 1);
    std::unique_ptr<char16_t[]> copy(new (std::nothrow) char16_t[units + 1]);
    if (copy != nullptr) {
        text.copy(copy.get(), units);
        copy[units] = 0;
    }
    return copy;
}

IndexedCaption* CaptionIndex::Find(const void* scope, const FoldedCaption& caption) const {
    const std::uint32_t hash = caption.hash();
    return index_.Find(IndexedCaption::HashIn(scope, hash),
                       [this, scope, hash, &caption](auto& entry) {
                           return entry.scope == scope && entry.caption_hash == hash &&
                                  FoldedCaption(control_, entry.caption).text() == caption.text();
                       });
}

bool CaptionIndex::Add(IndexedCaption& entry, const FoldedCaption& caption) {
    if (!index_.ReserveOneMore()) {
        return false;
    }
    entry.caption_hash = caption.hash();
    index_.Add(entry);
    return true;
}

}  // namespace tolvenar
