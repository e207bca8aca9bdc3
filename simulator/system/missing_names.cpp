#include "simulator/system/missing_names.h"

#include <cstdlib>
#include <name_versions.h>

#include "simulator/system/settings.h"

namespace sim {
namespace {

constexpr std::uint16_t kChooserNumber = 488;

bool IsNewer(const Device& device, std::wstring_view name) {
    for (const auto& row : kNameVersions) {
        if (name == row.name) {
            return row.version > std::strtod(SettingText(device, "os.version").c_str(), nullptr);
        }
    }
    return false;
}

bool IsInOtherDll(const Device& device, std::wstring_view dll) {
    const std::string chooser = SettingText(device, "file.chooser");
    return chooser != "both" && std::wstring(chooser.begin(), chooser.end()) + L".dll" != dll;
}

}  // namespace

bool IsMissing(const Device& device, std::wstring_view dll, std::wstring_view name) {
    if (name == L"GetSystemPowerStatusEx") {
        return SettingNumber(device, "power.present") == 0;
    }
    if (name == L"GetOpenFileNameW" || name == L"GetSaveFileNameW") {
        return IsInOtherDll(device, dll);
    }
    if (name == L"IsValidLocale" || name == L"IsValidCodePage") {
        return SettingText(device, "locale.checks") == "missing";
    }
    return IsNewer(device, name);
}

const wchar_t* NameOfNumber(const Device& device, std::uint16_t number) {
    const std::string chooser = SettingText(device, "file.chooser");
    const bool has_chooser = chooser == "both" || chooser == "coredll" || chooser == "number";
    return number == kChooserNumber && has_chooser ? L"GetOpenFileNameW" : nullptr;
}

}  // namespace sim
