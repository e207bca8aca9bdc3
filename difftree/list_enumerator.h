// Gives the difference tree the objects of the open storage's difference list.
#pragma once

#include "difftree/difference_enumerator.h"
#include "platform/unique_resource.h"
#include "storage/engine.h"
#include "storage/storage_view.h"

namespace tolvenar {

// Describes each object from its stored block, or from the device when it was never stored. Holds
// the storage file open for as long as it lives; the list must not change meanwhile.
class ListEnumerator final : public DifferenceEnumerator {
public:
    explicit ListEnumerator(Engine& engine);
    ~ListEnumerator();
    ListEnumerator(const ListEnumerator&) = delete;
    ListEnumerator& operator=(const ListEnumerator&) = delete;

    // An object that cannot be described is left out; aborts when a stored one is met and the
    // storage file cannot be opened.
    int Next(EnumeratedObject& object) override;
    bool ReadTextProperty(std::uint32_t propid, TextBuilder& text) override;
    bool ReadValueText(TextBuilder& text) override;

private:
    bool ReadStoredProperty(std::uint32_t propid, TextBuilder& text);
    bool ReadLiveProperty(std::uint32_t propid, TextBuilder& text);
    bool ReadStoredValue(TextBuilder& text);
    bool ReadLiveValue(TextBuilder& text);

    Engine& engine_;
    UniqueHandle sav_file_;
    StorageMapping mapping_;
    ObjectList::Cursor cursor_ = nullptr;
    const ObjectRecord* record_ = nullptr;  // of the object that was given last
    InfoBlock block_;
};

}  // namespace tolvenar
