#include "pc/text/line_difference.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>

namespace tolvenar::pc {
namespace {

using Lines = std::vector<std::string>;

// Above so many pairs of lines the middle is told as replaced as a whole.
constexpr std::size_t kMostPairs = 4000000;

struct Line {
    char mark;
    const std::string* text;
};

// Lengths of the longest common part of what is behind each pair of places.
class CommonLengths {
public:
    CommonLengths(const Lines& a, const Lines& b, std::size_t begin, std::size_t a_end,
                  std::size_t b_end)
        : begin_(begin), columns_(b_end - begin + 1), lengths_((a_end - begin + 1) * columns_) {
        for (std::size_t i = a_end; i-- > begin;) {
            for (std::size_t j = b_end; j-- > begin;) {
                At(i, j) =
                    a[i] == b[j] ? At(i + 1, j + 1) + 1 : std::max(At(i + 1, j), At(i, j + 1));
            }
        }
    }
    std::uint32_t& At(std::size_t i, std::size_t j) {
        return lengths_[(i - begin_) * columns_ + (j - begin_)];
    }

private:
    const std::size_t begin_;
    const std::size_t columns_;
    std::vector<std::uint32_t> lengths_;
};

void AddMiddle(const Lines& a, const Lines& b, std::size_t begin, std::size_t a_end,
               std::size_t b_end, std::vector<Line>& script) {
    std::size_t i = begin;
    std::size_t j = begin;
    if ((a_end - begin) * (b_end - begin) <= kMostPairs) {
        CommonLengths lengths(a, b, begin, a_end, b_end);
        while (i < a_end && j < b_end) {
            if (a[i] == b[j]) {
                script.push_back({' ', &a[i++]});
                ++j;
            } else if (lengths.At(i + 1, j) >= lengths.At(i, j + 1)) {
                script.push_back({'-', &a[i++]});
            } else {
                script.push_back({'+', &b[j++]});
            }
        }
    }
    while (i < a_end) {
        script.push_back({'-', &a[i++]});
    }
    while (j < b_end) {
        script.push_back({'+', &b[j++]});
    }
}

std::vector<Line> ScriptOf(const Lines& a, const Lines& b) {
    const std::size_t shorter = std::min(a.size(), b.size());
    std::size_t begin = 0;
    while (begin < shorter && a[begin] == b[begin]) {
        ++begin;
    }
    std::size_t same_end = 0;
    while (same_end < shorter - begin && a[a.size() - 1 - same_end] == b[b.size() - 1 - same_end]) {
        ++same_end;
    }
    std::vector<Line> script;
    for (std::size_t i = 0; i < begin; ++i) {
        script.push_back({' ', &a[i]});
    }
    AddMiddle(a, b, begin, a.size() - same_end, b.size() - same_end, script);
    for (std::size_t i = a.size() - same_end; i < a.size(); ++i) {
        script.push_back({' ', &a[i]});
    }
    return script;
}

// Where the next line that is no context stands, from `place` on.
std::size_t NextChange(const std::vector<Line>& script, std::size_t place) {
    while (place < script.size() && script[place].mark == ' ') {
        ++place;
    }
    return place;
}

// The end of the hunk whose first change is at `change`.
std::size_t EndOfHunk(const std::vector<Line>& script, std::size_t change, std::size_t context) {
    for (;;) {
        std::size_t end = change;
        while (end < script.size() && script[end].mark != ' ') {
            ++end;
        }
        change = NextChange(script, end);
        if (change == script.size() || change - end > 2 * context) {
            return std::min(end + context, script.size());
        }
    }
}

struct Range {
    std::size_t first = 1;  // counted from 1
    std::size_t count = 0;

    std::string Text() const { return fmt::format("{},{}", count == 0 ? first - 1 : first, count); }
};

}  // namespace

std::vector<std::string> UnifiedDifference(const Lines& older, const Lines& newer,
                                           std::size_t context) {
    const std::vector<Line> script = ScriptOf(older, newer);
    std::vector<std::string> told;
    Range a;
    Range b;
    const auto pass = [&](const Line& line) {
        a.count += line.mark != '+' ? 1 : 0;
        b.count += line.mark != '-' ? 1 : 0;
    };
    std::size_t place = 0;
    for (std::size_t change = NextChange(script, 0); change < script.size();
         change = NextChange(script, place)) {
        const std::size_t begin = std::max(place, change - std::min(change, context));
        const std::size_t end = EndOfHunk(script, change, context);
        std::for_each(script.begin() + static_cast<std::ptrdiff_t>(place),
                      script.begin() + static_cast<std::ptrdiff_t>(begin), pass);
        a = {a.first + a.count, 0};
        b = {b.first + b.count, 0};
        const std::size_t head = told.size();
        told.emplace_back();
        for (place = begin; place < end; ++place) {
            pass(script[place]);
            told.push_back(script[place].mark + *script[place].text);
        }
        told[head] = fmt::format("@@ -{} +{} @@", a.Text(), b.Text());
        a = {a.first + a.count, 0};
        b = {b.first + b.count, 0};
    }
    return told;
}

}  // namespace tolvenar::pc
