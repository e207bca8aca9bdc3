// A dialog template made in memory.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace sim::windows {

// The window classes that a template names by number.
enum ClassAtom : std::uint16_t {
    kButtonAtom = 0x80,
    kEditAtom = 0x81,
    kStaticAtom = 0x82,
    kListBoxAtom = 0x83,
    kComboBoxAtom = 0x85,
};

class TemplateBuilder {
public:
    struct Place {  // dialog units
        std::int16_t x, y, width, height;
    };

    // A modal dialog with a caption and a close box, font 8 "MS Sans Serif".
    TemplateBuilder(const std::wstring& title, std::int16_t width, std::int16_t height);
    void Add(ClassAtom window_class, const std::wstring& text, std::uint32_t style, Place place,
             int id);
    const void* bytes() const { return words_.data(); }

private:
    void Double(std::uint32_t value);
    void Text(const std::wstring& text);
    void Put(Place place);

    std::vector<std::uint16_t> words_;
};

}  // namespace sim::windows
