#include "simulator/files/search.h"

#include <windows.h>

#include "simulator/files/card_absence.h"

namespace sim::files {
namespace {

// A name without wildcards leads to one child; no need to look at the others.
std::vector<std::uint32_t> Candidates(FileTable& table, const Node& folder,
                                      const std::wstring& pattern) {
    if (pattern.find_first_of(L"*?") != std::wstring::npos) {
        return table.Children(folder.number);
    }
    const std::optional<Node> child = table.Child(folder.number, pattern);
    return child ? std::vector<std::uint32_t>{child->number} : std::vector<std::uint32_t>();
}

}  // namespace

std::shared_ptr<Search> Search::Begin(Device& device, const wchar_t* pattern, FindEntry& first,
                                      std::uint32_t& error) {
    FileTable& table = FileTable::Of(device);
    LogStore::View view(table.store());
    const auto nothing =
        static_cast<std::uint32_t>(device.NumberSetting("find.nothing", ERROR_NO_MORE_FILES));
    Path path = ParsePath(pattern, true);
    error = path.error;
    if (error != 0) {
        return nullptr;
    }
    if (path.names.empty() || path.ends_with_separator) {
        error = nothing;
        return nullptr;
    }
    const std::wstring last = path.names.back();
    path.names.pop_back();
    const Found folder = FindAsProgram(table, path);
    if (folder.error != 0 || !folder.node.is_folder()) {
        const std::uint32_t absence = AbsenceOf(table, folder.node);
        error = absence != 0 ? absence : ERROR_PATH_NOT_FOUND;
        return nullptr;
    }
    auto search = std::make_shared<Search>(table, Candidates(table, folder.node, last), last);
    if (!search->Next(first)) {
        error = nothing;
        return nullptr;
    }
    return search;
}

bool Search::Next(FindEntry& entry) {
    LogStore::View view(table_.store());
    while (at_ < numbers_.size()) {
        const std::optional<Node> node = table_.Get(numbers_[at_++]);
        if (!node || !Matches(pattern_, node->name) || !IsListed(table_, *node)) {
            continue;
        }
        entry.info = {table_.TimesOf(*node), table_.AttributesOf(*node),
                      table_.SizeOf(*node),  table_.ToldOid(*node),
                      node->number,          node->on_card};
        entry.name = node->name;
        return true;
    }
    return false;
}

}  // namespace sim::files
