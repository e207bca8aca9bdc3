#include "pc/command/exported_records.h"

#include "pc/storage/object_data.h"

namespace tolvenar::pc {

void ForEachRecord(StoredPair& pair, const std::vector<StoredObject>& objects, Omissions& omissions,
                   const IsWanted& is_wanted, const TakeRecord& take) {
    for (const StoredObject& object : objects) {
        if (object.type() != ObjectType::kDatabaseRecord || !is_wanted(object.name)) {
            continue;
        }
        if (!DataAreSound(pair, object)) {
            omissions.Add(object, "its data are damaged", ExitCode::kDamaged);
        } else {
            take(object, PropertiesOf(ReadData(pair, object), object.property_count()));
        }
    }
}

}  // namespace tolvenar::pc
