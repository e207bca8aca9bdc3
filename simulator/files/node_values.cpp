// What the table tells of a node beyond its place in the tree: attributes, size and times.
#include <windows.h>

#include "simulator/files/file_table.h"
#include "simulator/system/settings.h"

namespace sim::files {
namespace {

// The object store's identifiers do not come so far.
constexpr std::uint32_t kFirstCardOid = 0x70000000;
constexpr std::uint32_t kNoOid = 0xFFFFFFFF;

std::uint64_t PresentBias(Device& device) {
    const std::int64_t minutes = BiasAt(DeviceZone(device), device.NowUtc());
    return static_cast<std::uint64_t>(minutes * kTicksPerMinute);
}

}  // namespace

std::uint32_t FileTable::AttributesOf(const Node& node) {
    std::uint32_t attributes = node.stored_attributes;
    if (node.is_folder() && node.on_card) {
        const std::string which = device_.Setting("card.temporary", "all");
        if (which == "all" || (which == "root" && node.is_card)) {
            attributes |= kTemporary;
        }
    }
    return attributes != 0 ? attributes : kNormal;
}

std::uint32_t FileTable::ContentSize(std::uint32_t number) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    const bool there =
        ::GetFileAttributesExW(ContentFile(number).c_str(), GetFileExInfoStandard, &data) != FALSE;
    return there ? data.nFileSizeLow : 0;
}

std::uint32_t FileTable::SizeOf(const Node& node) {
    if (node.is_folder()) {
        return 0;
    }
    const Slot& place = slot(node.number);
    return place.writers == 0 ? static_cast<std::uint32_t>(place.size) : ContentSize(node.number);
}

std::uint32_t FileTable::ToldOid(const Node& node) {
    if (!node.on_card) {
        return node.oid;
    }
    const std::string which = device_.Setting("card.oid", "none");
    return which == "own" ? kFirstCardOid + node.number : which == "ones" ? kNoOid : 0;
}

std::optional<Node> FileTable::ByToldOid(std::uint32_t oid) {
    if (oid >= kFirstCardOid && oid != kNoOid && device_.Setting("card.oid", "none") == "own") {
        return Get(oid - kFirstCardOid);
    }
    return ByOid(oid);
}

// The file system of cards keeps local times, and the platform reckons with the present distance
// from UTC.
std::uint64_t FileTable::OnMedium(const Node& node, std::uint64_t utc) {
    if (!node.on_card || device_.Setting("card.times", "utc") != "fat") {
        return utc;
    }
    const std::uint64_t local = utc - PresentBias(device_);
    return local - local % (2 * kTicksPerSecond);
}

std::uint64_t FileTable::FromMedium(const Node& node, std::uint64_t kept) {
    const bool is_local = node.on_card && device_.Setting("card.times", "utc") == "fat";
    return is_local && kept != 0 ? kept + PresentBias(device_) : kept;
}

Times FileTable::TimesOf(const Node& node) {
    const Slot& place = slot(node.number);
    const auto told = [&](const volatile long long& time) {
        return FromMedium(node, LoadTime(time));
    };
    const std::uint64_t modified = node.number == kRoot ? 0 : told(place.modified);
    if (node.number == kRoot || device_.Setting("file.times", "single") != "separate") {
        return {modified, modified, modified};
    }
    return {told(place.created), told(place.accessed), modified};
}

void FileTable::SetModified(const Node& node, std::uint64_t time) {
    StoreTime(slot(node.number).modified, OnMedium(node, time));
}

void FileTable::SetTimes(const Node& node, const Times& times) {
    Slot& place = slot(node.number);
    if (times.created != 0) {
        StoreTime(place.created, OnMedium(node, times.created));
    }
    if (times.accessed != 0) {
        StoreTime(place.accessed, OnMedium(node, times.accessed));
    }
    if (times.modified != 0) {
        StoreTime(place.modified, OnMedium(node, times.modified));
    }
}

}  // namespace sim::files
