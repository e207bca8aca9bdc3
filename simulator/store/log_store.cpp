#include "simulator/store/log_store.h"

#include <windows.h>

#include <cstring>
#include <stdexcept>

namespace sim {
namespace {

// One change in the log: this head, the key's UTF-16 units, the value's bytes.
struct EntryHead {
    std::uint32_t total_bytes;
    std::uint32_t key_units;
    std::uint32_t value_bytes;  // kErased: the key is gone
};
constexpr std::uint32_t kErased = 0xFFFFFFFF;
constexpr DWORD kHeadFileBytes = 4096;

HANDLE OpenShared(const std::wstring& path) {
    return ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                         OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

void AppendEntry(std::string& out, const std::u16string& key, const std::string* value) {
    EntryHead head{};
    head.key_units = static_cast<std::uint32_t>(key.size());
    head.value_bytes = value != nullptr ? static_cast<std::uint32_t>(value->size()) : kErased;
    const std::size_t key_bytes = key.size() * sizeof(char16_t);
    head.total_bytes = static_cast<std::uint32_t>(sizeof head + key_bytes +
                                                  (value != nullptr ? value->size() : 0));
    out.append(reinterpret_cast<const char*>(&head), sizeof head);
    out.append(reinterpret_cast<const char*>(key.data()), key_bytes);
    if (value != nullptr) { out += *value; }
}

}  // namespace

struct LogStore::Files {
    HANDLE log = INVALID_HANDLE_VALUE;
    HANDLE head = INVALID_HANDLE_VALUE;
    volatile LONG* length = nullptr;

    ~Files() {
        if (length != nullptr) { ::UnmapViewOfFile(const_cast<LONG*>(length)); }
        ::CloseHandle(head);
        ::CloseHandle(log);
    }
    void Lock() {
        OVERLAPPED whole{};
        ::LockFileEx(head, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &whole);
    }
    void Unlock() {
        OVERLAPPED whole{};
        ::UnlockFileEx(head, 0, 1, 0, &whole);
    }
    void WriteAt(std::uint32_t offset, const std::string& bytes) {
        DWORD written = 0;
        ::SetFilePointer(log, static_cast<LONG>(offset), nullptr, FILE_BEGIN);
        if (!::WriteFile(log, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) ||
            written != bytes.size()) {
            throw std::runtime_error("the device's log cannot be written");
        }
    }
};

LogStore::LogStore(const std::wstring& folder)
    : folder_(folder), files_(std::make_unique<Files>()) {
    files_->log = OpenShared(folder + L"\\state.log");
    files_->head = OpenShared(folder + L"\\state.head");
    HANDLE mapping =
        ::CreateFileMappingW(files_->head, nullptr, PAGE_READWRITE, 0, kHeadFileBytes, nullptr);
    if (mapping != nullptr) {
        files_->length =
            static_cast<volatile LONG*>(::MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0));
        ::CloseHandle(mapping);
    }
    if (files_->length == nullptr) { throw std::runtime_error("no device in this folder"); }
    CatchUp();
}

LogStore::~LogStore() = default;

void LogStore::CatchUp() {
    const auto end = static_cast<std::uint32_t>(*files_->length);
    if (end == read_) { return; }
    if (end < read_) {  // compacted by another process
        map_.clear();
        read_ = 0;
    }
    std::string bytes(end - read_, '\0');
    DWORD count = 0;
    ::SetFilePointer(files_->log, static_cast<LONG>(read_), nullptr, FILE_BEGIN);
    if (!::ReadFile(files_->log, &bytes[0], end - read_, &count, nullptr) || count != end - read_) {
        throw std::runtime_error("the device's log is shorter than its published length");
    }
    Apply(bytes.data(), bytes.size());
    read_ = end;
}

void LogStore::Apply(const char* bytes, std::size_t size) {
    for (std::size_t at = 0; at + sizeof(EntryHead) <= size;) {
        EntryHead head;
        std::memcpy(&head, bytes + at, sizeof head);
        if (head.total_bytes < sizeof head || head.total_bytes > size - at) {
            throw std::runtime_error("the device's log is damaged");
        }
        std::u16string key(head.key_units, u' ');
        std::memcpy(&key[0], bytes + at + sizeof head, head.key_units * sizeof(char16_t));
        const char* value = bytes + at + sizeof head + head.key_units * sizeof(char16_t);
        if (head.value_bytes == kErased) {
            map_.erase(key);
        } else {
            map_[std::move(key)].assign(value, head.value_bytes);
        }
        at += head.total_bytes;
    }
}

void LogStore::Publish() {
    if (pending_.empty()) { return; }
    files_->WriteAt(read_, pending_);
    read_ += static_cast<std::uint32_t>(pending_.size());
    ::InterlockedExchange(files_->length, static_cast<LONG>(read_));
    pending_.clear();
}

void LogStore::Compact() {
    std::lock_guard guard(mutex_);
    files_->Lock();
    CatchUp();
    std::string all;
    for (const auto& [key, value] : map_) { AppendEntry(all, key, &value); }
    ::InterlockedExchange(files_->length, 0);
    files_->WriteAt(0, all);
    read_ = static_cast<std::uint32_t>(all.size());
    ::SetFilePointer(files_->log, static_cast<LONG>(read_), nullptr, FILE_BEGIN);
    ::SetEndOfFile(files_->log);
    ::InterlockedExchange(files_->length, static_cast<LONG>(read_));
    files_->Unlock();
}

LogStore::View::View(LogStore& store) : store_(store), guard_(store.mutex_) {
    if (store_.change_depth_ == 0) { store_.CatchUp(); }
}

const std::string* LogStore::View::Find(const std::u16string& key) const {
    const auto found = store_.map_.find(key);
    return found == store_.map_.end() ? nullptr : &found->second;
}

const LogStore::Map& LogStore::View::map() const { return store_.map_; }

LogStore::Change::Change(LogStore& store) : View(store) {
    if (store_.change_depth_++ > 0) { return; }
    store_.files_->Lock();
    store_.CatchUp();
}

LogStore::Change::~Change() {
    if (--store_.change_depth_ > 0) { return; }
    store_.Publish();
    store_.files_->Unlock();
}

void LogStore::Change::Set(const std::u16string& key, std::string value) {
    AppendEntry(store_.pending_, key, &value);
    store_.map_[key] = std::move(value);
}

void LogStore::Change::Erase(const std::u16string& key) {
    if (store_.map_.erase(key) == 0) { return; }
    AppendEntry(store_.pending_, key, nullptr);
}

}  // namespace sim
