#include "simulator/command/profile.h"

#include <sstream>

#include "simulator/command/command_row.h"
#include "simulator/files/files.h"
#include "simulator/host/host_files.h"
#include "simulator/registry/registry_text.h"
#include "simulator/system/settings.h"

namespace sim {
namespace {

std::string Trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t\r");
    const std::size_t end = text.find_last_not_of(" \t\r");
    return begin == std::string::npos ? std::string() : text.substr(begin, end - begin + 1);
}

std::wstring CardRoot(Device& device) {
    return L"\\" + Wide(device.Setting("card.name", "Storage Card"));
}

void PutTree(Device& device, const std::wstring& host_folder, const std::wstring& path) {
    const host::Listing listing = host::List(host_folder);
    for (const std::wstring& name : listing.folders) {
        files::MakeFolder(device, path + L"\\" + name);
        PutTree(device, host_folder + L"\\" + name, path + L"\\" + name);
    }
    for (const std::wstring& name : listing.files) {
        files::PutHostFile(device, host_folder + L"\\" + name, path + L"\\" + name);
    }
}

void ApplyFileFacts(Device& device, const std::string& text) {
    for (const Json& row : Json::parse(text)) {
        const std::wstring path = Wide(row.at("path"));
        if (row.contains("modified")) {
            files::Touch(device, path, row.at("modified"));
        }
        if (row.contains("attributes")) {
            files::ReplaceAttributes(device, path, row.at("attributes"));
        }
    }
}

void EraseCard(Device& device) {
    for (const files::Entry& entry : files::List(device, CardRoot(device))) {
        files::Erase(device, entry.path);
    }
}

// Everything but the files, whose contents have to go with them, the next object id, the programs
// that run, and how the card is called and filled.
void EraseState(Device& device) {
    LogStore::Change change(device.store());
    std::vector<std::u16string> keys;
    for (const auto& [key, value] : change.map()) {
        const bool stays = key.empty() || key[0] == u'f' || key[0] == u'i' || key[0] == u'p' ||
                           key.compare(0, 7, u"s/card.") == 0;
        if (!stays) {
            keys.push_back(key);
        }
    }
    for (const std::u16string& key : keys) {
        change.Erase(key);
    }
}

std::wstring HostPathOf(const files::Entry& entry, const std::wstring& folder,
                        const std::wstring& card) {
    if (entry.on_card) {
        return folder + L"\\card" + entry.path.substr(card.size());
    }
    return folder + L"\\files" + entry.path;
}

}  // namespace

void ApplySettingsText(Device& device, const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        line = Trimmed(line);
        if (line.empty() || line[0] == ';' || line[0] == '#' || line[0] == '[') {
            continue;
        }
        const std::size_t equals = line.find('=');
        if (equals == std::string::npos) {
            throw CommandError("device.ini: " + line);
        }
        ApplySetting(device, Trimmed(line.substr(0, equals)), Trimmed(line.substr(equals + 1)));
    }
}

void CreateFromProfile(Device& device, const std::string& folder) {
    const std::wstring host = HostPath(folder);
    if (!host::IsFolder(host)) {
        throw CommandError("no such folder: " + folder);
    }
    EraseState(device);
    files::EraseStore(device);
    if (const auto text = host::ReadWhole(host + L"\\device.ini")) {
        ApplySettingsText(device, *text);
    }
    files::MountCard(device);
    if (host::IsFolder(host + L"\\files")) {
        PutTree(device, host + L"\\files", L"");
    }
    if (host::IsFolder(host + L"\\card")) {
        EraseCard(device);
        PutTree(device, host + L"\\card", CardRoot(device));
    }
    if (const auto text = host::ReadWhole(host + L"\\files.json")) {
        ApplyFileFacts(device, *text);
    }
    if (const auto text = host::ReadWhole(host + L"\\registry.reg")) {
        registry::ImportText(device, *text);
    }
}

void ExportProfile(Device& device, const std::string& folder) {
    const std::wstring host = HostPath(folder);
    host::MakeFolder(host);
    host::MakeFolder(host + L"\\files");
    host::MakeFolder(host + L"\\card");
    std::string settings;
    for (const auto& [name, value] : OwnSettings(device)) {
        settings += name + " = " + value + "\n";
    }
    WriteHostFile(folder + "/device.ini", settings);
    Json facts = Json::array();
    const std::wstring card = CardRoot(device);
    for (const files::Entry& entry : files::ListAll(device)) {
        const std::wstring to = HostPathOf(entry, host, card);
        if (entry.is_folder) {
            host::MakeFolder(to);
        } else {
            files::GetToHostFile(device, entry.path, to);
        }
        Json row = {{"path", Utf8(entry.path)}, {"attributes", entry.attributes}};
        if (!entry.is_folder) {
            row["modified"] = entry.modified;
        }
        facts.push_back(std::move(row));
    }
    WriteHostFile(folder + "/files.json", facts.dump(1) + "\n");
    WriteHostFile(folder + "/registry.reg", registry::ExportText(device));
}

}  // namespace sim
