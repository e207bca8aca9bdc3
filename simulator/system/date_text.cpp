#include "simulator/system/date_text.h"

#include <vector>

#include "simulator/system/zone.h"

namespace sim {
namespace {

constexpr const wchar_t* kDays[] = {L"Sunday",   L"Monday", L"Tuesday", L"Wednesday",
                                    L"Thursday", L"Friday", L"Saturday"};
constexpr const wchar_t* kMonths[] = {L"January",   L"February", L"March",    L"April",
                                      L"May",       L"June",     L"July",     L"August",
                                      L"September", L"October",  L"November", L"December"};

// A run of one pattern letter, or literal text (letter 0).
struct Part {
    wchar_t letter = 0;
    std::size_t count = 0;
    std::wstring text;
};

std::wstring TakeQuoted(const std::wstring& pattern, std::size_t& at) {
    std::wstring text;
    for (++at; at < pattern.size(); ++at) {
        if (pattern[at] != L'\'') {
            text += pattern[at];
        } else if (at + 1 < pattern.size() && pattern[at + 1] == L'\'') {
            text += pattern[++at];
        } else {
            ++at;
            break;
        }
    }
    return text;
}

std::vector<Part> Split(const std::wstring& pattern, const std::wstring& letters) {
    std::vector<Part> parts;
    for (std::size_t at = 0; at < pattern.size();) {
        Part part;
        if (letters.find(pattern[at]) != std::wstring::npos) {
            part.letter = pattern[at];
            while (at < pattern.size() && pattern[at] == part.letter) {
                ++part.count, ++at;
            }
        } else if (pattern[at] == L'\'') {
            part.text = TakeQuoted(pattern, at);
        } else {
            part.text = pattern[at++];
        }
        parts.push_back(part);
    }
    return parts;
}

std::wstring Digits(int number, std::size_t least) {
    std::wstring text = std::to_wstring(number);
    return text.size() < least ? std::wstring(least - text.size(), L'0') + text : text;
}

std::wstring Named(const wchar_t* name, std::size_t count) {
    return count == 3 ? std::wstring(name, 3) : std::wstring(name);
}

std::wstring DatePart(const Part& part, const Moment& moment) {
    switch (part.letter) {
        case L'd':
            return part.count <= 2 ? Digits(moment.day, part.count)
                                   : Named(kDays[moment.weekday], part.count);
        case L'M':
            return part.count <= 2 ? Digits(moment.month, part.count)
                                   : Named(kMonths[moment.month - 1], part.count);
        case L'y':
            return part.count <= 2 ? Digits(moment.year % 100, part.count) : Digits(moment.year, 4);
        default: return part.text;
    }
}

bool IsLeftOut(wchar_t letter, std::uint32_t flags) {
    switch (letter) {
        case L'm': return (flags & kNoMinutesOrSeconds) != 0;
        case L's': return (flags & (kNoMinutesOrSeconds | kNoSeconds)) != 0;
        case L't': return (flags & kNoMarker) != 0;
        default: return false;
    }
}

std::wstring TimePart(const Part& part, const Moment& moment, std::uint32_t flags,
                      const TimeMarkers& markers) {
    const std::wstring& marker = moment.hour < 12 ? markers.am : markers.pm;
    const bool all_day = part.letter == L'H' || (flags & k24Hours) != 0;
    switch (part.letter) {
        case L'h':
        case L'H': return Digits(all_day ? moment.hour : (moment.hour + 11) % 12 + 1, part.count);
        case L'm': return Digits(moment.minute, part.count);
        case L's': return Digits(moment.second, part.count);
        case L't': return part.count == 1 ? marker.substr(0, 1) : marker;
        default: return part.text;
    }
}

}  // namespace

Moment MomentFromTicks(std::uint64_t ticks) {
    const auto whole = static_cast<std::int64_t>(ticks);
    const std::int64_t days = whole / kTicksPerDay;
    const Date date = DateFromDays(days);
    const auto ms = static_cast<int>(whole % kTicksPerDay / (kTicksPerSecond / 1000));
    return {date.year,      date.month,   static_cast<int>((days + 1) % 7),
            date.day,       ms / 3600000, ms / 60000 % 60,
            ms / 1000 % 60, ms % 1000};
}

bool IsMoment(const Moment& moment) {
    if (moment.year < 1601 || moment.month < 1 || moment.month > 12 || moment.day < 1 ||
        moment.hour < 0 || moment.hour > 23 || moment.minute < 0 || moment.minute > 59 ||
        moment.second < 0 || moment.second > 59) {
        return false;
    }
    const Date date = DateFromDays(DaysFromDate(moment.year, moment.month, moment.day));
    return date.month == moment.month && date.day == moment.day;
}

std::wstring DateText(const std::wstring& pattern, const Moment& moment) {
    Moment dated = moment;
    dated.weekday = static_cast<int>((DaysFromDate(moment.year, moment.month, moment.day) + 1) % 7);
    std::wstring text;
    for (const Part& part : Split(pattern, L"dMy")) {
        text += DatePart(part, dated);
    }
    return text;
}

std::wstring TimeText(const std::wstring& pattern, const Moment& moment, std::uint32_t flags,
                      const TimeMarkers& markers) {
    std::wstring text;
    std::wstring separator;  // waits for the part behind it
    for (const Part& part : Split(pattern, L"hHmst")) {
        if (part.letter == 0) {
            separator += part.text;
        } else if (IsLeftOut(part.letter, flags)) {
            separator.clear();
        } else {
            text += separator + TimePart(part, moment, flags, markers);
            separator.clear();
        }
    }
    return text + separator;
}

}  // namespace sim
