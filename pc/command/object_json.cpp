#include "pc/command/object_json.h"

namespace tolvenar::pc {
namespace {

void AddRegistry(Json& json, const StoredObject& object) {
    json["hive"] = ToUtf8(HiveName(object.hive()));
    AddText(json, "key", object.name);
    if (object.type() == ObjectType::kRegistryValue) {
        AddText(json, "value", object.value_name);
        json["value_type"] = object.value_type();
    }
}

void AddOwnFields(Json& json, const StoredObject& object) {
    switch (object.type()) {
        case ObjectType::kRegistryValue:
        case ObjectType::kRegistryKey: AddRegistry(json, object); break;
        case ObjectType::kFile: json["attributes"] = object.attributes(); break;
        case ObjectType::kDatabase:
            AddText(json, "database", object.name);
            json["database_type"] = object.first;
            break;
        case ObjectType::kDatabaseRecord:
            AddText(json, "database", object.name);
            json["properties"] = object.property_count();
            break;
        default: break;
    }
}

}  // namespace

Json JsonOf(const StoredObject& object) {
    Json json;
    AddText(json, "path", PathOf(object));
    json["kind"] = KindOf(object);
    json["stored_by"] = object.record.state_number;
    if (object.is_damaged) {
        return json;
    }
    json["bytes"] = object.has_data ? object.data_bytes : 0;
    if (object.time.ticks != 0) {
        json["time"] = UtcText(object.time);
    }
    if (HasObjectStoreId(object.type())) {
        json["id"] = object.record.dwOID;
    }
    AddOwnFields(json, object);
    return json;
}

}  // namespace tolvenar::pc
