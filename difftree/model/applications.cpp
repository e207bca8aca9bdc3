#include "difftree/model/applications.h"

#include <new>

namespace tolvenar {
namespace {

// Below this key every installed application has one of its own.
constexpr std::u16string_view kApplicationsKey = u"Software\\Apps\\";
constexpr std::u16string_view kInstalledValue = u"Instl";
constexpr std::u16string_view kDirectoryValue = u"InstlDir";

std::u16string_view LastComponent(std::u16string_view path) {
    const std::size_t separator = path.rfind(u'\\');
    return separator == std::u16string_view::npos ? path : path.substr(separator + 1);
}

// What cannot be read leaves the directory as it was.
void ReadDirectory(DifferenceEnumerator& enumerator, InstalledApplication& application) {
    TextBuffer<kInstallDirectoryUnits> text;
    if (!enumerator.ReadValueText(text)) {
        return;
    }
    std::u16string_view directory(text.text(), text.length());
    if (!directory.empty() && directory.back() == u'\\') {
        directory.remove_suffix(1);
    }
    application.directory[directory.copy(application.directory, kInstallDirectoryUnits - 1)] = 0;
}

}  // namespace

ApplicationName SplitApplicationName(std::u16string_view name, std::u16string_view directory) {
    const std::u16string_view component = LastComponent(directory);
    const std::size_t cut = component.empty() ? std::u16string_view::npos : name.find(component);
    if (cut == std::u16string_view::npos) {
        return {{}, name};
    }
    return {name.substr(0, cut), name.substr(cut)};
}

Applications::~Applications() {
    while (first_ != nullptr) {
        InstalledApplication* const next = first_->next;
        delete first_;
        first_ = next;
    }
}

InstalledApplication* Applications::FindOrMake(std::u16string_view name) {
    const FoldedCaption folded(control_, name);
    if (IndexedCaption* const found = index_.Find(nullptr, folded)) {
        return static_cast<InstalledApplication*>(found);
    }
    auto* const application = new (std::nothrow) InstalledApplication{};
    if (application == nullptr) {
        return nullptr;
    }
    application->name[name.copy(application->name, kApplicationNameUnits - 1)] = 0;
    application->caption = application->name;
    if (!index_.Add(*application, folded)) {
        delete application;
        return nullptr;
    }
    application->next = first_;
    return first_ = application;
}

bool Applications::Recognise(std::u16string_view key_path, std::u16string_view value_name,
                             std::uint32_t flags, DifferenceEnumerator& enumerator) {
    if (!key_path.empty() && key_path.front() == u'\\') {
        key_path.remove_prefix(1);
    }
    if (!EqualIgnoringCase(control_, key_path.substr(0, kApplicationsKey.size()),
                           kApplicationsKey)) {
        return true;
    }
    key_path.remove_prefix(kApplicationsKey.size());
    const std::u16string_view name =
        key_path.substr(0, key_path.find(u'\\')).substr(0, kApplicationNameUnits - 1);
    if (name.empty()) {
        return true;
    }
    InstalledApplication* const application = FindOrMake(name);
    if (application == nullptr) {
        return false;
    }
    application->flags |= flags;
    if (EqualIgnoringCase(control_, value_name, kInstalledValue)) {
        application->is_installed = true;
    } else if (EqualIgnoringCase(control_, value_name, kDirectoryValue)) {
        ReadDirectory(enumerator, *application);
    }
    return true;
}

}  // namespace tolvenar
