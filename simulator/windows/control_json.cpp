#include "simulator/windows/control_json.h"

namespace sim::windows {

void to_json(nlohmann::json& out, const Window& window) {
    out = {{"handle", window.handle},   {"parent", window.parent},    {"pid", window.pid},
           {"id", window.id},           {"class", window.class_name}, {"text", window.text},
           {"left", window.left},       {"top", window.top},          {"width", window.width},
           {"height", window.height},   {"enabled", window.enabled},  {"visible", window.visible},
           {"focused", window.focused}, {"active", window.active}};
    if (window.check >= 0) {
        out["check"] = window.check;
    }
    if (!window.items.empty()) {
        out["items"] = window.items;
        out["selected"] = window.selected;
    }
    if (!window.places.empty()) {
        out["places"] = window.places;
    }
    if (window.position) {
        out["position"] = *window.position;
    }
}

void from_json(const nlohmann::json& in, Window& window) {
    in.at("handle").get_to(window.handle);
    in.at("parent").get_to(window.parent);
    in.at("pid").get_to(window.pid);
    in.at("id").get_to(window.id);
    in.at("class").get_to(window.class_name);
    in.at("text").get_to(window.text);
    in.at("left").get_to(window.left);
    in.at("top").get_to(window.top);
    in.at("width").get_to(window.width);
    in.at("height").get_to(window.height);
    in.at("enabled").get_to(window.enabled);
    in.at("visible").get_to(window.visible);
    in.at("focused").get_to(window.focused);
    in.at("active").get_to(window.active);
    window.check = in.value("check", -1);
    window.selected = in.value("selected", -1);
    window.items = in.value("items", std::vector<std::string>());
    window.places = in.value("places", std::vector<std::array<int, 4>>());
    if (in.contains("position")) {
        window.position = in["position"].get<int>();
    }
}

}  // namespace sim::windows
