// Windows CE's view of records: seeking, reading into one marshalled block, writing, deleting.
#include <algorithm>
#include <cstring>
#include <windbase.h>
#include <windows.h>

#include "simulator/databases/open_database.h"
#include "simulator/exports/gated.h"
#include "simulator/system/handles.h"
#include "simulator/system/heap_count.h"
#include "simulator/system/host_calls.h"

namespace {

using sim::databases::OpenDatabase;
using sim::databases::Property;
using sim::databases::Record;
using DatabaseHandle = std::shared_ptr<OpenDatabase>;

constexpr DWORD kSeeksByValue = CEDB_SEEK_VALUESMALLER | CEDB_SEEK_VALUEFIRSTEQUAL |
                                CEDB_SEEK_VALUEGREATER | CEDB_SEEK_VALUENEXTEQUAL;
constexpr std::size_t kAlignment = 4;

DatabaseHandle Lookup(HANDLE database) {
    return sim::handles::Lookup<OpenDatabase>(sim::handles::Kind::kDatabase, database);
}

// The value's bytes as they are stored; false for a pointer that leads nowhere or no type.
bool TakeValue(const CEPROPVAL& given, Property& property) {
    property.propid = given.propid;
    const void* bytes = &given.val;
    std::size_t size = 0;
    if (property.type() == sim::databases::kText) {
        bytes = given.val.lpwstr;
        size = bytes != nullptr ? std::wcslen(given.val.lpwstr) * sizeof(WCHAR) : 0;
    } else if (property.type() == sim::databases::kBlob) {
        bytes = given.val.blob.lpb;
        size = given.val.blob.dwCount;
    } else {
        size = static_cast<std::size_t>(std::max(0, FixedBytes(property.type())));
    }
    if (bytes == nullptr && (size != 0 || property.type() == sim::databases::kText)) {
        return false;
    }
    if (size > sim::databases::kMaxPropertyBytes) {
        return false;
    }
    property.value.assign(static_cast<const char*>(size != 0 ? bytes : ""), size);
    return IsValid(property);
}

std::size_t TailBytes(const Property& property) {
    const bool is_text = property.type() == sim::databases::kText;
    if (!is_text && property.type() != sim::databases::kBlob) {
        return 0;
    }
    const std::size_t size = property.value.size() + (is_text ? sizeof(WCHAR) : 0);
    return (size + kAlignment - 1) / kAlignment * kAlignment;
}

// One row of an answer: an asked property, or an absent one.
struct Row {
    CEPROPID propid = 0;
    const Property* property = nullptr;
};

std::size_t BlockBytes(const std::vector<Row>& rows) {
    std::size_t bytes = rows.size() * sizeof(CEPROPVAL);
    for (const Row& row : rows) {
        bytes += row.property != nullptr ? TailBytes(*row.property) : 0;
    }
    return bytes;
}

void FillValue(const Property& property, CEPROPVAL& out, BYTE*& tail) {
    const std::string& value = property.value;
    if (property.type() == sim::databases::kText) {
        out.val.lpwstr = reinterpret_cast<LPWSTR>(tail);
    } else if (property.type() == sim::databases::kBlob) {
        out.val.blob.dwCount = static_cast<DWORD>(value.size());
        out.val.blob.lpb = tail;
    } else {
        std::memcpy(&out.val, value.data(), value.size());
        return;
    }
    std::memcpy(tail, value.data(), value.size());
    tail += TailBytes(property);
}

// The array first, then texts and blobs in its order; what is between them is zero.
void FillBlock(const std::vector<Row>& rows, BYTE* block) {
    std::memset(block, 0, BlockBytes(rows));
    BYTE* tail = block + rows.size() * sizeof(CEPROPVAL);
    for (const Row& row : rows) {
        CEPROPVAL out;
        std::memset(static_cast<void*>(&out), 0, sizeof out);
        out.propid = row.propid;
        out.wFlags = CEDB_PROPNOTFOUND;
        if (row.property != nullptr) {
            out.wFlags = row.property->flags;
            FillValue(*row.property, out, tail);
        }
        std::memcpy(block, &out, sizeof out);
        block += sizeof out;
    }
}

// A block of the given heap, or a local one, in the place of `old`; null when memory is short, and
// then `old` stays.
BYTE* Reallocate(HANDLE heap, BYTE* old, std::size_t bytes) {
    void* block = heap != nullptr ? sim::host::AllocateBlock(heap, 0, bytes)
                                  : sim::host::AllocateLocal(LMEM_FIXED, bytes);
    if (block == nullptr) {
        return nullptr;
    }
    sim::NoteTaken(heap, sim::host::BlockBytes(heap, block));
    if (old == nullptr) {
        return static_cast<BYTE*>(block);
    }
    sim::NoteFreed(heap, sim::host::BlockBytes(heap, old));
    if (heap != nullptr) {
        sim::host::FreeBlock(heap, 0, old);
    } else {
        sim::host::FreeLocal(old);
    }
    return static_cast<BYTE*>(block);
}

// Makes the caller's buffer large enough, or tells why not.
DWORD Provide(DWORD flags, HANDLE heap, std::size_t bytes, LPBYTE* buffer, LPDWORD size) {
    const bool fits = *buffer != nullptr && *size >= bytes;
    *size = static_cast<DWORD>(bytes);
    if (fits || bytes == 0) {
        return ERROR_SUCCESS;
    }
    if ((flags & CEDB_ALLOWREALLOC) == 0) {
        return ERROR_INSUFFICIENT_BUFFER;
    }
    BYTE* block = Reallocate(heap, *buffer, bytes);
    if (block == nullptr) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    *buffer = block;
    return ERROR_SUCCESS;
}

std::vector<Row> RowsOf(const Record& record, const CEPROPID* asked, WORD count) {
    std::vector<Row> rows;
    if (asked == nullptr) {
        for (const Property& property : record) {
            rows.push_back({property.propid, &property});
        }
        return rows;
    }
    for (WORD i = 0; i < count; ++i) {
        rows.push_back({asked[i], Find(record, asked[i])});
    }
    return rows;
}

// Whether an answer without a single property is an error: always when some were asked for; for a
// record that has none when the device is set so.
bool IsNoData(const std::vector<Row>& rows, bool all_asked) {
    for (const Row& row : rows) {
        if (row.property != nullptr) {
            return false;
        }
    }
    return !all_asked || Device::Current().Setting("database.empty.record", "") == "no-data";
}

CEOID Read(OpenDatabase& database, DWORD flags, LPWORD count, const CEPROPID* asked, LPBYTE* buffer,
           LPDWORD size, HANDLE heap, LastError& last) {
    std::uint32_t oid = 0;
    Record record;
    if (!last.Answer(database.Current(oid, record))) {
        return 0;
    }
    const std::vector<Row> rows = RowsOf(record, asked, *count);
    if (!last.Answer(Provide(flags, heap, BlockBytes(rows), buffer, size))) {
        return 0;
    }
    *count = static_cast<WORD>(rows.size());
    if (!rows.empty()) {
        FillBlock(rows, *buffer);
    }
    if (!IsNoData(rows, asked == nullptr)) {
        database.Advance();
        return oid;
    }
    if (Device::Current().Setting("database.no.data", "advances") == "advances") {
        database.Advance();
    }
    last.Set(ERROR_NO_DATA);
    return 0;
}

CEOID Write(OpenDatabase& database, std::uint32_t oid, WORD count, const CEPROPVAL* values,
            LastError& last) {
    Record changes;
    Record deletions;
    for (WORD i = 0; i < count; ++i) {
        CEPROPVAL given;
        std::memcpy(static_cast<void*>(&given), values + i, sizeof given);
        Property property;
        property.propid = given.propid;
        if ((given.wFlags & CEDB_PROPDELETE) != 0) {
            deletions.push_back(std::move(property));
        } else if (TakeValue(given, property)) {
            Put(changes, property);
        } else {
            last.Set(ERROR_INVALID_PARAMETER);
            return 0;
        }
    }
    return last.Answer(database.Write(oid, changes, deletions)) ? oid : 0;
}

CEOID SeekByValue(OpenDatabase& database, DWORD way, const CEPROPVAL* value, std::uint32_t& index) {
    CEPROPVAL given;
    Property property;
    if (value == nullptr) {
        return 0;
    }
    std::memcpy(static_cast<void*>(&given), value, sizeof given);
    const bool is_sorted_by = given.propid == database.sort_propid() && given.propid != 0;
    return is_sorted_by && TakeValue(given, property) ? database.SeekValue(way, property, index)
                                                      : 0;
}

CEOID Seek(HANDLE handle, DWORD way, DWORD value, LPDWORD index) {
    LastError last;
    const DatabaseHandle database = Lookup(handle);
    std::uint32_t reached = 0;
    CEOID oid = 0;
    if (database && index != nullptr) {
        oid = (way & kSeeksByValue) != 0
                  ? SeekByValue(*database, way, reinterpret_cast<const CEPROPVAL*>(value), reached)
                  : database->SeekTo(way, value, reached);
    }
    if (oid == 0) {
        last.Set(ERROR_INVALID_PARAMETER);
        return 0;
    }
    *index = reached;
    return oid;
}

}  // namespace

