#include "simulator/files/card_absence.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <windows.h>

#include "simulator/system/settings.h"

namespace sim::files {
namespace {

const std::u16string kBack = u"f/b";
constexpr std::uint64_t kTicksPerMs = 10000;

struct CardReady {
    std::uint64_t ms = 0;
    std::uint32_t error = 0;
};

bool Read(const std::string& value, CardReady& ready) {
    std::istringstream words(value);
    std::string rest;
    return words >> ready.ms >> ready.error && !(words >> rest);
}

CardReady ReadyOf(Device& device) {
    CardReady ready;
    Read(device.Setting("card.ready", ""), ready);
    // Programs sleep so much shorter meanwhile.
    const std::int64_t scale = SettingNumber(device, "sleep.scale");
    ready.ms /= static_cast<std::uint64_t>(std::max<std::int64_t>(scale, 1));
    return ready;
}

std::uint64_t HostTime() {
    FILETIME now;
    ::GetSystemTimeAsFileTime(&now);
    return (static_cast<std::uint64_t>(now.dwHighDateTime) << 32) | now.dwLowDateTime;
}

}  // namespace

void Resume(Device& device) {
    const CardReady ready = ReadyOf(device);
    LogStore::Change change(device.store());
    if (ready.ms == 0) {
        change.Erase(kBack);
    } else {
        change.Set(kBack, std::to_string(HostTime() + ready.ms * kTicksPerMs));
    }
}

std::uint32_t CardAbsence(Device& device) {
    LogStore::View view(device.store());
    const std::string* back = view.Find(kBack);
    const bool is_away = back != nullptr && HostTime() < std::strtoull(back->c_str(), nullptr, 10);
    return is_away ? ReadyOf(device).error : 0;
}

std::uint32_t AbsenceOf(FileTable& table, const Node& node) {
    return node.on_card ? CardAbsence(table.device()) : 0;
}

Found FindAsProgram(FileTable& table, const Path& path) {
    Found found = table.Find(path);
    // The node is the last that is there.
    if (const std::uint32_t absence = AbsenceOf(table, found.node)) {
        found.error = absence;
    }
    return found;
}

Found FindAsProgram(FileTable& table, const wchar_t* path) {
    return FindAsProgram(table, ParsePath(path));
}

bool IsListed(FileTable& table, const Node& node) {
    return !node.is_card || CardAbsence(table.device()) != ERROR_PATH_NOT_FOUND;
}

void CheckCardReady(const std::string& value) {
    CardReady ready;
    if (!Read(value, ready) || (ready.ms != 0 && ready.error == 0)) {
        throw std::runtime_error("card.ready is milliseconds and an error");
    }
}

}  // namespace sim::files
