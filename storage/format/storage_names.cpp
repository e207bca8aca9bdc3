#include "storage/format/storage_names.h"

#include <algorithm>
#include <string_view>

#include "snapshot/text/text_buffer.h"

namespace tolvenar {
namespace {

bool Join(std::u16string_view path, const char16_t* extension,
          char16_t (&name)[kStorageNameUnits]) {
    TextBuilder buffer(name, kStorageNameUnits);
    buffer.Clear();
    buffer.Append(path.data(), path.size()).Append(extension);
    if (!buffer.cut()) {
        return true;
    }
    buffer.Clear();
    return false;
}

constexpr std::u16string_view kForbidden = u"<>:\"|/*?";

bool IsForbidden(char16_t unit) { return unit < u' ' || kForbidden.find(unit) != kForbidden.npos; }

}  // namespace

bool MakeStorageNames(const char16_t* full_path, StorageNames& names) {
    names = {};
    const std::u16string_view path{full_path};
    if (path.empty() || path.size() >= kStoragePathUnits) {
        return false;
    }
    path.copy(names.path, path.size());
    MakeSavName(names.path, names.sav);
    Join(path, u".jrn", names.journal);
    Join(path, u".jrn_1", names.journal_temporary);
    return true;
}

bool MakeSavName(const char16_t* path, char16_t (&sav)[kStorageNameUnits]) {
    const std::u16string_view text{path};
    return Join(text.substr(0, text.find(u'.')), u".sav", sav);
}

bool MakeOldJournalName(const StorageNames& names, std::uint32_t number,
                        char16_t (&name)[kStorageNameUnits]) {
    TextBuffer<16> extension;
    extension.Append(u".jrn_old");
    if (number > 1) {
        extension.AppendUnsigned(number);
    }
    return Join(names.path, extension.text(), name);
}

const char16_t* NameWithoutFolder(const char16_t* path) {
    const std::size_t backslash = std::u16string_view(path).rfind(u'\\');
    return backslash == std::u16string_view::npos ? path : path + backslash + 1;
}

bool SplitStoragePath(const char16_t* chosen_path, StorageLocation& location) {
    location = {};
    const std::u16string_view path{chosen_path};
    if (path.size() >= kStoragePathUnits) {
        return false;
    }
    const std::u16string_view name{NameWithoutFolder(chosen_path)};
    const std::size_t before_name = path.size() - name.size();
    name.copy(location.stem, name.find(u'.'));
    if (before_name > 0) {
        path.copy(location.folder, before_name - 1);
    }
    return true;
}

NameFault JudgeStorageName(const char16_t* chosen_path) {
    StorageLocation location;
    if (!SplitStoragePath(chosen_path, location)) {
        return NameFault::kTooLong;
    }
    const std::size_t folder_units = std::u16string_view(location.folder).size() + 1;
    const std::size_t stem_units = std::u16string_view(location.stem).size();
    if (folder_units >= kLocationTextUnits || stem_units >= kLocationTextUnits) {
        return NameFault::kTooLong;
    }
    const std::u16string_view name{NameWithoutFolder(chosen_path)};
    if (std::any_of(name.begin(), name.end(), IsForbidden)) {
        return NameFault::kForbidden;
    }
    return stem_units == 0 ? NameFault::kEmpty : NameFault::kNone;
}

}  // namespace tolvenar
