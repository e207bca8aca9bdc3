#include "storage/operations/restore_paths.h"

#include <string_view>

#include "snapshot/compare/own_files.h"
#include "snapshot/compare/record_info.h"
#include "snapshot/text/log.h"
#include "snapshot/text/text_buffer.h"
#include "storage/objects/presence.h"
#include "storage/operations/held_back.h"
#include "storage/operations/object_line.h"

namespace tolvenar {
namespace {

constexpr char16_t kModule[] = u"DoRestore";

// Whether folders lead onto a card. The list has the files of one folder together, so that few
// folders are asked for twice.
class CardFolders {
public:
    bool Hold(const InfoBlock& block) {
        const std::u16string_view path(block.name());
        const std::size_t backslash = path.rfind(u'\\');
        const bool is_file = (block.head().attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
        if (!is_file || backslash == std::u16string_view::npos) {
            return LeadsOntoCard(block);
        }
        const std::u16string_view folder(block.name(), backslash);
        if (folder != std::u16string_view(last_.text(), last_.length()) || !is_known_) {
            last_.Clear();
            last_.Append(block.name(), backslash);
            is_on_card_ = LeadsOntoCard(block);
            is_known_ = true;
        }
        return is_on_card_;
    }

private:
    TextBuffer<kMaxNameBytes / sizeof(char16_t) + 1> last_;
    bool is_known_ = false;
    bool is_on_card_ = false;
};

}  // namespace

void TakeOutOwnFiles(ObjectList& difference, const StorageNames& names, InfoSource& info) {
    const OwnFiles own_files(names);
    difference.RemoveIf([&](const ObjectList::Node& node) {
        InfoBlock block;
        const bool is_own = node.record->type == ObjectType::kFile &&
                            FetchInfo(*node.record, info, block) &&
                            IsStoragesOwn(block.name(), own_files.names());
        if (is_own) {
            LogObject(u"The storage's own, left alone: ", *node.record, block, kModule, kLogNote);
        }
        return is_own;
    });
}

void HoldBackOnCards(ObjectList& difference, FailureTable& failures, InfoSource& info) {
    CardFolders cards;
    for (ObjectList::Node& node : difference) {
        ObjectRecord& record = *node.record;
        InfoBlock block;
        if (IsPending(record) && record.type == ObjectType::kFile &&
            FetchInfo(record, info, block) && cards.Hold(block)) {
            LogObject(u"On a card now, left alone: ", record, block, kModule, kLogError);
            HoldBack(record, FailureReason::kOnCard, failures);
        }
    }
}

}  // namespace tolvenar
