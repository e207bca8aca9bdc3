// A simulated device: the folder it lives in, its store, and the values that everything shares. The
// areas (files, registry, databases, notifications, ...) keep their state in the store under keys
// that begin with a letter of their own:
//   f files and folders   r registry   d databases   n notifications   s settings   i next object
//   id p processes
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "simulator/store/log_store.h"

namespace sim {

// Ends this process at once, without any of its own code running.
[[noreturn]] void EndThisProcess(unsigned code);

class Device {
public:
    explicit Device(const std::wstring& folder);

    // The device this process runs on: the folder in the environment variable CEDEVICE, opened at
    // the first use. Ends the process with a message when there is none.
    static Device& Current();
    // Whether there is one, without ending the process.
    static bool HasCurrent();
    // Makes this process run on another device; every handle of the previous one must be closed.
    static void Attach(const std::wstring& folder);

    LogStore& store() { return store_; }
    const std::wstring& folder() const { return store_.folder(); }

    // Settings such as "power.ac": text in, text out; absent gives `fallback`.
    std::string Setting(const std::string& name, const std::string& fallback) const;
    std::int64_t NumberSetting(const std::string& name, std::int64_t fallback) const;
    void SetSetting(const std::string& name, const std::string& value);

    // The next object-store id: unique in the device and never used again. Inside a Change the new
    // counter is published with it.
    std::uint32_t TakeObjectId();
    void SetNextObjectId(std::uint32_t id);

    // UTC now on the device, as a FILETIME count: the host's clock moved by the device's offset, or
    // standing still, or stepping at every write, as the settings say.
    std::uint64_t NowUtc();
    // The same for a moment at which something is written; the clock's step is taken after it.
    std::uint64_t WriteTimeUtc();

    // What an area keeps in memory about this device in this process; made at the first use as
    // `T(device)`.
    template <typename T>
    T& Part() {
        std::lock_guard guard(parts_mutex_);
        std::shared_ptr<void>& part = parts_[&PartKey<T>];
        if (!part) {
            part = std::make_shared<T>(*this);
        }
        return *static_cast<T*>(part.get());
    }

private:
    template <typename T>
    static void PartKey() {}

    std::recursive_mutex parts_mutex_;
    std::map<void (*)(), std::shared_ptr<void>> parts_;
    mutable LogStore store_;
};

}  // namespace sim
