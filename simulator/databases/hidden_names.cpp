#include "simulator/databases/hidden_names.h"

#include <cstdlib>

#include "simulator/system/settings.h"

namespace sim::databases {
namespace {

constexpr std::wstring_view kSinceVersion4[] = {L"CeSeekDatabaseEx"};

}  // namespace

bool IsHidden(const Device& device, std::wstring_view name) {
    for (const std::wstring_view newer : kSinceVersion4) {
        if (name == newer) {
            return std::strtod(SettingText(device, "os.version").c_str(), nullptr) < 4;
        }
    }
    return false;
}

}  // namespace sim::databases
