#include "difftree/model/object_classifier.h"

#include "snapshot/records/registry_objects.h"

namespace tolvenar {
namespace {

constexpr std::uint32_t kAlways = 0xFFFFFFFF;  // a button whatever the mask says

struct CategoryRow {
    std::uint32_t code;
    TreeText TreeTexts::*caption;
    std::uint32_t button_bit;
};
constexpr CategoryRow kSimpleCategories[] = {
    {kCategoryApplications, &TreeTexts::applications, kAlways},
    {kCategoryDocuments, &TreeTexts::documents, kAlways},
    {kCategoryDatabases, &TreeTexts::outlook_data, kCategoryDatabases},
    {kCategoryOther, &TreeTexts::other, kExpandOther},
};
constexpr CategoryRow kAdvancedCategories[] = {
    {kCategoryApplications, &TreeTexts::applications, kAlways},
    {kCategoryDatabases, &TreeTexts::databases, kCategoryDatabases},
    {kCategoryRegistry, &TreeTexts::registry, kCategoryRegistry},
    {kCategoryFiles, &TreeTexts::files, kCategoryFiles},
};

// In the order of TreeTexts::database_names.
struct KnownDatabase {
    std::uint16_t title_property;
    TreeText TreeTexts::*empty_title;
};
constexpr KnownDatabase kKnownDatabases[] = {
    {0x4013, &TreeTexts::unknown_title},  // contacts
    {0x0037, &TreeTexts::unknown_title},  // tasks
    {0x0037, &TreeTexts::unknown_title},  // appointments
    {0x0007, &TreeTexts::no_subject},     // messages
};
constexpr int kKnownDatabaseCount = 4;
constexpr std::uint32_t kTextPropertyType = 31;

struct HiveName {
    std::uint32_t hive;
    std::u16string_view name;
};
constexpr HiveName kHiveNames[] = {
    {0x80000000, u"HKCR"},
    {0x80000001, u"HKCU"},
    {0x80000002, u"HKLM"},
    {0x80000003, u"HKUS"},
};

constexpr std::uint32_t CodeOf(ObjectType type) { return static_cast<std::uint32_t>(type); }

}  // namespace

bool ObjectClassifier::MakeCategories() {
    const TreeText& default_caption = texts_.root;
    const bool has_caption = build_.root_caption != nullptr && build_.root_caption[0] != 0;
    NodeRecord* const root =
        tree_.InsertNode(nullptr, has_caption ? build_.root_caption : default_caption, kNoCategory,
                         kNodeGroup, true);
    if (root == nullptr) {
        return false;
    }
    for (const CategoryRow& row : build_.advanced_view ? kAdvancedCategories : kSimpleCategories) {
        const bool has_button =
            row.button_bit == kAlways || (build_.expand_mask & row.button_bit) != 0;
        if (tree_.InsertNode(root, texts_.*row.caption, row.code, kNodeGroup, has_button) ==
            nullptr) {
            return false;
        }
    }
    return true;
}

// Several objects may share a node; it keeps the versions that it met first.
bool ObjectClassifier::StandsAt(NodeRecord* node, const EnumeratedObject& object) {
    if (node == nullptr) {
        return false;
    }
    const ObjectRecord*& version = (object.flags & JF_ADD) != 0 ? node->after : node->before;
    if (version == nullptr) {
        version = object.record;
    }
    return true;
}

bool ObjectClassifier::ClassifyObject(const EnumeratedObject& object, std::uint32_t flags) {
    switch (object.type) {
        case ObjectType::kFile: return ClassifyFile(object, flags);
        case ObjectType::kDatabase: return StandsAt(DatabaseNode(object.name, flags), object);
        case ObjectType::kDatabaseRecord: return ClassifyRecord(object, flags);
        case ObjectType::kRegistryValue:
        case ObjectType::kRegistryKey: return ClassifyRegistryObject(object, flags);
        default: return true;
    }
}

// In the simple view a document stands among the documents and, by its full name, among the rest.
bool ObjectClassifier::ClassifyFile(const EnumeratedObject& object, std::uint32_t flags) {
    const std::u16string_view path(object.name);
    const std::uint32_t category = CodeOf(ObjectType::kFile);
    if (build_.advanced_view) {
        return StandsAt(
            tree_.InsertPath(tree_.GetCategoryNode(kCategoryFiles), path, category, flags), object);
    }
    std::u16string_view below_root = path;
    if (!below_root.empty() && below_root.front() == u'\\') {
        below_root.remove_prefix(1);
    }
    const std::u16string_view prefix(texts_.documents_prefix);
    if (EqualIgnoringCase(control_, below_root.substr(0, prefix.size()), prefix) &&
        !StandsAt(tree_.InsertPath(tree_.GetCategoryNode(kCategoryDocuments),
                                   below_root.substr(prefix.size()), category, flags),
                  object)) {
        return false;
    }
    return StandsAt(
        tree_.InsertNode(tree_.GetCategoryNode(kCategoryOther), path, category, flags, false),
        object);
}

int ObjectClassifier::FindKnownDatabase(std::u16string_view name) const {
    for (int i = 0; i < kKnownDatabaseCount; ++i) {
        if (EqualIgnoringCase(control_, name, texts_.database_names[i])) {
            return i;
        }
    }
    return kKnownDatabaseCount;
}

// The groups of the advanced view; they show their databases' state and are not counted.
NodeRecord* ObjectClassifier::DatabaseGroup(bool is_known, std::uint32_t flags) {
    const bool has_button = is_known || (build_.expand_mask & kExpandOtherDatabases) != 0;
    return tree_.InsertNode(tree_.GetCategoryNode(kCategoryDatabases),
                            is_known ? texts_.outlook_data : texts_.other_databases,
                            CodeOf(ObjectType::kDatabase), flags | kNodeGroup | kNodeInformation,
                            has_button);
}

NodeRecord* ObjectClassifier::DatabaseNode(std::u16string_view name, std::uint32_t flags) {
    const int known = FindKnownDatabase(name);
    const bool is_known = known < kKnownDatabaseCount;
    const std::u16string_view caption = is_known ? texts_.database_titles[known] : name;
    if (!build_.advanced_view) {
        NodeRecord* const category =
            tree_.GetCategoryNode(is_known ? kCategoryDatabases : kCategoryOther);
        return tree_.InsertNode(category, caption, CodeOf(ObjectType::kDatabase),
                                is_known ? flags | kNodeGroup : flags, false);
    }
    NodeRecord* const group = DatabaseGroup(is_known, flags);
    return group == nullptr ? nullptr
                            : tree_.InsertNode(group, caption, CodeOf(ObjectType::kDatabase),
                                               flags | kNodeGroup, false);
}

// Records with the same title share a node.
bool ObjectClassifier::ClassifyRecord(const EnumeratedObject& object, std::uint32_t flags) {
    NodeRecord* const database = DatabaseNode(object.name, 0);
    if (database == nullptr) {
        return false;
    }
    TextBuffer<kObjectNameUnits> caption;
    const int known = FindKnownDatabase(object.name);
    const bool has_title =
        known < kKnownDatabaseCount &&
        enumerator_.ReadTextProperty(
            std::uint32_t{kKnownDatabases[known].title_property} << 16 | kTextPropertyType,
            caption);
    if (!has_title) {
        caption.Clear();
        caption.AppendUnsigned(object.dwOID);
    } else if (caption.length() == 0) {
        caption.Append(texts_.*kKnownDatabases[known].empty_title);
    }
    return StandsAt(tree_.InsertNode(database, {caption.text(), caption.length()},
                                     CodeOf(ObjectType::kDatabaseRecord), flags, false),
                    object);
}

bool ObjectClassifier::ClassifyRegistryObject(const EnumeratedObject& object, std::uint32_t flags) {
    const std::u16string_view name(object.name);
    const std::size_t separator = name.rfind(kNameSeparator);
    const std::u16string_view key_path = name.substr(0, separator);
    const std::u16string_view value_name =
        separator == std::u16string_view::npos ? std::u16string_view() : name.substr(separator + 1);
    if (!applications_.Recognise(key_path, value_name, flags, enumerator_)) {
        return false;
    }
    if (build_.advanced_view) {
        return InsertRegistryNodes(object, key_path, value_name, flags);
    }
    return object.type == ObjectType::kRegistryKey ||
           StandsAt(tree_.InsertNode(tree_.GetCategoryNode(kCategoryOther), name,
                                     CodeOf(object.type), flags, false),
                    object);
}

bool ObjectClassifier::InsertRegistryNodes(const EnumeratedObject& object,
                                           std::u16string_view key_path,
                                           std::u16string_view value_name, std::uint32_t flags) {
    const std::uint32_t category = CodeOf(ObjectType::kRegistryKey);
    for (const HiveName& row : kHiveNames) {
        if (row.hive != object.hive) {
            continue;
        }
        NodeRecord* const hive_node =
            tree_.InsertNode(tree_.GetCategoryNode(kCategoryRegistry), row.name, category, 0, true);
        if (hive_node == nullptr) {
            return false;
        }
        NodeRecord* const key = tree_.InsertPath(hive_node, key_path, category, 0);
        if (key != nullptr && !value_name.empty()) {
            return StandsAt(
                tree_.InsertNode(key, value_name, CodeOf(ObjectType::kRegistryValue), flags, false),
                object);
        }
        if (key != nullptr) {
            key->flags |= flags;
        }
        return StandsAt(key, object);
    }
    return true;  // a damaged block: no such hive
}

bool ObjectClassifier::AddApplications() {
    for (const InstalledApplication* application = applications_.first(); application != nullptr;
         application = application->next) {
        if (application->is_installed && !AddApplication(*application)) {
            return false;
        }
    }
    return true;
}

bool ObjectClassifier::AddApplication(const InstalledApplication& application) {
    const std::u16string_view directory(application.directory);
    const ApplicationName parts = SplitApplicationName(application.name, directory);
    NodeRecord* parent = tree_.GetCategoryNode(kCategoryApplications);
    if (!parts.publisher.empty()) {
        parent = tree_.InsertNode(parent, parts.publisher, kCategoryApplications,
                                  application.flags | kNodeInformation, false);
        if (parent == nullptr) {
            return false;
        }
    }
    NodeRecord* const program =
        tree_.InsertNode(parent, parts.program, kCategoryApplications, application.flags, false);
    if (program == nullptr || directory.empty()) {
        return program != nullptr;
    }
    TextBuffer<kCaptionUnits> line;
    line.Append(u"InstallDir=\"").Append(application.directory).AppendUnit(u'"');
    return tree_.InsertNode(program, {line.text(), line.length()}, kCategoryApplications,
                            application.flags | kNodeInformation, false) != nullptr;
}

}  // namespace tolvenar