CEOID WINAPI CeSeekDatabase(HANDLE database, DWORD way, DWORD value, LPDWORD index) {
    return Gated(
        Call::CeSeekDatabase, CEOID{}, [&] { return Seek(database, way, value, index); }, database,
        way, value);
}

CEOID WINAPI CeSeekDatabaseEx(HANDLE database, DWORD way, DWORD value, WORD value_count,
                              LPDWORD index) {
    return Gated(
        Call::CeSeekDatabaseEx, CEOID{},
        [&]() -> CEOID {
            // Sort orders of several properties do not exist here, so neither do several values.
            if ((way & kSeeksByValue) != 0 && value_count != 1) {
                sim::SetHostError(ERROR_INVALID_PARAMETER);
                return 0;
            }
            return Seek(database, way, value, index);
        },
        database, way, value, value_count);
}

CEOID WINAPI CeReadRecordPropsEx(HANDLE handle, DWORD flags, LPWORD count, CEPROPID* asked,
                                 LPBYTE* buffer, LPDWORD size, HANDLE heap) {
    return Gated(
        Call::CeReadRecordPropsEx, CEOID{},
        [&]() -> CEOID {
            LastError last;
            const DatabaseHandle database = Lookup(handle);
            if (!database || count == nullptr || buffer == nullptr || size == nullptr ||
                (asked != nullptr && *count == 0)) {
                last.Set(ERROR_INVALID_PARAMETER);
                return 0;
            }
            return Read(*database, flags, count, asked, buffer, size, heap, last);
        },
        handle, flags);
}

CEOID WINAPI CeWriteRecordProps(HANDLE handle, CEOID oid, WORD count, CEPROPVAL* values) {
    return Gated(
        Call::CeWriteRecordProps, CEOID{},
        [&]() -> CEOID {
            LastError last;
            const DatabaseHandle database = Lookup(handle);
            if (!database || count == 0 || values == nullptr) {
                last.Set(ERROR_INVALID_PARAMETER);
                return 0;
            }
            return Write(*database, oid, count, values, last);
        },
        handle, oid, count);
}

BOOL WINAPI CeDeleteRecord(HANDLE handle, CEOID oid) {
    return GatedAnswer(
        Call::CeDeleteRecord,
        [&] {
            const DatabaseHandle database = Lookup(handle);
            const bool deleted = database && database->store().DeleteRecord(database->oid(), oid);
            return deleted ? 0 : ERROR_INVALID_PARAMETER;
        },
        handle, oid);
}
