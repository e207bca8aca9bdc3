// Finds the places of the difference tree that an object belongs to. Platform-free.
#pragma once

#include <cstdint>
#include <string_view>

#include "difftree/model/applications.h"
#include "difftree/model/difference_tree.h"
#include "difftree/model/node_tree.h"

namespace tolvenar {

class ObjectClassifier {
public:
    ObjectClassifier(TreeControl& control, NodeTree& tree, const TreeTexts& texts,
                     const TreeBuild& build, DifferenceEnumerator& enumerator)
        : control_(control),
          tree_(tree),
          texts_(texts),
          build_(build),
          enumerator_(enumerator),
          applications_(control) {}
    ObjectClassifier(const ObjectClassifier&) = delete;
    ObjectClassifier& operator=(const ObjectClassifier&) = delete;

    // Makes the root and the categories of the view. This and the following are false when there is
    // no memory.
    bool MakeCategories();
    // Enters an object whose nodes have `flags`.
    bool ClassifyObject(const EnumeratedObject& object, std::uint32_t flags);
    // Enters the installed applications that were met among the objects.
    bool AddApplications();

private:
    static bool StandsAt(NodeRecord* node, const EnumeratedObject& object);
    bool ClassifyFile(const EnumeratedObject& object, std::uint32_t flags);
    NodeRecord* DatabaseNode(std::u16string_view name, std::uint32_t flags);
    NodeRecord* DatabaseGroup(bool is_known, std::uint32_t flags);
    bool ClassifyRecord(const EnumeratedObject& object, std::uint32_t flags);
    bool ClassifyRegistryObject(const EnumeratedObject& object, std::uint32_t flags);
    bool InsertRegistryNodes(const EnumeratedObject& object, std::u16string_view key_path,
                             std::u16string_view value_name, std::uint32_t flags);
    bool AddApplication(const InstalledApplication& application);
    int FindKnownDatabase(std::u16string_view name) const;

    TreeControl& control_;
    NodeTree& tree_;
    const TreeTexts& texts_;
    const TreeBuild& build_;
    DifferenceEnumerator& enumerator_;
    Applications applications_;
};

}  // namespace tolvenar
