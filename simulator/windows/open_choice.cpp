#include "simulator/windows/open_choice.h"

#include <algorithm>
#include <cwchar>

#include "simulator/files/files.h"
#include "simulator/files/path.h"

namespace sim::windows {
namespace {

constexpr std::uint32_t kHidden = 0x2;

std::vector<std::wstring> SplitPatterns(const std::wstring& text) {
    std::vector<std::wstring> patterns;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(L';', begin), text.size());
        patterns.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return patterns;
}

std::wstring NameOf(const std::wstring& path) { return path.substr(path.find_last_of(L'\\') + 1); }

std::wstring Trimmed(const std::wstring& text) {
    const std::size_t begin = text.find_first_not_of(L' ');
    if (begin == std::wstring::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(L' ') - begin + 1);
}

bool IsFolder(Device& device, const std::wstring& path) {
    return path == L"\\" || (files::Exists(device, path) && files::Info(device, path).is_folder);
}

Choice DecideFile(Device& device, const std::wstring& path, const ChoiceRules& rules) {
    if (files::Exists(device, path)) {
        return {rules.overwrite_prompt ? ChoiceKind::kAskOverwrite : ChoiceKind::kFile, path};
    }
    // Each of these demands the folder; only the first two say something about the file.
    const bool wants_folder = rules.file_must_exist || rules.create_prompt || rules.path_must_exist;
    if (wants_folder && !IsFolder(device, FolderAbove(path))) {
        return {ChoiceKind::kNoSuchFolder, path};
    }
    if (rules.create_prompt) {
        return {ChoiceKind::kAskCreate, path};
    }
    return {rules.file_must_exist ? ChoiceKind::kNoSuchFile : ChoiceKind::kFile, path};
}

}  // namespace

std::vector<FileFilter> ParseFilters(const wchar_t* pairs) {
    std::vector<FileFilter> filters;
    for (const wchar_t* at = pairs; at != nullptr && *at != L'\0';) {
        FileFilter filter;
        filter.text = at;
        at += std::wcslen(at) + 1;
        filter.patterns = SplitPatterns(at);
        at += std::wcslen(at) + 1;
        filters.push_back(std::move(filter));
    }
    return filters;
}

Choice Decide(Device& device, const std::wstring& folder, const std::wstring& typed,
              const ChoiceRules& rules) {
    const std::wstring name = Trimmed(typed);
    if (name.empty()) {
        return {};
    }
    if (name.find_first_of(L"*?") != std::wstring::npos) {
        return {ChoiceKind::kPattern, name};
    }
    std::wstring path = name.front() == L'\\' ? name : Joined(folder, name);
    while (path.size() > 1 && path.back() == L'\\') {
        path.pop_back();
    }
    if (IsFolder(device, path)) {
        return {ChoiceKind::kFolder, path};
    }
    if (!rules.default_extension.empty() && NameOf(path).find(L'.') == std::wstring::npos) {
        path += L"." + rules.default_extension;
    }
    return DecideFile(device, path, rules);
}

std::vector<std::wstring> Listing(Device& device, const std::wstring& folder,
                                  const std::vector<std::wstring>& patterns) {
    std::vector<std::wstring> folders;
    std::vector<std::wstring> names;
    for (const files::Entry& entry : files::List(device, folder)) {
        const std::wstring name = NameOf(entry.path);
        const bool matches = std::any_of(
            patterns.begin(), patterns.end(),
            [&name](const std::wstring& pattern) { return files::Matches(pattern, name); });
        if ((entry.attributes & kHidden) != 0) {
            continue;
        }
        if (entry.is_folder) {
            folders.push_back(name + L"\\");
        } else if (matches) {
            names.push_back(name);
        }
    }
    folders.insert(folders.end(), names.begin(), names.end());
    return folders;
}

std::wstring FolderAbove(const std::wstring& folder) {
    const std::size_t cut = folder.find_last_of(L'\\');
    return cut == std::wstring::npos || cut == 0 ? L"\\" : folder.substr(0, cut);
}

std::wstring Joined(const std::wstring& folder, const std::wstring& name) {
    return folder == L"\\" ? folder + name : folder + L"\\" + name;
}

}  // namespace sim::windows
