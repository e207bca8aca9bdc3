// The difference engine's rules in their plainest form: lists without any index, walked from the
// front. Slow and simple; what the program does is compared with it, order and log lines included.
// Header only and platform-free.
#pragma once

#include <list>
#include <string>
#include <vector>

#include "snapshot/compare/info_source.h"
#include "tests/support/records.h"

namespace tolvenar::plain {

using List = std::list<KeyedRecord>;

struct Reference {
    InfoSource& info;
    std::vector<std::string> log;  // "module: message"
};

inline List::iterator Find(List& list, const ObjectKey& key) {
    auto place = list.begin();
    while (place != list.end() && !(place->key == key)) {
        ++place;
    }
    return place;
}

inline void Insert(List& list, const ObjectKey& key, const ObjectRecord& record) {
    const auto place = Find(list, key);
    if (place != list.end()) {
        place->record = record;
    } else {
        list.push_front({key, record});
    }
}

inline bool IsRegistry(const ObjectRecord& record) {
    return static_cast<int>(record.type) == 1 || static_cast<int>(record.type) == 2;
}

inline bool Fetch(const ObjectRecord& record, InfoBlock& block, Reference& reference) {
    if (record.propOffset != 0) {
        if (reference.info.GetInfoFromStorage(record.propOffset, block)) {
            return true;
        }
        reference.log.push_back("IsEqualRegs: Fail GetInfoFromStorage");
        return false;
    }
    if (reference.info.GetOIDInfo(record.TolvOID, record.dwOID, block)) {
        return true;
    }
    reference.log.push_back("IsEqualRegs: Fail GetOIDInfo");
    return false;
}

inline bool EqualNames(const ObjectRecord& a, const ObjectRecord& b, Reference& reference) {
    InfoBlock block_a;
    InfoBlock block_b;
    if (!Fetch(a, block_a, reference) || !Fetch(b, block_b, reference)) {
        return false;
    }
    return std::u16string(block_a.name()) == std::u16string(block_b.name());
}

enum class Kinship { kSame, kOther, kUnknown };

inline Kinship Compare(const ObjectRecord& a, const ObjectRecord& b, Reference& reference) {
    if (a.type != b.type) {
        return Kinship::kOther;
    }
    InfoBlock block_a;
    InfoBlock block_b;
    if (!Fetch(a, block_a, reference) || !Fetch(b, block_b, reference)) {
        return Kinship::kUnknown;
    }
    const bool equal = block_a.head().hive == block_b.head().hive &&
                       std::u16string(block_a.name()) == std::u16string(block_b.name());
    return equal ? Kinship::kSame : Kinship::kOther;
}

inline bool OneBlock(const ObjectRecord& a, const ObjectRecord& b) {
    return a.propOffset != 0 && a.propOffset == b.propOffset &&
           a.TolvOID % 0x1000000 == b.TolvOID % 0x1000000;
}

// The first counter under which no other registry object stands.
inline ObjectKey FreeKey(List& list, const ObjectKey& key, const ObjectRecord& record,
                         Reference& reference) {
    for (std::uint32_t counter = 0; counter < 256; ++counter) {
        ObjectKey tried = key;
        tried.TolvOID += counter * 0x1000000;
        const auto present = Find(list, tried);
        if (present == list.end() || !IsRegistry(record) || !IsRegistry(present->record) ||
            OneBlock(record, present->record) ||
            Compare(record, present->record, reference) != Kinship::kOther) {
            return tried;
        }
    }
    return key;
}

inline bool Matches(const ObjectRecord& a, const ObjectRecord& b, Reference& reference) {
    const int type_b = static_cast<int>(b.type);
    if (type_b == 1 || (type_b == 2 && IsRegistry(a))) {
        return a.TolvOID % 0x1000000 == b.TolvOID % 0x1000000 && EqualNames(a, b, reference);
    }
    if (a.dwOID != b.dwOID || a.TolvOID != b.TolvOID) {
        return false;
    }
    if (a.info_checksum != b.info_checksum) {
        return false;
    }
    if (static_cast<int>(a.type) == 4 && type_b == 4) {
        return true;
    }
    return a.content_fingerprint == b.content_fingerprint;
}

inline void AddToDifference(ObjectRecord& a, std::uint16_t mark, List& diff, Reference& reference) {
    const int type = static_cast<int>(a.type);
    if (type == 32) {
        return;
    }
    const std::uint32_t fingerprint = type == 1 || type == 8 ? a.content_fingerprint : 0;
    const ObjectKey own_key{a.info_checksum * 0x10000u, fingerprint, a.dwOID, a.TolvOID};
    if (Find(diff, own_key) != diff.end()) {
        reference.log.push_back("CmpLists: Key is equal");
    }
    const ObjectKey key = FreeKey(diff, own_key, a, reference);
    ObjectRecord copy = a;
    if (mark == 8) {
        copy.TolvOID = key.TolvOID;
    }
    copy.flags = static_cast<std::uint16_t>((a.flags & 0xFFFC) | mark);
    Insert(diff, key, copy);
    a.state_number = 0;
}

inline void Match(List& from, List& against, List& diff, std::uint16_t mark, Reference& reference) {
    for (KeyedRecord& a : from) {
        if (a.record.flags & 2) {
            continue;
        }
        bool matched = false;
        for (KeyedRecord& b : against) {
            if (b.record.flags & 2) {
                continue;
            }
            if (!Matches(a.record, b.record, reference)) {
                continue;
            }
            a.record.flags |= 2;
            b.record.flags |= 2;
            matched = true;
            break;
        }
        if (!matched) {
            AddToDifference(a.record, mark, diff, reference);
        }
    }
}

inline void CmpLists(List& list1, List& list2, List& diff, Reference& reference) {
    Match(list2, list1, diff, 4, reference);
    Match(list1, list2, diff, 8, reference);
}

inline void DeleteCounterpart(List& out, const ObjectKey& key, const ObjectRecord& r,
                              Reference& reference) {
    if (!IsRegistry(r)) {
        const auto place = Find(out, key);
        if (place != out.end()) {
            out.erase(place);
        }
        return;
    }
    for (auto place = out.begin(); place != out.end(); ++place) {
        const ObjectRecord& c = place->record;
        if (IsRegistry(c) && OneBlock(r, c) && c.dwOID == r.dwOID &&
            std::memcmp(&c.info_checksum, &r.info_checksum, 12) == 0) {
            out.erase(place);
            return;
        }
    }
    for (auto place = out.begin(); place != out.end(); ++place) {
        const ObjectRecord& c = place->record;
        if (!IsRegistry(c) || c.TolvOID % 0x1000000 != r.TolvOID % 0x1000000) {
            continue;
        }
        if (OneBlock(r, c) || Compare(r, c, reference) == Kinship::kSame) {
            out.erase(place);
            return;
        }
    }
}

inline void Replay(List& out, const KeyedRecord& source, Reference& reference) {
    const ObjectRecord& r = source.record;
    ObjectKey key = source.key;
    key.state_and_info = key.state_and_info / 0x10000 * 0x10000;
    const ObjectKey own_key = key;
    if (r.flags & 0x34) {
        ObjectRecord copy = r;
        copy.flags = 0;
        key = FreeKey(out, key, r, reference);
        const auto present = Find(out, key);
        if (static_cast<int>(r.type) == 4 && (r.flags & 0x20) && present != out.end()) {
            copy.content_fingerprint = static_cast<std::uint16_t>(
                copy.content_fingerprint + present->record.content_fingerprint);
        }
        Insert(out, key, copy);
    }
    if (r.flags & 8) {
        DeleteCounterpart(out, own_key, r, reference);
    }
}

inline void BuildStateList(List& out, const List& all, std::uint32_t state, Reference& reference) {
    std::uint32_t least = 0xFFFFFFFF;
    for (const KeyedRecord& r : all) {
        if (r.record.state_number < least) {
            least = r.record.state_number;
        }
    }
    for (std::uint32_t s = least; s <= state && s <= 0xFFFF; ++s) {
        for (const KeyedRecord& r : all) {
            if (static_cast<int>(r.record.type) == 32 && r.record.state_number != state) {
                continue;
            }
            if (r.record.state_number == s) {
                Replay(out, r, reference);
            }
        }
    }
}

}  // namespace tolvenar::plain
