// export reg and reg4: keys and values as a ".reg" file.
#include "pc/command/exports.h"
#include "pc/storage/object_data.h"
#include "pc/storage/registry_text.h"

namespace tolvenar::pc {
namespace {

constexpr const char* kNotInCodePage =
    "code page 1252 cannot tell its name, or its key's: it stands as a comment";

bool IsTold(const StoredObject& object) {
    return FitsALine(object.name) && FitsALine(object.value_name);
}

class RegistryExport {
public:
    RegistryExport(RegistryVersion version, StoredPair& pair, Omissions& omissions)
        : pair_(pair), omissions_(omissions), text_(version) {}

    void Add(const StoredObject& object) {
        if (!IsTold(object)) {
            omissions_.Add(object, "its name has a line end", ExitCode::kIncomplete);
            return;
        }
        const bool is_value = object.type() == ObjectType::kRegistryValue;
        if (is_value && !DataAreSound(pair_, object)) {
            omissions_.Add(object, "its data are damaged", ExitCode::kDamaged);
            return;
        }
        bool is_told = BeginKeyOf(object);
        if (is_value) {
            is_told = text_.AddValue(object, ReadData(pair_, object));
        }
        if (!is_told) {
            omissions_.Add(object, kNotInCodePage, ExitCode::kIncomplete);
        }
    }
    std::string Bytes() const { return text_.Bytes(); }

private:
    bool BeginKeyOf(const StoredObject& object) {
        if (key_ != nullptr && key_->hive() == object.hive() && key_->name == object.name) {
            return true;
        }
        key_ = &object;
        return text_.AddKey(object.hive(), object.name);
    }

    StoredPair& pair_;
    Omissions& omissions_;
    RegistryText text_;
    const StoredObject* key_ = nullptr;  // any object of the key whose lines are being written
};

std::string Export(RegistryVersion version, StoredPair& pair,
                   const std::vector<StoredObject>& objects, Omissions& omissions) {
    RegistryExport registry(version, pair, omissions);
    for (const StoredObject& object : objects) {
        if (IsRegistryObject(object.record)) {
            registry.Add(object);
        }
    }
    return registry.Bytes();
}

}  // namespace

std::string ExportRegistry(StoredPair& pair, const std::vector<StoredObject>& objects,
                           Omissions& omissions) {
    return Export(RegistryVersion::k5, pair, objects, omissions);
}

std::string ExportOldRegistry(StoredPair& pair, const std::vector<StoredObject>& objects,
                              Omissions& omissions) {
    return Export(RegistryVersion::k4, pair, objects, omissions);
}

}  // namespace tolvenar::pc
