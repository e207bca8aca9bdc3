#include "pc/serve/downloads.h"

#include "pc/command/exports.h"
#include "pc/serve/pages.h"
#include "pc/storage/object_data.h"
#include "pc/storage/safe_names.h"
#include "pc/text/utf.h"
#include "snapshot/text/letter_case.h"

namespace tolvenar::pc {
namespace {

struct FormRow {
    const char* extension;
    const char* type;
    std::string (*make)(StoredPair& pair, const std::vector<StoredObject>& objects,
                        Omissions& omissions);
};
// In the order of Form.
constexpr FormRow kForms[] = {{"reg", "application/octet-stream", ExportRegistry},
                              {"json", "application/json", ExportDatabases},
                              {"csv", "text/csv; charset=utf-8", ExportTable}};

// The last component of a path.
std::u16string_view LastOf(std::u16string_view path) { return path.substr(path.rfind(u'\\') + 1); }

bool IsAtOrBelow(const StoredObject& object, const StoredObject& root) {
    if (IsRegistryObject(object.record) != IsRegistryObject(root.record) ||
        (IsRegistryObject(root.record) && object.hive() != root.hive())) {
        return false;
    }
    const std::u16string_view name = object.name;
    const std::size_t size = root.name.size();
    if (!EqualIgnoringCase(name.substr(0, size), root.name)) {
        return false;
    }
    return name.size() == size ||
           (IsRegistryObject(root.record) && (size == 0 || name[size] == u'\\'));
}

std::vector<StoredObject> Choose(Site& site, std::uint16_t state, const StoredObject* root,
                                 Omissions& omissions) {
    std::vector<StoredObject> chosen;
    for (const StoredObject& object : site.Objects(state)) {
        if (object.is_damaged) {
            omissions.Add(object, "its block is damaged", ExitCode::kDamaged);
        } else if (root == nullptr ||
                   (object.type() != ObjectType::kFile && IsAtOrBelow(object, *root))) {
            chosen.push_back(object);
        }
    }
    return chosen;
}

std::vector<std::string> LinesIn(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

}  // namespace

Reply FileDownload(Site& site, const StoredObject& object) {
    if (object.is_folder() || object.is_in_rom()) {
        return ErrorPage(404, "The storage has no contents of it.");
    }
    if (!DataAreSound(site.pair(), object)) {
        return ErrorPage(500, "Its contents are damaged.");
    }
    Reply reply;
    reply.type = "application/octet-stream";
    reply.saved_as = SafeComponent(LastOf(object.name));
    reply.read_bytes = object.has_data ? object.data_bytes : 0;
    const std::uint32_t begin = object.record.data_offset;
    reply.read = [&pair = site.pair(), begin](std::uint32_t offset, std::uint32_t bytes,
                                              std::string& piece) {
        std::uint32_t read = 0;
        piece.resize(bytes);
        return pair.reader().ReadUpTo(begin + offset, piece.data(), bytes, read) && read == bytes;
    };
    return reply;
}

Reply ExportDownload(Site& site, std::uint16_t state, const StoredObject* root, Form form,
                     const Request& request) {
    const FormRow& row = kForms[static_cast<std::size_t>(form)];
    TextOutput nothing;
    TextOutput told;
    Console console{nothing, told};
    Omissions omissions(console);
    Reply reply;
    reply.body = row.make(site.pair(), Choose(site, state, root, omissions), omissions);
    if (omissions.code() != ExitCode::kDone && request.words.count("anyway") == 0) {
        return MissingPage(LinesIn(told.text), request.page + "?anyway=1");
    }
    const std::u16string name = root == nullptr ? u"State " + ToUtf16(std::to_string(state))
                                                : std::u16string(LastOf(root->name));
    reply.type = row.type;
    reply.saved_as = SafeComponent(name + u"." + ToUtf16(row.extension));
    return reply;
}

}  // namespace tolvenar::pc
