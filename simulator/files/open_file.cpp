#include "simulator/files/open_file.h"

#include <windows.h>

#include "simulator/files/card_absence.h"
#include "simulator/files/space.h"
#include "simulator/files/unsynced.h"

namespace sim::files {
namespace {

constexpr std::uint64_t kMaxFileBytes = 0xFFFFFFFE;

}  // namespace

OpenFile::OpenFile(FileTable& table, const Node& node, void* host, bool writes, bool for_mapping)
    : table_(table), node_(node), host_(host), writes_(writes), for_mapping_(for_mapping) {
    if (host_ == nullptr || !writes_) {
        return;
    }
    size_.emplace(table_, node_.number);
    size_->Set(::GetFileSize(host_, nullptr));
}

OpenFile::~OpenFile() {
    if (host_ == nullptr) {
        return;
    }
    if (size_) {
        size_->Set(::GetFileSize(host_, nullptr));
        size_.reset();
    }
    ::CloseHandle(host_);
}

std::uint32_t OpenFile::Read(void* buffer, std::uint32_t bytes, std::uint32_t& got) {
    got = 0;
    if (host_ == nullptr) {
        return ERROR_ACCESS_DENIED;
    }
    if (const std::uint32_t error = AbsenceOf(table_, node_)) {
        return error;
    }
    DWORD count = 0;
    if (!::ReadFile(host_, buffer, bytes, &count, nullptr)) {
        return ::GetLastError();
    }
    got = count;
    return 0;
}

std::uint32_t OpenFile::Write(const void* buffer, std::uint32_t bytes, std::uint32_t& put) {
    put = 0;
    if (host_ == nullptr || !writes_) {
        return ERROR_ACCESS_DENIED;
    }
    if (bytes == 0) {
        return 0;
    }
    if (const std::uint32_t error = AbsenceOf(table_, node_)) {
        return error;
    }
    const std::uint64_t start = ::SetFilePointer(host_, 0, nullptr, FILE_CURRENT);
    const std::uint64_t end = start + bytes;
    if (end > kMaxFileBytes) {
        return ERROR_DISK_FULL;
    }
    const auto size = static_cast<std::uint32_t>(table_.slot(node_.number).size);
    const std::uint32_t more = end > size ? static_cast<std::uint32_t>(end) - size : 0;
    if (more != 0 && !TakeSpace(table_, node_.on_card, more)) {
        return ERROR_DISK_FULL;
    }
    DWORD count = 0;
    const bool written = ::WriteFile(host_, buffer, bytes, &count, nullptr) != FALSE;
    const std::uint32_t error = written ? ERROR_DISK_FULL : ::GetLastError();
    if (!written || count != bytes) {
        GiveSpaceBack(table_, node_.on_card, more);
        return error;
    }
    if (more != 0) {
        size_->Set(static_cast<std::uint32_t>(end));
    }
    NoteChange(table_, node_,
               {ChangeKind::kWrite, static_cast<std::uint32_t>(start),
                std::string(static_cast<const char*>(buffer), bytes)});
    Touch();
    put = count;
    return 0;
}

std::uint32_t OpenFile::Seek(long distance, long* distance_high, std::uint32_t method,
                             std::uint32_t& position) {
    if (host_ == nullptr) {
        return ERROR_ACCESS_DENIED;
    }
    ::SetLastError(NO_ERROR);
    position = ::SetFilePointer(host_, distance, distance_high, method);
    return position == INVALID_SET_FILE_POINTER ? ::GetLastError() : 0;
}

std::uint32_t OpenFile::SetEnd() {
    if (host_ == nullptr || !writes_) {
        return ERROR_ACCESS_DENIED;
    }
    if (const std::uint32_t error = AbsenceOf(table_, node_)) {
        return error;
    }
    const std::uint32_t position = ::SetFilePointer(host_, 0, nullptr, FILE_CURRENT);
    return SetSize(position);
}

std::uint32_t OpenFile::GrowTo(std::uint32_t bytes) {
    std::uint32_t size = 0;
    if (const std::uint32_t error = Size(size)) {
        return error;
    }
    if (bytes <= size) {
        return 0;
    }
    const std::uint32_t position = ::SetFilePointer(host_, 0, nullptr, FILE_CURRENT);
    ::SetFilePointer(host_, static_cast<LONG>(bytes), nullptr, FILE_BEGIN);
    const std::uint32_t error = writes_ ? SetSize(bytes) : ERROR_ACCESS_DENIED;
    ::SetFilePointer(host_, static_cast<LONG>(position), nullptr, FILE_BEGIN);
    return error;
}

// The host's file position stands at the new end.
std::uint32_t OpenFile::SetSize(std::uint32_t bytes) {
    const auto size = static_cast<std::uint32_t>(table_.slot(node_.number).size);
    const std::uint32_t more = bytes > size ? bytes - size : 0;
    if (more != 0 && !TakeSpace(table_, node_.on_card, more)) {
        return ERROR_DISK_FULL;
    }
    if (!::SetEndOfFile(host_)) {
        const std::uint32_t error = ::GetLastError();
        GiveSpaceBack(table_, node_.on_card, more);
        return error;
    }
    if (bytes < size) {
        GiveSpaceBack(table_, node_.on_card, size - bytes);
    }
    size_->Set(bytes);
    if (bytes != size) {
        NoteChange(table_, node_, {ChangeKind::kSize, bytes, {}});
        Touch();
    }
    return 0;
}

std::uint32_t OpenFile::Flush() {
    if (!writes_) {
        return ERROR_ACCESS_DENIED;
    }
    if (const std::uint32_t error = AbsenceOf(table_, node_)) {
        return error;
    }
    if (node_.on_card) {
        if (const auto error = table_.device().NumberSetting("card.flush.error", 0)) {
            return static_cast<std::uint32_t>(error);
        }
    }
    NoteFlush(table_, node_);
    return 0;
}

bool OpenFile::is_unsynced() const { return IsUnsynced(table_, node_); }

std::uint32_t OpenFile::Size(std::uint32_t& size) {
    if (host_ == nullptr) {
        return ERROR_ACCESS_DENIED;
    }
    size = ::GetFileSize(host_, nullptr);
    return 0;
}

std::uint32_t OpenFile::SetTimes(const Times& times) {
    if (!writes_) {
        return ERROR_ACCESS_DENIED;
    }
    NoteChange(table_, node_, {ChangeKind::kEntry, 0, {}});
    table_.SetTimes(node_, times);
    return 0;
}

Times OpenFile::GetTimes() { return table_.TimesOf(node_); }

std::uint32_t OpenFile::Info(FileInfo& info) {
    const std::optional<Node> now = table_.Get(node_.number);
    if (!now) {
        return ERROR_FILE_NOT_FOUND;
    }
    info.attributes = table_.AttributesOf(*now);
    info.times = table_.TimesOf(*now);
    info.size = table_.SizeOf(*now);
    info.oid = table_.ToldOid(*now);
    info.number = now->number;
    info.on_card = now->on_card;
    return 0;
}

void OpenFile::Touch() { table_.SetModified(node_, table_.device().WriteTimeUtc()); }

}  // namespace sim::files
