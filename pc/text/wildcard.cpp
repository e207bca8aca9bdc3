#include "pc/text/wildcard.h"

#include "snapshot/text/letter_case.h"

namespace tolvenar::pc {

// Behind a star that matched too little the search goes on with one unit more: no more steps than
// the lengths multiplied, whatever the pattern.
bool MatchesWildcard(std::u16string_view pattern, std::u16string_view name) {
    std::size_t p = 0;
    std::size_t n = 0;
    std::size_t behind_star = pattern.npos;
    std::size_t star_end = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == u'*') {
            behind_star = ++p;
            star_end = n;
        } else if (p < pattern.size() &&
                   (pattern[p] == u'?' || Capital(pattern[p]) == Capital(name[n]))) {
            ++p;
            ++n;
        } else if (behind_star != pattern.npos) {
            p = behind_star;
            n = ++star_end;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == u'*') {
        ++p;
    }
    return p == pattern.size();
}

}  // namespace tolvenar::pc
