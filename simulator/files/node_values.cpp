// What the table tells of a node beyond its place in the tree: attributes, size and times.
#include <windows.h>

#include "simulator/files/file_table.h"

namespace sim::files {

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

Times FileTable::TimesOf(const Node& node) {
    const Slot& place = slot(node.number);
    const std::uint64_t modified = node.number == kRoot ? 0 : LoadTime(place.modified);
    if (node.number == kRoot || device_.Setting("file.times", "single") != "separate") {
        return {modified, modified, modified};
    }
    return {LoadTime(place.created), LoadTime(place.accessed), modified};
}

void FileTable::SetModified(const Node& node, std::uint64_t time) {
    StoreTime(slot(node.number).modified, time);
}

void FileTable::SetTimes(const Node& node, const Times& times) {
    Slot& place = slot(node.number);
    if (times.created != 0) {
        StoreTime(place.created, times.created);
    }
    if (times.accessed != 0) {
        StoreTime(place.accessed, times.accessed);
    }
    if (times.modified != 0) {
        StoreTime(place.modified, times.modified);
    }
}

}  // namespace sim::files
