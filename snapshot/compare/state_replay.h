// Replaying the records of the journal into a state's list. Platform-free; used by BuildStateList.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "snapshot/compare/info_source.h"
#include "snapshot/records/hash_index.h"
#include "snapshot/records/object_list.h"

namespace tolvenar {

// The registry records of a list by their identifier without its counter, in the order of the list.
class RegistryIndex {
public:
    // Room for as many calls of Add. False when there is no memory.
    bool Reserve(std::size_t additions);
    // Enters and takes out a node of the list; one that holds no registry record is passed over.
    void Add(ObjectList::Node& node);
    void Remove(const ObjectList::Node& node);
    // The node whose record the deletion `record` repeats, else the first node of the list that is
    // the same registry object; null when there is neither.
    ObjectList::Node* FindSame(const ObjectRecord& record, InfoSource& info) const;

private:
    struct Entry {
        ObjectList::Node* node;
        Entry* bucket_next;

        std::uint32_t Hash() const;
    };

    std::unique_ptr<Entry[]> entries_;
    std::size_t used_ = 0;
    HashIndex<Entry> index_;  // every chain in the order of the list
};

// The nodes of a list whose records belong to the states `first` to `last`, ordered by state and
// within a state by the walk from the front.
class NodesByState {
public:
    // False when there is no memory.
    bool Build(const ObjectList& list, std::uint16_t first, std::uint16_t last);
    std::size_t size() const { return size_; }
    const ObjectList::Node& operator[](std::size_t i) const { return *nodes_[i]; }

private:
    std::unique_ptr<const ObjectList::Node*[]> nodes_;
    std::size_t size_ = 0;
};

// Is told of the objects that a replayed state gets and loses.
class ReplayWatcher {
public:
    virtual void Come(const ObjectRecord& record) = 0;
    virtual void Go(const ObjectRecord& record) = 0;

protected:
    ~ReplayWatcher() = default;
};

// Applies journal records, oldest state first, to the list of a state. `out` is empty at first.
class StateReplay {
public:
    // `watcher` may be null.
    StateReplay(ObjectList& out, InfoSource& info, ReplayWatcher* watcher = nullptr)
        : out_(out), info_(info), watcher_(watcher) {}
    // Room for as many records. False when there is no memory.
    bool Reserve(std::size_t records) { return registry_.Reserve(records); }
    // False when there is no memory; the list is then incomplete.
    bool Apply(const ObjectList::Node& source);

private:
    bool Add(const ObjectKey& own_key, const ObjectRecord& record);
    void Delete(const ObjectKey& key, const ObjectRecord& record);
    void TellOfEnd(const ObjectRecord& record);

    ObjectList& out_;
    InfoSource& info_;
    ReplayWatcher* const watcher_;
    RegistryIndex registry_;
};

}  // namespace tolvenar
