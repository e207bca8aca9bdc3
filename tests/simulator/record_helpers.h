// Databases with records for tests, through the platform's calls.
#pragma once

#include <cwchar>
#include <string>
#include <utility>
#include <vector>
#include <windbase.h>
#include <windows.h>

#include "tests/support/device_test.h"

namespace tests {

// Ids in the order in which a record's properties stand.
constexpr CEPROPID kShortId = (1u << 16) | CEVT_I2;
constexpr CEPROPID kNumberId = (2u << 16) | CEVT_I4;
constexpr CEPROPID kDoubleId = (3u << 16) | CEVT_R8;
constexpr CEPROPID kBoolId = (4u << 16) | CEVT_BOOL;
constexpr CEPROPID kWordId = (5u << 16) | CEVT_UI2;
constexpr CEPROPID kDwordId = (6u << 16) | CEVT_UI4;
constexpr CEPROPID kTextId = (7u << 16) | CEVT_LPWSTR;
constexpr CEPROPID kTimeId = (8u << 16) | CEVT_FILETIME;
constexpr CEPROPID kBlobId = (9u << 16) | CEVT_BLOB;

inline CEPROPVAL Empty(CEPROPID id, WORD flags = 0) {
    CEPROPVAL value{};
    value.propid = id;
    value.wFlags = flags;
    return value;
}

inline CEPROPVAL Number(LONG number, CEPROPID id = kNumberId) {
    CEPROPVAL value = Empty(id);
    value.val.lVal = number;
    return value;
}

inline CEPROPVAL Text(const wchar_t* text, CEPROPID id = kTextId) {
    CEPROPVAL value = Empty(id);
    value.val.lpwstr = const_cast<wchar_t*>(text);
    return value;
}

inline CEPROPVAL Double(double number) {
    CEPROPVAL value = Empty(kDoubleId);
    value.val.dblVal = number;
    return value;
}

inline CEPROPVAL Time(DWORD low, DWORD high) {
    CEPROPVAL value = Empty(kTimeId);
    value.val.filetime = {low, high};
    return value;
}

inline CEPROPVAL Blob(const void* bytes, DWORD count) {
    CEPROPVAL value = Empty(kBlobId);
    value.val.blob = {count, static_cast<LPBYTE>(const_cast<void*>(bytes))};
    return value;
}

// A property of every type.
inline std::vector<CEPROPVAL> EveryType() {
    static const BYTE bytes[] = {1, 2, 3};
    return {
        Number(0xFFFE, kShortId), Number(-3),           Double(1.5), Number(TRUE, kBoolId),
        Number(0xFFFF, kWordId),  Number(-1, kDwordId), Text(L"ab"), Time(0x11223344, 0x55667788),
        Blob(bytes, sizeof bytes)};
}

// An open database that is closed with its scope.
class OpenedDatabase {
public:
    explicit OpenedDatabase(HANDLE handle) : handle_(handle) {}
    OpenedDatabase(OpenedDatabase&& other) noexcept
        : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
    OpenedDatabase& operator=(OpenedDatabase&&) = delete;
    ~OpenedDatabase() {
        if (handle_ != INVALID_HANDLE_VALUE) {
            ::CloseHandle(handle_);
        }
    }
    HANDLE get() const { return handle_; }

private:
    HANDLE handle_;
};

// What a read made: the block of a heap, or a local one.
struct ReadBlock {
    explicit ReadBlock(HANDLE from = nullptr) : heap(from) {}
    ReadBlock(ReadBlock&& other) noexcept
        : oid(other.oid),
          count(other.count),
          size(other.size),
          bytes(std::exchange(other.bytes, nullptr)),
          heap(other.heap) {}
    ReadBlock& operator=(ReadBlock&&) = delete;
    ~ReadBlock() {
        if (bytes != nullptr && heap != nullptr) {
            ::HeapFree(heap, 0, bytes);
        } else if (bytes != nullptr) {
            ::LocalFree(bytes);
        }
    }
    const CEPROPVAL& operator[](std::size_t index) const {
        return reinterpret_cast<const CEPROPVAL*>(bytes)[index];
    }

    CEOID oid = 0;
    WORD count = 0;
    DWORD size = 0;
    LPBYTE bytes = nullptr;
    HANDLE heap;
};

class RecordFixture : public DeviceTest {
protected:
    RecordFixture() { CREATE_SYSTEMGUID(&store_); }

    CEOID Create(const wchar_t* name, const std::vector<SORTORDERSPEC>& sorts = {}) {
        CEDBASEINFO info{};
        info.dwFlags = CEDB_VALIDCREATE;
        std::wcsncpy(info.szDbaseName, name, CEDB_MAXDBASENAMELEN - 1);
        info.wNumSortOrder = static_cast<WORD>(sorts.size());
        for (std::size_t i = 0; i < sorts.size(); ++i) {
            info.rgSortSpecs[i] = sorts[i];
        }
        return ::CeCreateDatabaseEx(&store_, &info);
    }
    OpenedDatabase Open(CEOID oid, DWORD flags = CEDB_AUTOINCREMENT, CEPROPID sort = 0) {
        return OpenedDatabase(::CeOpenDatabaseEx(&store_, &oid, nullptr, sort, flags, nullptr));
    }
    static CEOID Write(const OpenedDatabase& database, std::vector<CEPROPVAL> values,
                       CEOID record = 0) {
        return ::CeWriteRecordProps(database.get(), record, static_cast<WORD>(values.size()),
                                    values.data());
    }
    // All properties of the record at the place.
    static ReadBlock Read(const OpenedDatabase& database) {
        ReadBlock block;
        block.oid = ::CeReadRecordPropsEx(database.get(), CEDB_ALLOWREALLOC, &block.count, nullptr,
                                          &block.bytes, &block.size, nullptr);
        return block;
    }
    static ReadBlock Read(const OpenedDatabase& database, std::vector<CEPROPID> asked) {
        ReadBlock block;
        block.count = static_cast<WORD>(asked.size());
        block.oid = ::CeReadRecordPropsEx(database.get(), CEDB_ALLOWREALLOC, &block.count,
                                          asked.data(), &block.bytes, &block.size, nullptr);
        return block;
    }
    static CEOID Seek(const OpenedDatabase& database, DWORD way, DWORD value = 0) {
        index_ = 0xA5A5;
        return ::CeSeekDatabase(database.get(), way, value, &index_);
    }
    static CEOID Seek(const OpenedDatabase& database, DWORD way, CEPROPVAL value) {
        return Seek(database, way, static_cast<DWORD>(reinterpret_cast<ULONG_PTR>(&value)));
    }
    // The records from the place to the end.
    static std::vector<CEOID> RestOf(const OpenedDatabase& database) {
        std::vector<CEOID> oids;
        while (const CEOID oid = Read(database).oid) {
            oids.push_back(oid);
        }
        return oids;
    }
    static DWORD LastError() { return ::GetLastError(); }

    CEGUID store_;
    static inline DWORD index_ = 0;
};

}  // namespace tests
