// create, export, dump, install: a device as a whole.
#include "simulator/command/command_row.h"
#include "simulator/command/profile.h"
#include "simulator/command/registry_edit.h"
#include "simulator/databases/database_json.h"
#include "simulator/files/file_profile.h"
#include "simulator/files/files.h"
#include "simulator/notifications/notifications.h"
#include "simulator/registry/registry_dump.h"
#include "simulator/system/settings.h"

namespace sim {
namespace {

constexpr wchar_t kFolder[] = L"\\Program Files\\Tolvenar";
constexpr char kAgent[] = "kestrin_tolvenar_agent.exe";
constexpr char kKey[] = "HKCU\\Software\\Kestrin2\\Tolvenar";

}  // namespace

Json RunCreate(Device& device, const Words& words) {
    CreateFromProfile(device, words[0]);
    return Done();
}

Json RunExport(Device& device, const Words& words) {
    ExportProfile(device, words[0]);
    return Done();
}

Json RunDump(Device& device, const Words&) {
    return {{"databases", databases::DumpJson(device)},
            {"files", files::DumpFiles(device)},
            {"notifications", notifications::DumpJson(device)},
            {"registry", registry::DumpJson(device)},
            {"settings", OwnSettings(device)}};
}

// The agent also stands where a program is found by its bare name; the help belongs there anyway.
Json RunInstall(Device& device, const Words& words) {
    for (const char* name : {"Tolvenar.exe", kAgent, "CloseOther.exe"}) {
        const std::string bytes = ReadHostFile(words[0] + "/" + name);
        files::Put(device, std::wstring(kFolder) + L"\\" + Wide(name), bytes);
    }
    for (const char* name :
         {kAgent, "peghelp.exe", "tolvenar.htc", "tolvenar_all.htp", "tolvenar_backup.2bp",
          "tolvenar_options.2bp", "tolvenar_restore.2bp", "tolvenar_storage_file.2bp",
          "tolvenar_tree_failed.2bp", "tolvenar_tree_simple.2bp"}) {
        files::Put(device, L"\\Windows\\" + Wide(name), ReadHostFile(words[0] + "/" + name));
    }
    const std::wstring card = Wide(device.Setting("card.name", "Storage Card"));
    SetRegistryText(device, kKey, "InstDir", Utf8(std::wstring(kFolder)));
    SetRegistryText(device, kKey, "StoragePath", Utf8(L"\\" + card + L"\\Tolvenar\\"));
    SetRegistryText(device, kKey, "StorageFile", "Backup");
    for (const char* name : {"onTime", "onBattery", "WakeUpTime"}) {
        SetRegistryNumber(device, kKey, name, 0);
    }
    files::MakeFolder(device, L"\\" + card + L"\\Tolvenar");
    return Done();
}

}  // namespace sim
