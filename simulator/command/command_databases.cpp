// db-import, db-export, db-delete: the device's databases as JSON.
#include "simulator/command/command_row.h"
#include "simulator/databases/database_json.h"

namespace sim {

Json RunDbImport(Device& device, const Words& words) {
    databases::ImportJson(device, Json::parse(ReadHostFile(words[0])));
    return Done();
}

Json RunDbExport(Device& device, const Words& words) {
    WriteHostFile(words[0], databases::DumpJson(device).dump(1) + "\n");
    return Done();
}

Json RunDbDelete(Device& device, const Words& words) {
    return DoneOrThrow(databases::DeleteByName(device, words[0]), "no such database: " + words[0]);
}

}  // namespace sim
