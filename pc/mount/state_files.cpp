#include "pc/mount/state_files.h"

#include <algorithm>

#include "pc/storage/state_objects.h"
#include "pc/text/utf.h"

namespace tolvenar::pc {
namespace {

// The names of values and databases are one component, whatever is in them.
std::u16string Flat(std::u16string name) {
    std::replace(name.begin(), name.end(), u'\\', u'\uFF3C');
    return name;
}

std::u16string KeyFolder(const StoredObject& object) {
    const std::u16string hive = u"\\Registry\\" + HiveName(object.hive());
    return object.name.empty() ? hive : hive + u"\\" + object.name;
}

}  // namespace

StateFiles::StateFiles(StoredPair& pair, std::uint16_t state, FileTime made)
    : made_(made), objects_(ObjectsOf(pair, state)) {
    root_.time = made_;
    for (const char16_t* folder : {u"\\Files", u"\\Registry", u"\\Databases"}) {
        Folder(folder);
    }
    for (const StoredObject& object : objects_) {
        Enter(object);
    }
}

void StateFiles::Enter(const StoredObject& object) {
    if (object.is_damaged) {
        const std::string place = std::to_string(object.record.propOffset);
        NewFile(u"\\Damaged\\" + ToUtf16(place), FileKind::kDamaged);
        return;
    }
    switch (object.type()) {
        case ObjectType::kRegistryKey:
        case ObjectType::kRegistryValue: return EnterRegistry(object);
        case ObjectType::kDatabase:
        case ObjectType::kDatabaseRecord: return EnterDatabase(object);
        default: break;
    }
    const bool is_rooted = !object.name.empty() && object.name[0] == u'\\';
    const std::u16string path = (is_rooted ? u"\\Files" : u"\\Files\\") + object.name;
    FileNode& node = object.is_folder() ? Folder(path) : NewFile(path, FileKind::kFile);
    node.time = object.time.ticks != 0 ? object.time : made_;
    node.objects = {&object};
}

void StateFiles::EnterRegistry(const StoredObject& object) {
    const std::u16string folder = KeyFolder(object);
    FileNode& key = Folder(folder);
    if (object.type() == ObjectType::kRegistryKey) {
        return;
    }
    FileNode*& values = values_[&key];
    if (values == nullptr) {
        values = &NewFile(folder + u"\\values.reg", FileKind::kRegistry);
    }
    values->objects.push_back(&object);
    const std::u16string name = object.value_name.empty() ? u"(Default)" : object.value_name;
    NewFile(folder + u"\\" + Flat(name) + u".txt", FileKind::kText).objects = {&object};
}

void StateFiles::EnterDatabase(const StoredObject& object) {
    const std::u16string folder = u"\\Databases\\" + Flat(object.name);
    Folder(folder);
    if (object.type() == ObjectType::kDatabase) {
        databases_[object.name] = &object;
        return;
    }
    const std::u16string id = folder + u"\\" + ToUtf16(std::to_string(object.record.dwOID));
    NewFile(id + u".txt", FileKind::kText).objects = {&object};
    FileNode& exact = NewFile(id + u".json", FileKind::kRecord);
    const auto database = databases_.find(object.name);
    if (database != databases_.end()) {
        exact.objects.push_back(database->second);
    }
    exact.objects.push_back(&object);
}

FileNode& StateFiles::At(const SafePath& place) {
    FileNode* node = &root_;
    for (const std::string& component : place.components) {
        const auto [found, is_new] = node->below.try_emplace(component);
        node = &found->second;
        if (is_new) {
            node->time = made_;
        }
    }
    return *node;
}

FileNode& StateFiles::Folder(const std::u16string& path) { return At(names_.Place(path, true)); }

FileNode& StateFiles::NewFile(std::u16string path, FileKind kind) {
    FileNode* node = &At(names_.Place(path, false));
    while (node->kind != FileKind::kFolder) {
        path += u"_";
        node = &At(names_.Place(path, false));
    }
    node->kind = kind;
    return *node;
}

}  // namespace tolvenar::pc
