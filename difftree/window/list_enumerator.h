// Gives the difference tree the objects of the open storage's difference list.
#pragma once

#include "difftree/model/difference_enumerator.h"
#include "storage/files/storage_window.h"
#include "storage/opened/engine.h"

namespace tolvenar {

// Describes each object from its stored block, or from the device when it was never stored. Holds
// the storage file open for as long as it lives; the list must not change meanwhile.
class ListEnumerator final : public DifferenceEnumerator {
public:
    explicit ListEnumerator(Engine& engine);

    // An object that cannot be described is logged and left out. Aborts when a stored object is met
    // and the storage file cannot be opened.
    int Next(EnumeratedObject& object) override;
    bool ReadTextProperty(std::uint32_t propid, TextBuilder& text) override;
    bool ReadValueText(TextBuilder& text) override;

private:
    bool Describe();
    bool ReadLiveProperty(std::uint32_t propid, TextBuilder& text);
    bool ReadLiveValue(TextBuilder& text);

    Engine& engine_;
    StorageWindow storage_;
    bool has_storage_;
    ObjectList::Cursor cursor_ = nullptr;
    const ObjectRecord* record_ = nullptr;  // of the object that was given last
    InfoBlock block_;                       // what describes it
};

}  // namespace tolvenar
