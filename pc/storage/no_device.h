// There is no device here: what was never stored cannot be described. Header only.
#pragma once

#include "snapshot/compare/info_source.h"

namespace tolvenar::pc {

class NoDevice final : public LiveObjects {
public:
    bool GetOIDInfo(std::uint32_t, std::uint32_t, InfoBlock&) override { return false; }
    const RegistryObject* FindRegistryObject(std::uint32_t) override { return nullptr; }
};

}  // namespace tolvenar::pc
