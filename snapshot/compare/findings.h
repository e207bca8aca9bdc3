// Findings of a check, counted and logged. Platform-free.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tolvenar {

class Findings {
public:
    // `kind` begins every line, such as "List damaged".
    explicit Findings(const char16_t* kind) : kind_(kind) {}

    // `what` names the rule that is broken, `offset` the place in the storage file; 0 is none.
    void Add(const char16_t* what, std::uint32_t state, std::uint32_t offset = 0);
    // After the last one: the log says how many there are when not all have a line of their own.
    void Finish() const;
    std::size_t count() const { return count_; }

private:
    const char16_t* const kind_;
    std::size_t count_ = 0;
};

}  // namespace tolvenar
