// Descriptions out of memory, with a record of what was asked for. Header only and platform-free:
// the native tests, the device's and the benchmarks share it.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "snapshot/compare/info_source.h"

namespace tolvenar {

class FakeInfoSource : public StoredObjects, public LiveObjects, public InfoSource {
public:
    FakeInfoSource()
        : InfoSource(static_cast<StoredObjects&>(*this), static_cast<LiveObjects&>(*this)) {}
    FakeInfoSource(const FakeInfoSource&) = delete;
    // Takes the objects, not what was asked.
    FakeInfoSource& operator=(const FakeInfoSource& other) {
        stored = other.stored;
        live = other.live;
        registry = other.registry;
        return *this;
    }

    struct Object {
        std::u16string name;
        ObjectType type = ObjectType::kRegistryValue;
        std::uint32_t hive = 0;
    };
    std::map<std::uint32_t, Object> stored;                          // by offset
    std::map<std::pair<std::uint32_t, std::uint32_t>, Object> live;  // by TolvOID and dwOID
    std::map<std::uint32_t, RegistryObject> registry;                // by TolvOID
    std::vector<std::string> asked;                                  // "storage 12", "live 5 0"
    bool keep_asked = true;
    int failing_reads = 0;  // so many reads of the storage file fail first

    bool GetOIDInfo(std::uint32_t TolvOID, std::uint32_t dwOID, InfoBlock& block) override {
        Note("live " + std::to_string(TolvOID) + " " + std::to_string(dwOID));
        const auto found = live.find({TolvOID, dwOID});
        return found != live.end() && Fill(found->second, block);
    }
    bool GetInfoFromStorage(std::uint32_t offset, InfoBlock& block) override {
        Note("storage " + std::to_string(offset));
        if (failing_reads > 0) {
            --failing_reads;
            return false;
        }
        const auto found = stored.find(offset);
        return found != stored.end() && Fill(found->second, block);
    }
    const RegistryObject* FindRegistryObject(std::uint32_t TolvOID) override {
        const auto found = registry.find(TolvOID);
        return found == registry.end() ? nullptr : &found->second;
    }

private:
    void Note(const std::string& text) {
        if (keep_asked) {
            asked.push_back(text);
        }
    }
    static bool Fill(const Object& object, InfoBlock& block) {
        block.Clear();
        block.head().type = static_cast<std::uint16_t>(object.type);
        block.head().hive = object.hive;
        return block.SetName(object.name.c_str(), object.name.size());
    }
};

}  // namespace tolvenar
