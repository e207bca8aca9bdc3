#include "snapshot/records/object_list.h"

#include <algorithm>
#include <new>

namespace tolvenar {
namespace {

std::uint32_t HashOf(const ObjectKey& key) {
    const std::uint32_t version = MixBits(MixBits(0, key.state_and_info), key.fingerprint);
    return MixBits(MixBits(version, key.TolvOID), key.dwOID);
}

}  // namespace

inline std::uint32_t ObjectList::Node::Hash() const { return HashOf(key); }

std::unique_ptr<ObjectList> ObjectList::CreateList() {
    return std::unique_ptr<ObjectList>(new (std::nothrow) ObjectList);
}

ObjectList::~ObjectList() = default;

ObjectList::Node* ObjectList::FindByKey(const ObjectKey& key) const {
    return index_.Find(HashOf(key), [&key](const Node& node) { return node.key == key; });
}

ObjectList::Node* ObjectList::InsertByKey(const ObjectKey& key, const ObjectRecord& record) {
    Node* node = FindByKey(key);
    if (node == nullptr) {
        node = NewNode(key);
    }
    if (node != nullptr) {
        *node->record = record;
    }
    return node;
}

ObjectList::Node* ObjectList::NewNode(const ObjectKey& key) {
    Node* const node = index_.ReserveOneMore() ? nodes_.Take() : nullptr;
    if (node == nullptr) {
        return nullptr;
    }
    node->key = key;
    node->record = &node->own_record;
    node->next = first_;
    node->serial = next_serial_++;
    index_.Add(*node);
    if (first_ != nullptr) {
        first_->previous = node;
    }
    first_ = node;
    return node;
}

int ObjectList::RemoveByKey(const ObjectKey& key) {
    Node* node = FindByKey(key);
    if (node == nullptr) {
        return 0;
    }
    Remove(*node);
    return 1;
}

void ObjectList::Remove(Node& node) {
    index_.Remove(node);
    (node.previous == nullptr ? first_ : node.previous->next) = node.next;
    if (node.next != nullptr) {
        node.next->previous = node.previous;
    }
    nodes_.GiveBack(node);
}

int ObjectList::Next(Cursor& cursor, ObjectKey* key_out, ObjectRecord** record_out) {
    if (cursor == nullptr) {
        return 0;
    }
    if (key_out != nullptr) {
        *key_out = cursor->key;
    }
    if (record_out != nullptr) {
        *record_out = cursor->record;
    }
    cursor = cursor->next;
    return 1;
}

bool ObjectList::Reserve(std::size_t records) { return index_.Reserve(records); }

void ObjectList::ClearList() {
    first_ = nullptr;
    index_.Clear();
    nodes_.Clear();
}

std::uint16_t ObjectList::MaxStateNumber() const {
    std::uint16_t greatest = 0;
    for (const Node& node : *this) {
        greatest = std::max(greatest, node.record->state_number);
    }
    return greatest;
}

std::uint32_t ObjectList::MinStateNumber() const {
    std::uint32_t least = 0xFFFFFFFF;
    for (const Node& node : *this) {
        least = std::min<std::uint32_t>(least, node.record->state_number);
    }
    return least;
}

ObjectRecord* NewObjectRecord(const ObjectRecord& record) {
    return new (std::nothrow) ObjectRecord(record);
}

bool ResetList(std::unique_ptr<ObjectList>& cell) {
    cell.reset();
    cell = ObjectList::CreateList();
    return cell != nullptr;
}

}  // namespace tolvenar
