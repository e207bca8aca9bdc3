// Finds captions whatever the case of their letters. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "difftree/model/node_record.h"
#include "difftree/model/tree_control.h"

namespace tolvenar {

// Longer captions are cut: a line with an install directory is the longest there is.
constexpr std::size_t kCaptionUnits = 300;  // with terminator

// A caption in the letters that stand for either case.
class FoldedCaption {
public:
    FoldedCaption(TreeControl& control, std::u16string_view caption);
    FoldedCaption(const FoldedCaption&) = delete;
    FoldedCaption& operator=(const FoldedCaption&) = delete;

    std::u16string_view text() const { return {units_, length_}; }
    std::uint32_t hash() const;

private:
    char16_t units_[kCaptionUnits];
    std::size_t length_;
};

bool EqualIgnoringCase(TreeControl& control, std::u16string_view a, std::u16string_view b);

// A copy of `text` with a terminator, cut to a caption's length; null when there is no memory.
std::unique_ptr<char16_t[]> CopyCaption(std::u16string_view text);

// Captions that somebody else owns, found without a walk over all of a scope.
class CaptionIndex {
public:
    explicit CaptionIndex(TreeControl& control) : control_(control) {}
    CaptionIndex(const CaptionIndex&) = delete;
    CaptionIndex& operator=(const CaptionIndex&) = delete;

    IndexedCaption* Find(const void* scope, const FoldedCaption& caption) const;
    // Enters `entry`, whose caption and scope are set and whose caption is not there yet. False
    // when there is no memory.
    bool Add(IndexedCaption& entry, const FoldedCaption& caption);

private:
    TreeControl& control_;
    HashIndex<IndexedCaption> index_;
};

}  // namespace tolvenar
