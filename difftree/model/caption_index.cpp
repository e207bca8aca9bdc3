#include "difftree/model/caption_index.h"

#include <algorithm>
#include <new>

namespace tolvenar {
namespace {

constexpr std::size_t kFirstBucketCount = 256;

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
    std::uint32_t hash = 0x811C9DC5u;
    for (const char16_t unit : text()) {
        hash = (hash ^ unit) * 0x01000193u;
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

IndexedCaption*& CaptionIndex::BucketOf(const void* scope, std::uint32_t hash) const {
    const auto place = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(scope) >> 3);
    const std::uint32_t mixed = (hash ^ place) * 0x9E3779B1u;
    return buckets_[(mixed ^ (mixed >> 15)) & (bucket_count_ - 1)];
}

IndexedCaption* CaptionIndex::Find(const void* scope, const FoldedCaption& caption) const {
    if (bucket_count_ == 0) {
        return nullptr;
    }
    const std::uint32_t hash = caption.hash();
    IndexedCaption* entry = BucketOf(scope, hash);
    while (entry != nullptr && (entry->scope != scope || entry->hash != hash ||
                                FoldedCaption(control_, entry->caption).text() != caption.text())) {
        entry = entry->bucket_next;
    }
    return entry;
}

// Doubles the buckets, which are a power of two. False, with everything as it was, without memory.
bool CaptionIndex::Grow() {
    const std::size_t larger = bucket_count_ == 0 ? kFirstBucketCount : bucket_count_ * 2;
    std::unique_ptr<IndexedCaption*[]> buckets(new (std::nothrow) IndexedCaption* [larger] {});
    if (buckets == nullptr) {
        return false;
    }
    const std::size_t smaller = bucket_count_;
    std::swap(buckets_, buckets);
    bucket_count_ = larger;
    for (std::size_t i = 0; i < smaller; ++i) {
        for (IndexedCaption* entry = buckets[i]; entry != nullptr;) {
            IndexedCaption* const next = entry->bucket_next;
            IndexedCaption*& bucket = BucketOf(entry->scope, entry->hash);
            entry->bucket_next = bucket;
            bucket = entry;
            entry = next;
        }
    }
    return true;
}

bool CaptionIndex::Add(IndexedCaption& entry, const FoldedCaption& caption) {
    if (count_ >= bucket_count_ && !Grow()) {
        return false;
    }
    entry.hash = caption.hash();
    IndexedCaption*& bucket = BucketOf(entry.scope, entry.hash);
    entry.bucket_next = bucket;
    bucket = &entry;
    ++count_;
    return true;
}

}  // namespace tolvenar
