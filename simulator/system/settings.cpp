#include "simulator/system/settings.h"

#include <cstdlib>
#include <stdexcept>

namespace sim {
namespace {

constexpr struct {
    const char* name;
    const char* value;
} kDefaults[] = {
    {"device.name", "Handheld_PC"},
    {"file.chooser", "both"},
    {"locale.am", "AM"},
    {"locale.checks", "there"},
    {"locale.datesep", "/"},
    {"locale.decimal", "."},
    {"locale.lcid", "0x409"},
    {"locale.longdate", "dddd, MMMM dd, yyyy"},
    {"locale.pm", "PM"},
    {"locale.shortdate", "M/d/yy"},
    {"locale.thousand", ","},
    {"locale.time", "h:mm:ss tt"},
    {"locale.timesep", ":"},
    {"memory.free", "8388608"},
    {"memory.size", "16777216"},
    {"os.build", "1121"},
    {"os.version", "3.0"},
    {"power.ac", "1"},
    {"power.flag", "1"},
    {"power.percent", "100"},
    {"power.present", "1"},
    {"processor", "2577"},  // PROCESSOR_STRONGARM
    {"sleep.scale", "1"},
    {"zone", "UTC0"},
};

const char* Default(const std::string& name) {
    for (const auto& row : kDefaults) {
        if (name == row.name) {
            return row.value;
        }
    }
    return "";
}

const std::u16string kKeyStart = u"s/";

std::u16string KeyOf(const std::string& name) {
    return kKeyStart + std::u16string(name.begin(), name.end());
}

void SetClock(Device& device, LogStore::Change& change, const std::string& value) {
    const bool real = value == "real";
    const bool runs = !real && !value.empty() && value[0] == '+';
    const std::uint64_t time =
        real ? 0 : ParseIsoTime(runs ? value.substr(1) : value, DeviceZone(device));
    change.Erase(KeyOf("clock.frozen"));
    if (real) {
        change.Erase(KeyOf("clock.offset"));
    } else if (runs) {
        change.Erase(KeyOf("clock.offset"));
        change.Set(KeyOf("clock.offset"),
                   std::to_string(static_cast<std::int64_t>(time - device.NowUtc())));
    } else {
        change.Set(KeyOf("clock.frozen"), std::to_string(time));
    }
}

std::int64_t WholeNumber(const std::string& value) {
    char* end = nullptr;
    const std::int64_t number = std::strtoll(value.c_str(), &end, 0);
    if (value.empty() || *end != '\0') {
        throw std::runtime_error("not a number: " + value);
    }
    return number;
}

void CheckName(const std::string& name) {
    for (const char c : name) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if (!letter && !(c >= '0' && c <= '9') && c != '.' && c != '-' && c != '_') {
            throw std::runtime_error("not the name of a setting: " + name);
        }
    }
    if (name.empty()) {
        throw std::runtime_error("a setting has a name");
    }
}

}  // namespace

std::string SettingText(const Device& device, const std::string& name) {
    return device.Setting(name, Default(name));
}

std::int64_t SettingNumber(const Device& device, const std::string& name) {
    return std::strtoll(SettingText(device, name).c_str(), nullptr, 0);
}

// As they are set: the step of the clock is kept in 100 ns units and told in milliseconds.
std::map<std::string, std::string> OwnSettings(Device& device) {
    std::map<std::string, std::string> settings;
    const LogStore::View view(device.store());
    for (auto it = view.map().lower_bound(kKeyStart); it != view.map().end(); ++it) {
        if (it->first.compare(0, kKeyStart.size(), kKeyStart) != 0) {
            break;
        }
        settings[std::string(it->first.begin() + 2, it->first.end())] = it->second;
    }
    const auto step = settings.find("clock.step");
    if (step != settings.end()) {
        step->second = std::to_string(WholeNumber(step->second) / (kTicksPerSecond / 1000));
    }
    return settings;
}

std::map<std::string, std::string> AllSettings(Device& device) {
    std::map<std::string, std::string> settings = OwnSettings(device);
    for (const auto& row : kDefaults) {
        settings.emplace(row.name, row.value);
    }
    return settings;
}

void ApplySystemSetting(Device& device, const std::string& name, const std::string& value) {
    CheckName(name);
    LogStore::Change change(device.store());
    if (name == "clock") {
        SetClock(device, change, value);
    } else if (value.empty()) {
        change.Erase(KeyOf(name));
    } else if (name == "clock.step") {
        change.Set(KeyOf(name), std::to_string(WholeNumber(value) * (kTicksPerSecond / 1000)));
    } else {
        if (name == "zone") {
            ParseZone(value);
        }
        change.Set(KeyOf(name), value);
    }
}

Zone DeviceZone(const Device& device) { return ParseZone(SettingText(device, "zone")); }

}  // namespace sim
