// Copies of many texts of one lifetime in few blocks of the heap. Platform-free.
#pragma once

#include <cstddef>
#include <string_view>

namespace tolvenar {

class TextSlabs {
public:
    TextSlabs() = default;
    ~TextSlabs() { Clear(); }
    TextSlabs(const TextSlabs&) = delete;
    TextSlabs& operator=(const TextSlabs&) = delete;

    // A copy with a terminator, which stays where it is; null when there is no memory.
    const char16_t* Copy(std::u16string_view text);
    // Frees everything at once.
    void Clear();

private:
    struct Slab {
        Slab* before;
        char16_t units[2];  // as many as were asked for: the rest stands behind the struct
    };

    char16_t* Reserve(std::size_t units);

    Slab* newest_ = nullptr;
    char16_t* next_ = nullptr;  // where the next text goes
    std::size_t left_ = 0;      // units
};

}  // namespace tolvenar
