// Gives the difference tree the objects of a difference list. Platform-free.
#pragma once

#include "difftree/model/difference_enumerator.h"
#include "difftree/model/live_contents.h"
#include "snapshot/compare/info_source.h"
#include "snapshot/records/object_list.h"
#include "storage/format/storage_reader.h"

namespace tolvenar {

// Describes each object from its stored block, or as a live one when it was never stored. The list
// must not change meanwhile.
class ListEnumerator final : public DifferenceEnumerator {
public:
    // `differences` may be null; `storage` is null when the storage file cannot be opened.
    ListEnumerator(const ObjectList* differences, const FailureTable& failures,
                   StorageReader* storage, LiveObjects& live, LiveContents& contents)
        : failures_(failures),
          storage_(storage),
          live_(live),
          contents_(contents),
          next_(differences != nullptr ? differences->begin() : Place(nullptr)) {}
    ListEnumerator(const ListEnumerator&) = delete;
    ListEnumerator& operator=(const ListEnumerator&) = delete;

    // An object that cannot be described is logged and left out. Aborts when a stored object is met
    // without a storage file.
    int Next(EnumeratedObject& object) override;
    bool ReadTextProperty(std::uint32_t propid, TextBuilder& text) override;
    bool ReadValueText(TextBuilder& text) override;

private:
    using Place = ObjectList::Iterator<const ObjectList::Node>;

    bool Describe();

    const FailureTable& failures_;
    StorageReader* storage_;
    LiveObjects& live_;
    LiveContents& contents_;
    Place next_;
    const ObjectRecord* record_ = nullptr;  // of the object that was given last
    InfoBlock block_;                       // what describes it
};

}  // namespace tolvenar
