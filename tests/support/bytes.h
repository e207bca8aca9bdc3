// Bytes as they stand in the storage's files, written by hand. Header only and platform-free.
#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

#include "snapshot/records/object_record.h"

namespace tolvenar {

using Bytes = std::string;

inline Bytes Raw(std::initializer_list<int> values) {
    Bytes bytes;
    for (const int value : values) {
        bytes += static_cast<char>(value);
    }
    return bytes;
}

template <typename T>
Bytes BytesOf(const T& value) {
    return {reinterpret_cast<const char*>(&value), sizeof value};
}

inline Bytes Word(std::uint32_t value) { return BytesOf(value); }
inline Bytes Half(std::uint32_t value) { return Word(value).substr(0, 2); }

// The text's units, without terminator and with it.
inline Bytes Units(const std::u16string& text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t)};
}
inline Bytes Terminated(const std::u16string& text) { return Units(text) + Half(0); }

// The text that such units are.
inline std::u16string TextIn(const Bytes& units) {
    return {reinterpret_cast<const char16_t*>(units.data()), units.size() / sizeof(char16_t)};
}

// An object's block: head, name and terminator.
inline Bytes Block(std::uint32_t first_field, std::uint32_t second_field, std::uint64_t time,
                   std::size_t data_bytes, ObjectType type, const std::u16string& name) {
    return Word(first_field) + Word(second_field) + BytesOf(time) +
           Word(static_cast<std::uint32_t>(data_bytes)) + Half(static_cast<std::uint32_t>(type)) +
           Half(static_cast<std::uint32_t>(2 * name.size())) + Half(0) + Terminated(name);
}

// A database record's property.
inline Bytes Property(std::uint32_t propid, std::uint32_t value, std::uint32_t value_high = 0,
                      std::uint32_t flags = 0) {
    return Word(propid) + Half(0) + Half(flags) + Word(value) + Word(value_high);
}

// The head of a storage without a description, of a device with system 2.11 and processor 4000.
inline Bytes Head(const std::u16string& device_name, std::uint64_t created) {
    Bytes name = Units(device_name);
    name.resize(200);
    return name + Word(4000) + Word(2) + Word(11) + Word(1) + Word(4) + BytesOf(created) + Word(0) +
           Word(0);
}

// Writes over the bytes from `place` on.
template <typename T>
void Patch(Bytes& bytes, std::size_t place, const T& value) {
    bytes.replace(place, sizeof value, BytesOf(value));
}

// A heap block of just this size, so that a sanitizer sees a read past its end.
inline std::vector<char> Exactly(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

inline Bytes RandomBytes(std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    Bytes bytes(size, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random());
    }
    return bytes;
}

}  // namespace tolvenar
