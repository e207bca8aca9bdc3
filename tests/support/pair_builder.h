// A storage's pair of files made in memory, sound as a series of backups leaves it. Header only and
// platform-free.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "snapshot/records/checksum.h"
#include "snapshot/records/registry_objects.h"
#include "storage/format/property_encoding.h"
#include "tests/support/bytes.h"
#include "tests/support/records.h"

namespace tolvenar {

class PairBuilder {
public:
    using Text = std::u16string;

    // The following objects belong to it. Its own block comes first.
    void BeginState(const Bytes& description = "") {
        ++state_;
        records_.push_back({});
        Store(ObjectType::kState, 0, 0, u"Title", description, true);
    }
    ObjectRecord AddFile(const Text& path, const Bytes& contents, std::uint32_t dwOID) {
        return Store(kFile, 0x20, 0, path, contents, !contents.empty(), dwOID);
    }
    // A file of the ROM that a state tells of: its contents are not stored.
    ObjectRecord AddRomFile(const Text& path, std::uint32_t dwOID) {
        return Store(kFile, 0x40, 0, path, "", false, dwOID, 0);
    }
    ObjectRecord AddFolder(const Text& path, std::uint32_t dwOID) {
        return Store(kFile, 0x10, 0, path, "", false, dwOID, 0);
    }
    ObjectRecord AddKey(const Text& path) {
        const ObjectRecord key = Store(kKey, kHive, 0, path, "", false);
        return Identify(MakeTolvOID((u"80000001" + path).c_str(), path.data(), 2 * path.size(), 0),
                        key);
    }
    ObjectRecord AddValue(const Text& path, const Text& name, const Bytes& data,
                          std::uint32_t value_type = 3) {
        const Text joined = path + kNameSeparator + name;
        const ObjectRecord value = Store(kValue, kHive, value_type, joined, data, true);
        return Identify(MakeTolvOID((u"80000001" + joined).c_str(), data.data(), data.size(), 0),
                        value);
    }
    ObjectRecord AddDatabase(const Text& name, std::uint32_t dwOID) {
        return Store(kDatabase, 7, 1, name, Bytes(32, '\x02'), true, dwOID);
    }
    // One of a CEVT_I4.
    ObjectRecord AddRecord(const Text& database, std::uint32_t number, std::uint32_t dwOID) {
        // Of identifier, flags and value.
        return AddRecord(database, Property(0x00020003, number), 1,
                         Word(0x00020003) + Half(0) + Word(number), dwOID);
    }
    // One of `count` properties; `looked_at` is what the fingerprint is taken of.
    ObjectRecord AddRecord(const Text& database, const Bytes& properties, std::uint32_t count,
                           const Bytes& looked_at, std::uint32_t dwOID) {
        ObjectRecord record = Store(kDbRecord, count, 0, database, properties, true, dwOID);
        record.content_fingerprint = Checksum16(looked_at.data(), looked_at.size());
        records_.back().back() = record;
        return record;
    }
    // One of these properties; the value of a text is its units.
    struct TypedValue {
        std::uint32_t propid;
        Bytes value;
    };
    ObjectRecord AddRecord(const Text& database, const std::vector<TypedValue>& values,
                           std::uint32_t dwOID) {
        Bytes array;
        Bytes behind;
        Bytes looked_at;
        for (const TypedValue& typed : values) {
            const auto place = static_cast<std::uint32_t>(16 * values.size() + behind.size());
            const std::uint32_t type = typed.propid & 0xFFFF;
            looked_at += Word(typed.propid) + Half(0) + (IsLookedAt(type) ? typed.value : "");
            if (type == kPropertyString) {
                array += Property(typed.propid, place);
                behind += typed.value + Half(0);
            } else if (type == kPropertyBlob) {
                array +=
                    Property(typed.propid, static_cast<std::uint32_t>(typed.value.size()), place);
                behind += typed.value;
            } else {
                Bytes value = typed.value;
                value.resize(8);
                array += Word(typed.propid) + Half(0) + Half(0) + value;
            }
        }
        return AddRecord(database, array + behind, static_cast<std::uint32_t>(values.size()),
                         looked_at, dwOID);
    }
    void Delete(ObjectRecord record) {
        record.state_number = state_;
        record.flags = JF_DELETE;
        records_.back().push_back(record);
    }

    // As saved after the last backup: the records of the newest state first, the others as the
    // loads before have turned them.
    std::vector<ObjectRecord> Journal() const {
        std::vector<ObjectRecord> journal;
        for (const auto& of_state : records_) {
            std::reverse(journal.begin(), journal.end());
            std::vector<ObjectRecord> newest(of_state.rbegin(), of_state.rend());
            journal.insert(journal.begin(), newest.begin(), newest.end());
        }
        return journal;
    }
    Bytes JournalBytes() const {
        Bytes bytes;
        for (const ObjectRecord& record : Journal()) {
            bytes += BytesOf(record);
        }
        return bytes;
    }

    Bytes sav = Head(u"Handheld", 1);
    std::uint64_t time = 0;  // of the following states and files

private:
    static constexpr std::uint32_t kHive = 0x80000001;

    static bool IsLookedAt(std::uint32_t type) {
        return type != kPropertyBool && type != kPropertyR8;
    }

    ObjectRecord Store(ObjectType type, std::uint32_t first_field, std::uint32_t second_field,
                       const Text& name, const Bytes& data, bool has_data, std::uint32_t dwOID = 0,
                       std::uint16_t without_data = 0xFFFF) {
        const bool has_time = type == kFile || type == kState;
        const Bytes block =
            Block(first_field, second_field, has_time ? time : 0, data.size(), type, name);
        ObjectRecord record{};
        record.dwOID = dwOID;
        record.info_checksum = Checksum16(block.data(), block.size());
        record.content_fingerprint = type == ObjectType::kState ? 0
                                     : has_data ? Checksum16(data.data(), data.size())
                                                : without_data;
        record.propOffset = static_cast<std::uint32_t>(sav.size());
        sav += block;
        record.data_offset = has_data ? static_cast<std::uint32_t>(sav.size()) : kNoData;
        sav += data;
        record.state_number = state_;
        record.flags = JF_ADD;
        record.type = type;
        records_.back().push_back(record);
        return record;
    }
    ObjectRecord Identify(std::uint32_t TolvOID, ObjectRecord record) {
        record.TolvOID = TolvOID;
        records_.back().back() = record;
        return record;
    }

    std::uint16_t state_ = 0;
    std::vector<std::vector<ObjectRecord>> records_;  // of each state, in the order of its blocks
};

}  // namespace tolvenar
