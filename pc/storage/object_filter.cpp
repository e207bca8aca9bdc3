#include "pc/storage/object_filter.h"

#include <algorithm>

#include "pc/text/utf.h"
#include "pc/text/wildcard.h"

namespace tolvenar::pc {

std::u16string ParsePath(const std::string& text) {
    std::u16string path = ToUtf16(text);
    if (!path.empty() && path[0] == u'/') {
        std::replace(path.begin(), path.end(), u'/', u'\\');
    }
    return path;
}

ObjectFilter::ObjectFilter(const std::vector<std::string>& patterns) {
    for (const std::string& text : patterns) {
        std::u16string pattern = ParsePath(text);
        patterns_.push_back(pattern);
        if (!pattern.empty() && pattern.back() == u'\\') {
            pattern.pop_back();
            patterns_.push_back(pattern);
        }
        patterns_.push_back(pattern + u"\\*");
        patterns_.push_back(pattern + u"#*");
    }
}

bool ObjectFilter::Takes(std::u16string_view path) const {
    return patterns_.empty() ||
           std::any_of(patterns_.begin(), patterns_.end(), [path](const std::u16string& pattern) {
               return MatchesWildcard(pattern, path);
           });
}

}  // namespace tolvenar::pc
