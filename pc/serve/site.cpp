#include "pc/serve/site.h"

#include <algorithm>
#include <new>
#include <optional>

#include "pc/report/page.h"
#include "pc/serve/downloads.h"
#include "pc/serve/pages.h"
#include "pc/storage/state_objects.h"
#include "pc/text/failure.h"

namespace tolvenar::pc {
namespace {

// "key-3-8123.reg" in parts.
struct Address {
    std::string word;
    std::vector<std::uint32_t> numbers;
    std::string form;
};

std::optional<std::uint32_t> NumberIn(const std::string& text) {
    constexpr std::size_t kMostDigits = 10;
    if (text.empty() || text.size() > kMostDigits ||
        text.find_first_not_of("0123456789") != text.npos) {
        return std::nullopt;
    }
    const unsigned long long number = std::stoull(text);
    return number > 0xFFFFFFFF ? std::nullopt : std::optional(static_cast<std::uint32_t>(number));
}

std::optional<Address> Parse(const std::string& page) {
    Address address;
    const std::size_t dot = std::min(page.find('.'), page.size());
    address.form = dot == page.size() ? std::string() : page.substr(dot + 1);
    std::size_t end = std::min(page.find('-'), dot);
    address.word = page.substr(0, end);
    while (end < dot) {
        const std::size_t begin = end + 1;
        end = std::min(page.find('-', begin), dot);
        const std::optional<std::uint32_t> number = NumberIn(page.substr(begin, end - begin));
        if (!number) {
            return std::nullopt;
        }
        address.numbers.push_back(*number);
    }
    return address;
}

// A state, and of an object its kind and place.
struct Asked {
    Site& site;
    const Request& request;
    std::uint16_t state;
    const StoredObject* object;
};

struct Route {
    const char* word;
    const char* form;
    std::size_t numbers;
    ObjectType type;  // of the object that the second number means; kNone for any
    Reply (*answer)(const Asked& asked);
};
constexpr auto kAny = static_cast<ObjectType>(0);

std::uint16_t StateBefore(const Site& site, std::uint16_t state) {
    std::uint16_t before = 0;
    for (const ReportState& other : site.data().states) {
        before = other.state.number < state ? other.state.number : before;
    }
    return before;
}

template <Form form>
Reply Download(const Asked& asked) {
    return ExportDownload(asked.site, asked.state, asked.object, form, asked.request);
}

const Route kRoutes[] = {
    {"state", "", 1, kAny, [](const Asked& asked) { return StatePage(asked.site, asked.state); }},
    {"changes", "", 1, kAny,
     [](const Asked& asked) {
         return ChangesPage(asked.site, StateBefore(asked.site, asked.state), asked.state);
     }},
    {"object", "", 2, kAny,
     [](const Asked& asked) { return ObjectPage(asked.site, asked.state, *asked.object); }},
    {"file", "", 2, ObjectType::kFile,
     [](const Asked& asked) { return FileDownload(asked.site, *asked.object); }},
    {"key", "reg", 2, ObjectType::kRegistryKey, Download<Form::kReg>},
    {"database", "csv", 2, ObjectType::kDatabase, Download<Form::kCsv>},
    {"database", "json", 2, ObjectType::kDatabase, Download<Form::kJson>},
    {"registry", "reg", 1, kAny, Download<Form::kReg>},
    {"databases", "json", 1, kAny, Download<Form::kJson>},
};

Reply NotHere() { return ErrorPage(404, "There is no such page."); }

Reply Follow(Site& site, const Request& request, const Address& address) {
    for (const Route& route : kRoutes) {
        if (address.word != route.word || address.form != route.form ||
            address.numbers.size() != route.numbers || !site.HasState(address.numbers[0])) {
            continue;
        }
        Asked asked{site, request, static_cast<std::uint16_t>(address.numbers[0]), nullptr};
        if (route.numbers == 2) {
            asked.object = site.Find(asked.state, address.numbers[1]);
            if (asked.object == nullptr ||
                (route.type != kAny && asked.object->type() != route.type)) {
                return NotHere();
            }
        }
        return route.answer(asked);
    }
    return NotHere();
}

Reply Compare(Site& site, const Request& request) {
    const auto number = [&request](const char* word) {
        const auto found = request.words.find(word);
        return found == request.words.end() ? std::nullopt : NumberIn(found->second);
    };
    const std::optional<std::uint32_t> older = number("older");
    const std::optional<std::uint32_t> newer = number("newer");
    if (!older || !newer || (*older != 0 && !site.HasState(*older)) || !site.HasState(*newer)) {
        return NotHere();
    }
    return ChangesPage(site, static_cast<std::uint16_t>(*older),
                       static_cast<std::uint16_t>(*newer));
}

}  // namespace

bool Site::HasState(std::uint32_t number) const {
    return std::any_of(data_.states.begin(), data_.states.end(),
                       [number](const auto& state) { return state.state.number == number; });
}

const std::vector<StoredObject>& Site::Objects(std::uint16_t state) {
    if (kept_state_ != state) {
        kept_state_ = 0;
        kept_objects_ = ObjectsOf(pair_, state);
        kept_state_ = state;
    }
    return kept_objects_;
}

const StoredObject* Site::Find(std::uint16_t state, std::uint32_t place) {
    for (const StoredObject& object : Objects(state)) {
        if (object.record.propOffset == place) {
            return &object;
        }
    }
    return nullptr;
}

Reply Site::Answer(const Request& request) {
    try {
        return AnswerOrThrow(request);
    } catch (const Failure& failure) {
        return ErrorPage(500, failure.what());
    } catch (const std::bad_alloc&) {
        return ErrorPage(503, "There is not enough memory.");
    }
}

Reply Site::AnswerOrThrow(const Request& request) {
    if (request.page.empty()) {
        return OverviewPage(*this);
    }
    if (request.page == "style.css") {
        return {200, "text/css; charset=utf-8", std::string(kPageStyle), {}, {}, 0};
    }
    if (request.page == "compare") {
        return Compare(*this, request);
    }
    const std::optional<Address> address = Parse(request.page);
    return address ? Follow(*this, request, *address) : NotHere();
}

}  // namespace tolvenar::pc
