// The keyed list of object records: a state, a scan, a difference or the journal. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "snapshot/records/hash_index.h"
#include "snapshot/records/object_record.h"
#include "snapshot/records/slabs.h"

namespace tolvenar {

// A doubly linked list that owns its records, newest insertion first. Order, replacement and search
// results are those of a plain walk from the front; an index beside the links makes a lookup by key
// constant time. Costs at most 80 bytes for each record, all of it on the private heap.
class ObjectList {
public:
    struct Node {
        ObjectKey key;
        ObjectRecord*
            record;  // the node's own; a walk over a list that is not changed may change it
        Node* previous;
        Node* next;
        Node* bucket_next;
        // Insertions into this list before this one: the walk meets greater serials first.
        std::uint32_t serial;
        ObjectRecord own_record;

        std::uint32_t Hash() const;  // of the key
    };
    // A walk from the front over nodes that may be changed, or `const` ones. A node is not removed
    // while a walk stands on it.
    template <typename AnyNode>
    class Iterator {
    public:
        explicit Iterator(AnyNode* node) : node_(node) {}
        AnyNode& operator*() const { return *node_; }
        Iterator& operator++() {
            node_ = node_->next;
            return *this;
        }
        bool operator!=(const Iterator& other) const { return node_ != other.node_; }

    private:
        AnyNode* node_;
    };
    // A place in a walk that is not done in one go; null at the end.
    using Cursor = Node*;

    // An empty list; null when there is no memory.
    static std::unique_ptr<ObjectList> CreateList();
    ~ObjectList();
    ObjectList(const ObjectList&) = delete;
    ObjectList& operator=(const ObjectList&) = delete;

    // The node under exactly this key, or null. The record is node->record.
    Node* FindByKey(const ObjectKey& key) const;
    // Enters a copy of `record`: in the place of the record that the key holds already, or in a new
    // node at the front. Null when there is no memory; the list is as before.
    Node* InsertByKey(const ObjectKey& key, const ObjectRecord& record);
    // The same for who needs no node; false when there is no memory.
    bool InsertCopy(const ObjectKey& key, const ObjectRecord& record) {
        return InsertByKey(key, record) != nullptr;
    }
    // Makes a record and inserts it under its own key. False when there is no memory.
    bool AddObject(const ObjectRecord& record) { return InsertCopy(KeyOf(record), record); }
    // Frees the node under this key and its record; 0 when there is none.
    int RemoveByKey(const ObjectKey& key);
    // The same for a node of this list.
    void Remove(Node& node);
    // Removes every node for which `is_removed` holds, asking each in a walk from the front.
    template <typename Predicate>
    void RemoveIf(Predicate is_removed) {
        for (Node* node = first_; node != nullptr;) {
            Node& asked = *node;
            node = asked.next;
            if (is_removed(asked)) {
                Remove(asked);
            }
        }
    }

    Iterator<Node> begin() { return Iterator<Node>(first_); }
    Iterator<Node> end() { return Iterator<Node>(nullptr); }
    Iterator<const Node> begin() const { return Iterator<const Node>(first_); }
    Iterator<const Node> end() const { return Iterator<const Node>(nullptr); }
    Cursor First() const { return first_; }
    // Copies the cursor's key and record pointer (either may be null), moves on; 0 at the end.
    static int Next(Cursor& cursor, ObjectKey* key_out, ObjectRecord** record_out);

    // Makes room in the index for so many records in all. False when there is no memory.
    bool Reserve(std::size_t records);
    void ClearList();
    std::size_t CountRecords() const { return index_.count(); }
    // The greatest state number of the records; 0 for an empty list.
    std::uint16_t MaxStateNumber() const;
    // The least; all ones for an empty list.
    std::uint32_t MinStateNumber() const;

private:
    ObjectList() = default;
    Node* NewNode(const ObjectKey& key);

    Slabs<Node> nodes_;
    Node* first_ = nullptr;
    HashIndex<Node> index_;
    std::uint32_t next_serial_ = 0;
};

// A copy of a block of its own, freed with `delete`. Null when there is no memory.
ObjectRecord* NewObjectRecord(const ObjectRecord& record);

// Destroys the list in `cell`, if any, and puts a new empty one there. False when out of memory.
bool ResetList(std::unique_ptr<ObjectList>& cell);

}  // namespace tolvenar
