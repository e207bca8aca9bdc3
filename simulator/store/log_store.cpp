#include "simulator/store/log_store.h"

#include <cstring>
#include <exception>
#include <stdexcept>
#include <windows.h>

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

// What the head file holds, read and written at once: which log counts, and how much of it.
union Published {
    struct {
        std::uint32_t length;
        std::uint32_t number;
    } log;
    LONGLONG whole;
};
static_assert(sizeof(Published) == 8);

HANDLE OpenShared(const std::wstring& path) {
    return ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                         OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

std::wstring LogPath(const std::wstring& folder, std::uint32_t number) {
    return folder + L"\\state." + (number != 0 ? std::to_wstring(number) + L"." : L"") + L"log";
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
    if (value != nullptr) {
        out += *value;
    }
}

}  // namespace

struct LogStore::Files {
    std::wstring folder;
    HANDLE log = INVALID_HANDLE_VALUE;
    std::uint32_t log_number = 0;
    HANDLE head = INVALID_HANDLE_VALUE;
    volatile LONGLONG* published = nullptr;

    ~Files() {
        if (published != nullptr) {
            ::UnmapViewOfFile(const_cast<LONGLONG*>(published));
        }
        ::CloseHandle(head);
        ::CloseHandle(log);
    }
    void OpenLog(std::uint32_t number) {
        ::CloseHandle(log);
        log = OpenShared(LogPath(folder, number));
        log_number = number;
    }
    Published Read() const {
        Published now;
        now.whole = ::InterlockedCompareExchange64(published, 0, 0);
        return now;
    }
    void Publish(std::uint32_t length) {
        Published next{};
        next.log = {length, log_number};
        ::InterlockedExchange64(published, next.whole);
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
    // The bytes between two places; fewer when the log has none there.
    std::string ReadAt(std::uint32_t begin, std::uint32_t end) {
        std::string bytes(end - begin, '\0');
        DWORD count = 0;
        ::SetFilePointer(log, static_cast<LONG>(begin), nullptr, FILE_BEGIN);
        ::ReadFile(log, &bytes[0], end - begin, &count, nullptr);
        bytes.resize(count);
        return bytes;
    }
};

LogStore::LogStore(const std::wstring& folder)
    : folder_(folder), files_(std::make_unique<Files>()) {
    files_->folder = folder;
    files_->head = OpenShared(folder + L"\\state.head");
    HANDLE mapping =
        ::CreateFileMappingW(files_->head, nullptr, PAGE_READWRITE, 0, kHeadFileBytes, nullptr);
    if (mapping != nullptr) {
        files_->published =
            static_cast<volatile LONGLONG*>(::MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0));
        ::CloseHandle(mapping);
    }
    if (files_->published == nullptr) {
        throw std::runtime_error("no device in this folder");
    }
    files_->OpenLog(files_->Read().log.number);
    CatchUp();
}

LogStore::~LogStore() = default;

void LogStore::CatchUp() {
    Published now = files_->Read();
    while (now.log.number != files_->log_number) {  // compacted by another process
        Clear();
        read_ = 0;
        files_->OpenLog(now.log.number);
        now = files_->Read();
    }
    if (now.log.length == read_) {
        return;
    }
    const std::string bytes = files_->ReadAt(read_, now.log.length);
    if (bytes.size() != now.log.length - read_) {
        if (files_->Read().log.number != files_->log_number) {
            CatchUp();  // the log was compacted and deleted before it was opened here
            return;
        }
        throw std::runtime_error("the device's log is shorter than its published length");
    }
    Apply(bytes.data(), bytes.size());
    read_ = now.log.length;
}

void LogStore::Clear() {
    places_.clear();
    const Map gone = std::move(map_);
    map_.clear();
    for (const auto& [key, value] : gone) {
        Tell(key, &value, nullptr);
    }
}

