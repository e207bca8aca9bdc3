#include "simulator/command/profile.h"

#include <optional>
#include <sstream>

#include "simulator/command/apply_setting.h"
#include "simulator/command/command_row.h"
#include "simulator/databases/database_json.h"
#include "simulator/files/file_profile.h"
#include "simulator/files/files.h"
#include "simulator/host/host_files.h"
#include "simulator/notifications/notifications.h"
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

// The object ids that a profile asks for, of databases and their records in their own files.
struct ProfileIds {
    files::FileIds files;
    AskedIds asked;
};

std::optional<ProfileIds> IdsOf(Device& device, const std::wstring& profile) {
    const std::optional<std::string> text = host::ReadWhole(profile + L"\\ids.json");
    if (!text) {
        return std::nullopt;
    }
    const Json json = Json::parse(*text);
    ProfileIds ids{{}, AskedIds(device, json.at("next").get<std::uint32_t>())};
    for (const auto& [path, id] : json.at("files").items()) {
        ids.files[Wide(path)] = id.get<std::uint32_t>();
    }
    return ids;
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
    if (host::IsFolder(host + L"\\card")) {
        EraseCard(device);
    }
    std::optional<ProfileIds> ids = IdsOf(device, host);
    AskedIds* const asked = ids ? &ids->asked : nullptr;
    files::ImportFiles(device, host, ids ? ids->files : files::FileIds(), asked);
    if (const auto text = host::ReadWhole(host + L"\\registry.reg")) {
        registry::ImportText(device, *text);
    }
    for (const std::wstring& name : host::List(host + L"\\databases").files) {
        databases::ImportJson(device, Json::parse(*host::ReadWhole(host + L"\\databases\\" + name)),
                              asked);
    }
    if (ids) {
        ids->asked.Finish();
    }
    if (const auto text = host::ReadWhole(host + L"\\notifications.json")) {
        notifications::ImportJson(device, Json::parse(*text));
    }
    device.store().Compact();
}

void ExportProfile(Device& device, const std::string& folder) {
    const std::wstring host = HostPath(folder);
    host::MakeFolder(host);
    std::string settings;
    for (const auto& [name, value] : OwnSettings(device)) {
        settings += name + " = " + value + "\n";
    }
    WriteHostFile(folder + "/device.ini", settings);
    files::ExportFiles(device, host);
    WriteHostFile(folder + "/registry.reg", registry::ExportText(device));
    host::MakeFolder(host + L"\\databases");
    WriteHostFile(folder + "/databases/all.json", databases::DumpJson(device).dump(1) + "\n");
    WriteHostFile(folder + "/notifications.json", notifications::DumpJson(device).dump(1) + "\n");
    device.store().Compact();
}

}  // namespace sim
