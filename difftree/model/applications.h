// Recognises installed applications among registry objects. Platform-free.
#pragma once

#include <cstdint>
#include <string_view>

#include "difftree/model/caption_index.h"
#include "difftree/model/difference_enumerator.h"

namespace tolvenar {

constexpr std::size_t kApplicationNameUnits = 101;  // with terminator
constexpr std::size_t kInstallDirectoryUnits = 261;

struct InstalledApplication : IndexedCaption {  // the caption is the name of its registry key
    char16_t name[kApplicationNameUnits];
    char16_t directory[kInstallDirectoryUnits];  // empty: not known
    std::uint32_t flags;                         // of every object below its key, together
    bool is_installed;
    InstalledApplication* next;
};

// The name cut in two where the last component of the install directory begins in it. The publisher
// keeps the blank at its end; it is empty, and the program the whole name, when there is no cut.
struct ApplicationName {
    std::u16string_view publisher;
    std::u16string_view program;
};
ApplicationName SplitApplicationName(std::u16string_view name, std::u16string_view directory);

// The applications of one build.
class Applications {
public:
    explicit Applications(TreeControl& control) : control_(control), index_(control) {}
    ~Applications();
    Applications(const Applications&) = delete;
    Applications& operator=(const Applications&) = delete;

    // Looks at a registry object whose node would have `flags`. False when there is no memory.
    bool Recognise(std::u16string_view key_path, std::u16string_view value_name,
                   std::uint32_t flags, DifferenceEnumerator& enumerator);
    const InstalledApplication* first() const { return first_; }  // newest first

private:
    InstalledApplication* FindOrMake(std::u16string_view name);

    TreeControl& control_;
    CaptionIndex index_;
    InstalledApplication* first_ = nullptr;
};

}  // namespace tolvenar
