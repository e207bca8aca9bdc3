// put, get, mkdir, rm, mv, attr, touch, ls, lock, unlock, lose, resume: the device's files, past
// attributes and sharing, and a card that loses its power or comes back late.
#include "simulator/command/command_row.h"
#include "simulator/files/card_absence.h"
#include "simulator/files/files.h"
#include "simulator/files/power_loss.h"
#include "simulator/files/suspend.h"

namespace sim {
namespace {

Json EntryAsJson(const files::Entry& entry) {
    Json json = {{"path", Utf8(entry.path)}, {"oid", entry.oid}, {"attributes", entry.attributes}};
    if (!entry.is_folder) {
        json["size"] = entry.size;
        json["modified"] = entry.modified;
    }
    return json;
}

}  // namespace

Json RunPut(Device& device, const Words& words) {
    files::Put(device, Wide(words[1]), ReadHostFile(words[0]));
    return Done();
}

Json RunGet(Device& device, const Words& words) {
    WriteHostFile(words[1], files::Get(device, Wide(words[0])));
    return Done();
}

Json RunMkdir(Device& device, const Words& words) {
    files::MakeFolder(device, Wide(words[0]));
    return Done();
}

Json RunRm(Device& device, const Words& words) {
    files::Erase(device, Wide(words[0]));
    return Done();
}

Json RunMv(Device& device, const Words& words) {
    files::Rename(device, Wide(words[0]), Wide(words[1]));
    return Done();
}

Json RunAttr(Device& device, const Words& words) {
    files::ReplaceAttributes(device, Wide(words[0]), static_cast<std::uint32_t>(Number(words[1])));
    return Done();
}

Json RunTouch(Device& device, const Words& words) {
    files::Touch(device, Wide(words[0]), static_cast<std::uint64_t>(Number(words[1])));
    return Done();
}

Json RunLs(Device& device, const Words& words) {
    Json list = Json::array();
    for (const files::Entry& entry : files::List(device, Wide(words[0]))) {
        list.push_back(EntryAsJson(entry));
    }
    return list;
}

Json RunLock(Device& device, const Words& words) {
    const std::string mode = words.size() > 1 ? words[1] : "none";
    if (mode != "none" && mode != "read" && mode != "write") {
        throw CommandError("usage: lock PATH [none|read|write]");
    }
    files::Lock(device, Wide(words[0]), mode);
    return Done();
}

Json RunUnlock(Device& device, const Words& words) {
    files::Unlock(device, Wide(words[0]));
    return Done();
}

Json RunLose(Device& device, const Words& words) {
    const auto seed = static_cast<std::uint32_t>(Number(words[0]));
    const std::uint32_t moment =
        words.size() > 1 ? static_cast<std::uint32_t>(Number(words[1])) : files::kAfterAllChanges;
    return {{"changes", files::LosePower(device, seed, moment)}};
}

Json RunSuspend(Device& device, const Words&) {
    files::Suspend(device);
    return Done();
}

Json RunResume(Device& device, const Words&) {
    files::Resume(device);
    return Done();
}

}  // namespace sim
