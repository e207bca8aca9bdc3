// Reads the contents of live objects for the difference tree.
#pragma once

#include "difftree/model/live_contents.h"
#include "snapshot/compare/info_source.h"
#include "storage/objects/database_layer.h"

namespace tolvenar {

class DeviceContents final : public LiveContents {
public:
    DeviceContents(DatabaseLayer& databases, LiveObjects& live)
        : databases_(databases), live_(live) {}

    bool ReadTextProperty(const ObjectRecord& record, const InfoBlock& block, std::uint32_t propid,
                          TextBuilder& text) override;
    bool ReadValueText(const ObjectRecord& record, TextBuilder& text) override;

private:
    DatabaseLayer& databases_;
    LiveObjects& live_;
};

}  // namespace tolvenar
