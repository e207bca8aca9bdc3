#include "simulator/files/file_profile.h"

#include "simulator/files/file_table.h"
#include "simulator/files/files.h"
#include "simulator/files/sha256.h"
#include "simulator/host/host_files.h"
#include "simulator/store/utf8.h"

namespace sim::files {
namespace {

using nlohmann::json;

std::wstring CardPath(Device& device) {
    return L"\\" + Wide(device.Setting("card.name", "Storage Card"));
}

class TreeImport {
public:
    TreeImport(Device& device, const FileIds& ids, AskedIds* asked)
        : device_(device), ids_(ids), asked_(asked) {}

    void Run(const std::wstring& host_folder, const std::wstring& path) {
        const host::Listing listing = host::List(host_folder);
        for (const std::wstring& name : listing.folders) {
            Ask(path + L"\\" + name);
            MakeFolder(device_, path + L"\\" + name);
            Run(host_folder + L"\\" + name, path + L"\\" + name);
        }
        for (const std::wstring& name : listing.files) {
            Ask(path + L"\\" + name);
            PutHostFile(device_, host_folder + L"\\" + name, path + L"\\" + name);
        }
    }

private:
    void Ask(const std::wstring& path) {
        if (asked_ != nullptr) {
            const auto id = ids_.find(path);
            asked_->Ask(id == ids_.end() ? 0 : id->second);
        }
    }

    Device& device_;
    const FileIds& ids_;
    AskedIds* const asked_;
};

void ApplyRow(Device& device, const std::wstring& path, const json& row) {
    if (row.contains("attributes")) {
        ReplaceAttributes(device, path, row["attributes"].get<std::uint32_t>());
    }
    if (row.contains("modified")) {
        Touch(device, path, row["modified"].get<std::uint64_t>());
    }
}

json RowOf(const Entry& entry) {
    json row = json::object();
    const std::uint32_t usual = entry.is_folder ? kFolder : kArchive;
    if ((entry.attributes & ~kTemporary) != usual) {
        row["attributes"] = entry.attributes;
    }
    if (!entry.is_folder) {
        row["modified"] = entry.modified;
    }
    return row;
}

}  // namespace

void ImportFiles(Device& device, const std::wstring& profile, const FileIds& ids, AskedIds* asked) {
    LogStore::Change change(device.store());
    MountCard(device);
    TreeImport(device, ids, asked).Run(profile + L"\\files", L"");
    // The card's files have no ids.
    TreeImport(device, ids, nullptr).Run(profile + L"\\card", CardPath(device));
    const std::optional<std::string> text = host::ReadWhole(profile + L"\\files.json");
    if (!text) {
        return;
    }
    const json rows = json::parse(*text);
    for (const auto& [path, row] : rows.items()) {
        ApplyRow(device, Wide(path), row);
    }
}

void ExportFiles(Device& device, const std::wstring& profile) {
    LogStore::View view(device.store());
    const std::wstring card = CardPath(device);
    for (const wchar_t* part : {L"\\files", L"\\card"}) {
        host::RemoveTree(profile + part);
        host::MakeFolder(profile + part);
    }
    json rows = json::object();
    for (const Entry& entry : ListAll(device)) {
        const std::wstring host_path = entry.on_card
                                           ? profile + L"\\card" + entry.path.substr(card.size())
                                           : profile + L"\\files" + entry.path;
        if (entry.is_folder) {
            host::MakeFolder(host_path);
        } else {
            host::MakeFolder(host_path.substr(0, host_path.rfind(L'\\')));
            GetToHostFile(device, entry.path, host_path);
        }
        json row = RowOf(entry);
        if (!row.empty()) {
            rows[Utf8(entry.path)] = std::move(row);
        }
    }
    host::WriteWhole(profile + L"\\files.json", rows.dump(1) + "\n");
}

json DumpFiles(Device& device) {
    LogStore::View view(device.store());
    json files = json::array();
    for (const Entry& entry : ListAll(device)) {
        json file = {
            {"path", Utf8(entry.path)}, {"oid", entry.oid}, {"attributes", entry.attributes}};
        if (!entry.is_folder) {
            file["size"] = entry.size;
            file["modified"] = entry.modified;
            file["sha256"] = Sha256(Get(device, entry.path));
        }
        files.push_back(std::move(file));
    }
    return files;
}

}  // namespace sim::files
