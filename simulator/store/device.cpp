#include "simulator/store/device.h"

#include <cstdio>
#include <cstdlib>
#include <windows.h>

namespace sim {
namespace {

std::unique_ptr<Device> current;

std::wstring FolderFromEnvironment() {
    wchar_t folder[MAX_PATH] = L"";
    const DWORD length = ::GetEnvironmentVariableW(L"CEDEVICE", folder, MAX_PATH);
    return length < MAX_PATH ? std::wstring(folder, length) : std::wstring();
}

std::u16string SettingKey(const std::string& name) {
    return u"s/" + std::u16string(name.begin(), name.end());
}

std::uint64_t HostUtc() {
    FILETIME now;
    ::GetSystemTimeAsFileTime(&now);
    return (static_cast<std::uint64_t>(now.dwHighDateTime) << 32) | now.dwLowDateTime;
}

const std::u16string kNextObjectId = u"i/next";
constexpr std::int64_t kFirstObjectId = 0x01000100;

}  // namespace

void EndThisProcess(unsigned code) {
    ::TerminateProcess(::GetCurrentProcess(), code);
    for (;;) {
    }
}

Device::Device(const std::wstring& folder) : store_(folder) {}

Device& Device::Current() {
    if (!HasCurrent()) {
        std::fprintf(stderr, "coredll: CEDEVICE names no device\n");
        std::fflush(stderr);
        EndThisProcess(0xCE);
    }
    return *current;
}

bool Device::HasCurrent() {
    if (current) {
        return true;
    }
    const std::wstring folder = FolderFromEnvironment();
    if (folder.empty()) {
        return false;
    }
    current = std::make_unique<Device>(folder);
    return true;
}

void Device::Attach(const std::wstring& folder) {
    ::SetEnvironmentVariableW(L"CEDEVICE", folder.c_str());
    current = folder.empty() ? nullptr : std::make_unique<Device>(folder);
}

std::string Device::Setting(const std::string& name, const std::string& fallback) const {
    LogStore::View view(store_);
    const std::string* value = view.Find(SettingKey(name));
    return value != nullptr ? *value : fallback;
}

std::int64_t Device::NumberSetting(const std::string& name, std::int64_t fallback) const {
    const std::string text = Setting(name, "");
    return text.empty() ? fallback : std::strtoll(text.c_str(), nullptr, 0);
}

void Device::SetSetting(const std::string& name, const std::string& value) {
    LogStore::Change change(store_);
    change.Set(SettingKey(name), value);
}

std::uint32_t Device::TakeObjectId() {
    LogStore::Change change(store_);
    const std::string* next = change.Find(kNextObjectId);
    const std::int64_t id =
        next != nullptr ? std::strtoll(next->c_str(), nullptr, 0) : kFirstObjectId;
    change.Set(kNextObjectId, std::to_string(id + 1));
    return static_cast<std::uint32_t>(id);
}

void Device::SetNextObjectId(std::uint32_t id) {
    LogStore::Change change(store_);
    change.Set(kNextObjectId, std::to_string(id));
}

// "clock.frozen": a FILETIME count at which the clock stands; "clock.offset": 100 ns units added to
// the host's clock; "clock.step": 100 ns units by which a frozen clock moves at every write.
std::uint64_t Device::NowUtc() {
    const std::int64_t frozen = NumberSetting("clock.frozen", 0);
    if (frozen != 0) {
        return static_cast<std::uint64_t>(frozen);
    }
    return HostUtc() + static_cast<std::uint64_t>(NumberSetting("clock.offset", 0));
}

std::uint64_t Device::WriteTimeUtc() {
    // A clock that does not step needs no writer's lock, which costs more than the write itself.
    if (NumberSetting("clock.step", 0) == 0) {
        return NowUtc();
    }
    LogStore::Change change(store_);
    const std::uint64_t now = NowUtc();
    const std::int64_t step = NumberSetting("clock.step", 0);
    if (step != 0 && NumberSetting("clock.frozen", 0) != 0) {
        SetSetting("clock.frozen", std::to_string(now + static_cast<std::uint64_t>(step)));
    }
    return now;
}

}  // namespace sim
