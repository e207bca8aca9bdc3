// install-cab, remove-app: a package as the platform's loader installs it, and as it takes it away
// again.
#include <cstdlib>

#include "simulator/command/command_row.h"
#include "simulator/command/package_file.h"
#include "simulator/command/registry_edit.h"
#include "simulator/files/files.h"
#include "simulator/registry/registry.h"
#include "simulator/system/settings.h"

namespace sim {
namespace {

constexpr char kApps[] = "HKLM\\Software\\Apps\\";

// %CE1% and so on, by their numbers, as a Handheld PC has them.
constexpr const char* kFolders[] = {"",
                                    "\\Program Files",
                                    "\\Windows",
                                    "\\Windows\\Desktop",
                                    "\\Windows\\StartUp",
                                    "\\My Documents",
                                    "\\Program Files\\Accessories",
                                    "\\Program Files\\Communication",
                                    "\\Program Files\\Games",
                                    "\\Program Files\\Pocket Outlook",
                                    "\\Program Files\\Office",
                                    "\\Windows\\Programs"};
constexpr std::size_t kFolderCount = sizeof kFolders / sizeof *kFolders;

std::string SystemFolder(unsigned long number) {
    if (number == 0 || number >= kFolderCount) {
        throw CommandError("no folder of the system's: %CE" + std::to_string(number) + "%");
    }
    return kFolders[number];
}

std::string WithFolder(const std::string& text) {
    constexpr char kMark[] = "%CE";
    const std::size_t end = text.find('%', 1);
    if (text.rfind(kMark, 0) != 0 || end == std::string::npos) {
        return text;
    }
    return SystemFolder(std::strtoul(text.c_str() + sizeof kMark - 1, nullptr, 10)) +
           text.substr(end + 1);
}

std::string PathOf(const PackageFile& file) { return WithFolder(file.folder) + "\\" + file.name; }

std::optional<registry::KeyId> KeyOf(const registry::Registry& registry, const std::string& path) {
    std::u16string rest;
    const auto root = registry::RootOfPath(Wide16(path), rest);
    registry::KeyId place;
    if (!root || registry.Place(*root, rest, place) != registry::kOk || !registry.Exists(place)) {
        return std::nullopt;
    }
    return place;
}

bool HasValue(Device& device, const std::string& key, const std::string& name) {
    const registry::Registry registry(device);
    const auto place = KeyOf(registry, key);
    return place && registry.Find(*place, Wide16(name)).has_value();
}

std::string AppOf(const Package& package) { return package.provider + " " + package.name; }
std::wstring ListOf(const std::string& app) { return L"\\Windows\\" + Wide(app) + L".unload"; }

void CheckDevice(Device& device, const Package& package) {
    if (package.processor != 0 && package.processor != SettingNumber(device, "processor")) {
        throw CommandError("made for another processor");
    }
    const double oldest = std::strtod(
        (std::to_string(package.major) + "." + std::to_string(package.minor)).c_str(), nullptr);
    if (std::strtod(SettingText(device, "os.version").c_str(), nullptr) < oldest) {
        throw CommandError("made for a newer system");
    }
    if (KeyOf(registry::Registry(device), kApps + AppOf(package))) {
        throw CommandError("already installed: " + AppOf(package));
    }
}

// Each returns what a removal takes away again.
Json PutFiles(Device& device, const Package& package) {
    Json paths = Json::array();
    for (const PackageFile& file : package.files) {
        files::Put(device, Wide(PathOf(file)), file.bytes);
        paths.push_back(PathOf(file));
    }
    for (const PackageLink& link : package.links) {
        // A shortcut is a text: the length of a command line, then the command line.
        const std::string target = "\"" + PathOf(package.files[link.target]) + "\"";
        const std::string path = SystemFolder(link.folder) + "\\" + link.name;
        files::Put(device, Wide(path), std::to_string(target.size()) + "#" + target);
        paths.push_back(path);
    }
    return paths;
}

Json SetValues(Device& device, const Package& package) {
    Json values = Json::array();
    for (const PackageValue& value : package.values) {
        if (value.keeps_existing && HasValue(device, value.key, value.name)) {
            continue;
        }
        if (value.is_number) {
            SetRegistryNumber(device, value.key, value.name, value.number);
        } else {
            SetRegistryText(device, value.key, value.name, WithFolder(value.text));
        }
        values.push_back({value.key, value.name});
    }
    return values;
}

}  // namespace

Json RunInstallCab(Device& device, const Words& words) {
    const Package package = ReadPackage(ReadHostFile(words[0]));
    CheckDevice(device, package);
    const Json list = {{"files", PutFiles(device, package)},
                       {"values", SetValues(device, package)}};
    files::Put(device, ListOf(AppOf(package)), list.dump());
    SetRegistryNumber(device, kApps + AppOf(package), "Instl", 1);
    return {{"app", AppOf(package)}};
}

// What the program has made since stays, with the folders that hold it.
Json RunRemoveApp(Device& device, const Words& words) {
    const std::wstring list_file = ListOf(words[0]);
    if (!files::Exists(device, list_file)) {
        throw CommandError("not installed: " + words[0]);
    }
    const Json list = Json::parse(files::Get(device, list_file));
    for (const std::string path : list["files"]) {
        if (files::Exists(device, Wide(path))) {
            files::Erase(device, Wide(path));
        }
    }
    for (const Json& value : list["values"]) {
        if (HasValue(device, value[0], value[1])) {
            RunRegDelete(device, {value[0], value[1]});
        }
    }
    RunRegDelete(device, {kApps + words[0]});
    files::Erase(device, list_file);
    return Done();
}

}  // namespace sim
