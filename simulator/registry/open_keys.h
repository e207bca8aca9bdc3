// Open registry keys of this process: what a key's handle stands for, and which keys may not be
// deleted because they are open.
#pragma once

#include <memory>

#include "simulator/registry/registry.h"

namespace sim::registry {

class OpenKey {
public:
    explicit OpenKey(KeyId id);
    ~OpenKey();
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;

    const KeyId& id() const { return id_; }

    // The lists of `Registry`, kept until a key or value came or went anywhere.
    const std::vector<KeyId>& Subkeys(const Registry& registry);
    const std::vector<std::u16string>& Values(const Registry& registry);

private:
    struct Listing {
        std::vector<std::u16string> items;
        std::uint32_t generation = 0;
        std::string order;
        bool made = false;
    };
    static bool Fits(Listing& listing, const Registry& registry);

    KeyId id_;
    Listing subkeys_;
    Listing values_;
};

// The key of a root's fixed handle or of an open handle; null for anything else.
std::shared_ptr<OpenKey> KeyOfHandle(const void* handle);
// A new handle of the key.
void* OpenHandle(const KeyId& key);
// Closing a root's handle does nothing and succeeds.
bool CloseKeyHandle(const void* handle);

// Whether this process has the key, or one below it, open.
bool IsOpen(const KeyId& key);

}  // namespace sim::registry
