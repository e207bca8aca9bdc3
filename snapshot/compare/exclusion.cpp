#include "snapshot/compare/exclusion.h"

#include <string_view>

#include "snapshot/text/letter_case.h"

namespace tolvenar {
namespace {

using Text = std::u16string_view;

constexpr const char16_t* kAny = nullptr;

// A row excludes the entry when its name is equal and, where a folder is given, the folder too.
struct NameRule {
    const char16_t* folder;
    const char16_t* name;
};
constexpr NameRule kNameRules[] = {
    {u"\\Windows", u"wince.nls"}, {u"\\Windows\\Activesync", u"SchedSync.dat"},
    {kAny, u"Storage.bkp"},       {kAny, u"Journal.bkp"},
    {kAny, u"Journal1.bkp"},      {kAny, u"Recycled"},
    {kAny, u"new_expl.exe"},
};

// Everything in and below a folder whose path begins so; a separator behind it is not asked for, so
// that "\RecycledStuff" is left out with the recycle bin.
constexpr const char16_t* kFolderPrefixes[] = {u"\\Recycled"};

// Keys of HKEY_LOCAL_MACHINE whose path contains the text, with all that is below.
constexpr const char16_t* kKeyRules[] = {u"Drivers\\Active", u"Comm\\Tcpip\\Hosts\\ppp_peer"};

struct ValueRule {
    std::uint32_t hive;
    const char16_t* key_path;
    const char16_t* value_name;
};
// Asked for with the keys of HKEY_LOCAL_MACHINE.
constexpr ValueRule kMachineValueRules[] = {
    {kHiveLocalMachine, u"Comm\\SecurityProviders\\SCHANNEL", u"Seed"},
    {kHiveLocalMachine, u"Comm\\SecurityProviders\\SCHANNEL", u"RNG"},
};
// Asked for with every value.
constexpr ValueRule kValueRules[] = {
    {kHiveCurrentUser, u"Software\\Microsoft\\AirSync\\Connection", u"LastAutoSyncTime"},
    {kHiveLocalMachine, u"SOFTWARE\\Microsoft\\Shell\\Rai\\:MSSHELL32", u"4"},
};

constexpr Text kOldJournalMark = u"_old";
constexpr Text kLogName = u"tolvenar_log.txt";

constexpr Text kRecycleDatabases = u"\\RecycleInfo";

bool BeginsWith(Text text, Text beginning) {
    return text.size() >= beginning.size() && Text(text.data(), beginning.size()) == beginning;
}

bool BeginsWithIgnoringCase(Text text, Text beginning) {
    return text.size() >= beginning.size() &&
           EqualIgnoringCase(Text(text.data(), beginning.size()), beginning);
}

bool IsNumber(Text text) { return text.find_first_not_of(u"0123456789") == Text::npos; }

// What is behind `beginning`; false when the text begins otherwise.
bool Skip(Text& text, Text beginning) {
    if (!BeginsWithIgnoringCase(text, beginning)) {
        return false;
    }
    text.remove_prefix(beginning.size());
    return true;
}

// A journal that was moved aside: its name, the mark, and a number or none.
bool IsOldJournal(Text name, const StorageFileNames& storage_files) {
    const char16_t* journal = storage_files.names[kJournalName];
    return journal != nullptr && *journal != 0 && Skip(name, journal) &&
           Skip(name, kOldJournalMark) && IsNumber(name);
}

bool IsLogFile(Text folder, Text name, const StorageFileNames& storage_files) {
    return storage_files.folder != nullptr && EqualIgnoringCase(name, kLogName) &&
           EqualIgnoringCase(folder, storage_files.folder);
}

// Without regard to the case of letters, as the device finds the files: the program's own journal
// in a state would be deleted by a restore.
bool IsStorageFile(Text folder, Text name, const StorageFileNames& storage_files) {
    for (const char16_t* file : storage_files.names) {
        if (file == nullptr || *file == 0) {
            continue;
        }  // no storage is configured
        if (EqualIgnoringCase(name, file)) {
            return true;
        }
        if (folder.empty() || folder[0] != u'\\') {
            continue;
        }
        if (BeginsWithIgnoringCase(Text(folder.data() + 1, folder.size() - 1), file)) {
            return true;
        }
    }
    return IsOldJournal(name, storage_files) || IsLogFile(folder, name, storage_files);
}

bool IsExcludedFile(Text folder, Text name, const StorageFileNames* storage_files) {
    for (const NameRule& rule : kNameRules) {
        if (name == rule.name && (rule.folder == kAny || folder == rule.folder)) {
            return true;
        }
    }
    for (const char16_t* prefix : kFolderPrefixes) {
        if (BeginsWith(folder, prefix)) {
            return true;
        }
    }
    return storage_files != nullptr && IsStorageFile(folder, name, *storage_files);
}

bool IsExcludedKey(Text key_path) {
    for (const char16_t* part : kKeyRules) {
        if (key_path.find(part) != Text::npos) {
            return true;
        }
    }
    return false;
}

template <std::size_t kRows>
bool AnyRow(const ValueRule (&rules)[kRows], std::uint32_t hive, Text key_path, Text value_name) {
    for (const ValueRule& rule : rules) {
        if (hive == rule.hive && key_path == rule.key_path && value_name == rule.value_name) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool IsExcluded(ExclusionKind kind, const char16_t* path, const char16_t* name,
                const StorageFileNames* storage_files) {
    if (path == nullptr) {
        return false;
    }
    if (kind == ExclusionKind::kRegistryKey) {
        return IsExcludedKey(path);
    }
    if (name == nullptr) {
        return false;
    }
    if (kind == ExclusionKind::kFile) {
        return IsExcludedFile(path, name, storage_files);
    }
    return AnyRow(kMachineValueRules, kHiveLocalMachine, path, name);
}

bool IsStoragesOwn(const char16_t* path, const StorageFileNames& storage_files) {
    const Text whole(path);
    const std::size_t backslash = whole.rfind(u'\\');
    return backslash != Text::npos &&
           IsStorageFile(Text(path, backslash), Text(path + backslash + 1), storage_files);
}

bool IsExcludedValue(std::uint32_t hive, const char16_t* key_path, const char16_t* value_name) {
    if (hive == 0 || key_path == nullptr || value_name == nullptr) {
        return false;
    }
    return AnyRow(kValueRules, hive, key_path, value_name);
}

bool IsExcludedRegistryObject(std::uint32_t hive, const char16_t* key_path,
                              const char16_t* value_name) {
    if (hive == kHiveLocalMachine &&
        (IsExcluded(ExclusionKind::kRegistryKey, key_path, nullptr, nullptr) ||
         IsExcluded(ExclusionKind::kRegistryValue, key_path, value_name, nullptr))) {
        return true;
    }
    return IsExcludedValue(hive, key_path, value_name);
}

bool IsExcludedDatabase(const char16_t* name) {
    return name != nullptr && Text(name).find(kRecycleDatabases) != Text::npos;
}

}  // namespace tolvenar
