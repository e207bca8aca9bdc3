// export reg: keys and values as a ".reg" file.
#include "pc/command/exports.h"
#include "pc/storage/object_data.h"
#include "pc/storage/registry_text.h"

namespace tolvenar::pc {
namespace {

bool IsTold(const StoredObject& object) {
    return FitsALine(object.name) && FitsALine(object.value_name);
}

}  // namespace

std::string ExportRegistry(StoredPair& pair, const std::vector<StoredObject>& objects,
                           Omissions& omissions) {
    std::u16string text = RegistryHead();
    const StoredObject* section = nullptr;
    for (const StoredObject& object : objects) {
        if (!IsRegistryObject(object.record)) {
            continue;
        }
        if (!IsTold(object)) {
            omissions.Add(object, "its name has a line end", ExitCode::kIncomplete);
            continue;
        }
        const bool is_value = object.type() == ObjectType::kRegistryValue;
        if (is_value && !DataAreSound(pair, object)) {
            omissions.Add(object, "its data are damaged", ExitCode::kDamaged);
            continue;
        }
        if (section == nullptr || section->hive() != object.hive() ||
            section->name != object.name) {
            text += KeySection(object.hive(), object.name);
            section = &object;
        }
        if (is_value) {
            text += ValueLines(object, ReadData(pair, object));
        }
    }
    return BytesOf(text);
}

}  // namespace tolvenar::pc
