// Many things of one type and one lifetime in few blocks of the heap: there a block costs a call of
// the platform and some bytes around it. Header only and platform-free.
#pragma once

#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>

namespace tolvenar {

// Owns the memory of all that is taken. What is given back is taken again before anything new.
template <typename Thing>
class Slabs {
public:
    Slabs() = default;
    ~Slabs() { Clear(); }
    Slabs(const Slabs&) = delete;
    Slabs& operator=(const Slabs&) = delete;

    // A thing with its initial values, which stays where it is; null when there is no memory.
    Thing* Take() {
        Place* const place = free_ != nullptr ? free_ : NextNew();
        if (place == nullptr) {
            return nullptr;
        }
        if (place == free_) {
            free_ = place->next_free;
        }
        return new (place) Thing{};
    }
    // `thing` was taken here and is used no more.
    void GiveBack(Thing& thing) {
        auto* const place = reinterpret_cast<Place*>(&thing);
        place->next_free = free_;
        free_ = place;
    }
    // Frees everything at once.
    void Clear() {
        while (newest_ != nullptr) {
            delete std::exchange(newest_, newest_->before);
        }
        used_ = kPlaces;
        free_ = nullptr;
    }

private:
    static_assert(std::is_trivially_destructible_v<Thing>);
    union Place {
        Place* next_free;
        alignas(Thing) unsigned char bytes[sizeof(Thing)];
    };
    static constexpr std::size_t kSlabBytes = 16 * 1024;
    static constexpr std::size_t kPlaces = (kSlabBytes - sizeof(void*)) / sizeof(Place);
    struct Slab {
        Slab* before;
        Place places[kPlaces];
    };

    Place* NextNew() {
        if (used_ == kPlaces) {
            auto* const slab = new (std::nothrow) Slab;
            if (slab == nullptr) {
                return nullptr;
            }
            slab->before = newest_;
            newest_ = slab;
            used_ = 0;
        }
        return &newest_->places[used_++];
    }

    Slab* newest_ = nullptr;
    std::size_t used_ = kPlaces;  // of the newest slab; none is as good as a full one
    Place* free_ = nullptr;
};

}  // namespace tolvenar
