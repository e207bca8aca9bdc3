#include "snapshot/records/object_list.h"

#include <new>

namespace tolvenar {
namespace {

constexpr std::size_t kFirstBucketCount = 64;

std::uint32_t Mix(std::uint32_t hash, std::uint32_t word) {
    hash = (hash ^ word) * 0x9E3779B1u;
    return hash ^ (hash >> 15);
}

// Every bit of the key reaches the low bits, which choose the bucket.
std::uint32_t HashOf(const ObjectKey& key) {
    return Mix(Mix(Mix(Mix(0, key.word1), key.word2), key.dwOID), key.TolvOID);
}

}  // namespace

std::unique_ptr<ObjectList> ObjectList::CreateList() {
    return std::unique_ptr<ObjectList>(new (std::nothrow) ObjectList);
}

ObjectList::~ObjectList() { ClearList(); }

ObjectList::Node*& ObjectList::BucketOf(const ObjectKey& key) const {
    return buckets_[HashOf(key) & (bucket_count_ - 1)];
}

// Doubles the buckets, which are a power of two. False, with the list as it was, without memory.
bool ObjectList::Grow() {
    const std::size_t larger = bucket_count_ == 0 ? kFirstBucketCount : bucket_count_ * 2;
    auto* buckets = new (std::nothrow) Node* [larger] {};
    if (buckets == nullptr) {
        return false;
    }
    delete[] buckets_;
    buckets_ = buckets;
    bucket_count_ = larger;
    for (Node* node = first_; node != nullptr; node = node->next) {
        Node*& bucket = BucketOf(node->key);
        node->bucket_next = bucket;
        bucket = node;
    }
    return true;
}

ObjectList::Node* ObjectList::FindByKey(const ObjectKey& key) const {
    if (bucket_count_ == 0) {
        return nullptr;
    }
    Node* node = BucketOf(key);
    while (node != nullptr && !(node->key == key)) {
        node = node->bucket_next;
    }
    return node;
}

ObjectList::Node* ObjectList::InsertByKey(const ObjectKey& key, ObjectRecord* record) {
    Node* node = FindByKey(key);
    if (node == nullptr) {
        return NewNode(key, record);
    }
    if (node->record != record) {
        delete node->record;
        node->record = record;
    }
    return node;
}

ObjectList::Node* ObjectList::NewNode(const ObjectKey& key, ObjectRecord* record) {
    // Without memory for more buckets the chains get longer; without any there is no list.
    if (count_ >= bucket_count_ && !Grow() && bucket_count_ == 0) {
        return nullptr;
    }
    Node*& bucket = BucketOf(key);
    auto* node = new (std::nothrow) Node{key, record, nullptr, first_, bucket, next_serial_};
    if (node == nullptr) {
        return nullptr;
    }
    bucket = node;
    if (first_ != nullptr) {
        first_->previous = node;
    }
    first_ = node;
    ++count_;
    ++next_serial_;
    return node;
}

bool ObjectList::InsertCopy(const ObjectKey& key, const ObjectRecord& record) {
    std::unique_ptr<ObjectRecord> copy(NewObjectRecord(record));
    if (copy == nullptr || InsertByKey(key, copy.get()) == nullptr) {
        return false;
    }
    static_cast<void>(copy.release());
    return true;
}

int ObjectList::RemoveByKey(const ObjectKey& key) {
    Node* node = FindByKey(key);
    if (node == nullptr) {
        return 0;
    }
    Remove(node);
    return 1;
}

void ObjectList::Remove(Node* node) {
    Node** link = &BucketOf(node->key);
    while (*link != node) {
        link = &(*link)->bucket_next;
    }
    *link = node->bucket_next;
    (node->previous == nullptr ? first_ : node->previous->next) = node->next;
    if (node->next != nullptr) {
        node->next->previous = node->previous;
    }
    --count_;
    delete node->record;
    delete node;
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

void ObjectList::ClearList() {
    while (first_ != nullptr) {
        Node* node = first_;
        first_ = node->next;
        delete node->record;
        delete node;
    }
    delete[] buckets_;
    buckets_ = nullptr;
    bucket_count_ = 0;
    count_ = 0;
}

std::uint16_t ObjectList::MaxStateNumber() const {
    std::uint16_t greatest = 0;
    for (const Node* node = first_; node != nullptr; node = node->next) {
        if (node->record->state_number > greatest) {
            greatest = node->record->state_number;
        }
    }
    return greatest;
}

std::uint32_t ObjectList::MinStateNumber() const {
    std::uint32_t least = 0xFFFFFFFF;
    for (const Node* node = first_; node != nullptr; node = node->next) {
        if (node->record->state_number < least) {
            least = node->record->state_number;
        }
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