std::optional<std::string> LogStore::Replace(const std::u16string& key,
                                             std::optional<std::string> value) {
    CountStep();
    const auto found = places_.find(key);
    const bool was_there = found != places_.end();
    std::optional<std::string> before;
    const std::string* now = nullptr;
    if (was_there) {
        before = std::move(found->second->second);
    }
    if (value && was_there) {
        now = &(found->second->second = std::move(*value));
    } else if (value) {
        // A compacted log is in order: there each key goes behind the last.
        const auto at = map_.emplace_hint(map_.end(), key, std::move(*value));
        places_.emplace(at->first, at);
        now = &at->second;
    } else if (was_there) {
        const auto at = found->second;
        places_.erase(found);
        map_.erase(at);
    }
    Tell(key, before ? &*before : nullptr, now);
    return before;
}

void LogStore::Tell(const std::u16string& key, const std::string* before, const std::string* now) {
    if (before == nullptr && now == nullptr) {
        return;
    }
    for (const auto& [prefix, watcher] : watchers_) {
        if (key.compare(0, prefix.size(), prefix) == 0) {
            watcher->Changed(key, before, now);
        }
    }
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
        const bool is_erased = head.value_bytes == kErased;
        Replace(key,
                is_erased ? std::nullopt : std::optional(std::string(value, head.value_bytes)));
        at += head.total_bytes;
    }
}

void LogStore::Publish(const Change& change) {
    std::string entries;
    for (const auto& [key, old] : change.before_) {
        const auto now = places_.find(key);
        if (now != places_.end()) {
            AppendEntry(entries, key, &now->second->second);
        } else if (old) {
            AppendEntry(entries, key, nullptr);
        }
    }
    if (entries.empty()) {
        return;
    }
    files_->WriteAt(read_, entries);
    read_ += static_cast<std::uint32_t>(entries.size());
    files_->Publish(read_);
}

void LogStore::Compact() {
    std::lock_guard guard(mutex_);
    files_->Lock();
    CatchUp();
    std::string all;
    for (const auto& [key, value] : map_) {
        AppendEntry(all, key, &value);
    }
    const std::uint32_t old_number = files_->log_number;
    files_->OpenLog(old_number + 1);
    files_->WriteAt(0, all);
    read_ = static_cast<std::uint32_t>(all.size());
    files_->Publish(read_);
    files_->Unlock();
    ::DeleteFileW(LogPath(folder_, old_number).c_str());
}

LogStore::View::View(LogStore& store) : store_(store), guard_(store.mutex_) {
    if (store_.innermost_ == nullptr) {
        store_.CatchUp();
    }
}

const std::string* LogStore::View::Find(const std::u16string& key) const {
    store_.CountStep();
    const auto found = store_.places_.find(key);
    return found == store_.places_.end() ? nullptr : &found->second->second;
}

const LogStore::Map& LogStore::View::map() const { return store_.map_; }

void LogStore::View::Watch(std::u16string prefix, Watcher& watcher) const {
    ForEach(prefix, [&](const std::u16string& key, const std::string& value) {
        watcher.Changed(key, nullptr, &value);
    });
    store_.watchers_.emplace_back(std::move(prefix), &watcher);
}

LogStore::Change::Change(LogStore& store)
    : View(store), outer_(store.innermost_), exceptions_(std::uncaught_exceptions()) {
    if (outer_ == nullptr) {
        store_.files_->Lock();
        store_.CatchUp();
    }
    store_.innermost_ = this;
}

LogStore::Change::~Change() {
    if (std::uncaught_exceptions() > exceptions_) {
        TakeBack();
    }
    store_.innermost_ = outer_;
    if (outer_ != nullptr) {
        outer_->before_.merge(before_);  // what the outer one knows is older and stays
        return;
    }
    store_.Publish(*this);
    store_.files_->Unlock();
}

void LogStore::Change::TakeBack() {
    for (auto& [key, old] : before_) {
        store_.Replace(key, std::move(old));
    }
    before_.clear();
}

void LogStore::Change::Set(const std::u16string& key, std::string value) {
    std::optional<std::string> old = store_.Replace(key, std::move(value));
    store_.innermost_->before_.try_emplace(key, std::move(old));
}

void LogStore::Change::Erase(const std::u16string& key) {
    std::optional<std::string> old = store_.Replace(key, std::nullopt);
    if (old) {
        store_.innermost_->before_.try_emplace(key, std::move(old));
    }
}

}  // namespace sim
