#pragma once
// Building and inspecting little-endian byte strings by hand, independently of the
// program's own binary stream.

#include <bit>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace molvera::test {

/// Appends little-endian values to a byte string.
struct LeBytes {
    std::string bytes;

    LeBytes& Raw(std::string_view s) {
        bytes.append(s);
        return *this;
    }
    /// The lowest `width` bytes of `v`, lowest first.
    LeBytes& Int(std::uint64_t v, int width) {
        for (int k = 0; k < width; ++k) bytes.push_back(static_cast<char>((v >> (8 * k)) & 0xFF));
        return *this;
    }
    LeBytes& I16(int v) { return Int(static_cast<std::uint64_t>(v), 2); }
    LeBytes& I32(std::int32_t v) { return Int(static_cast<std::uint64_t>(v), 4); }
    LeBytes& F32(float v) { return Int(std::bit_cast<std::uint32_t>(v), 4); }
    LeBytes& F64(double v) { return Int(std::bit_cast<std::uint64_t>(v), 8); }
    /// A Text20: `s` padded with blanks.
    LeBytes& Text20(std::string_view s) {
        return Raw((std::string(s) + std::string(20, ' ')).substr(0, 20));
    }
    /// Array header (1 dimension, count, lower bound 0) and the elements.
    LeBytes& Array(std::initializer_list<float> values) {
        I16(1).I32(static_cast<std::int32_t>(values.size())).I32(0);
        for (float v : values) F32(v);
        return *this;
    }
};

/// The unsigned little-endian value of `width` bytes at `at`.
inline std::uint64_t UIntAt(const std::string& b, std::size_t at, int width) {
    std::uint64_t u = 0;
    for (int k = width - 1; k >= 0; --k)
        u = (u << 8) | static_cast<unsigned char>(b.at(at + static_cast<std::size_t>(k)));
    return u;
}
inline std::int16_t I16At(const std::string& b, std::size_t at) {
    return static_cast<std::int16_t>(UIntAt(b, at, 2));
}
inline std::int32_t I32At(const std::string& b, std::size_t at) {
    return static_cast<std::int32_t>(UIntAt(b, at, 4));
}

/// One expected value in a byte string: kind 'h' Int16, 'i' Int32, 'f' Single.
struct ValueAt {
    std::size_t offset;
    char kind;
    double value;
};

/// Checks every row against the bytes at its offset (plus `base`).
inline void ExpectValuesAt(const std::string& b, std::size_t base,
                           std::initializer_list<ValueAt> rows) {
    for (const auto& [offset, kind, value] : rows) {
        const std::size_t at = base + offset;
        const double got = kind == 'h' ? I16At(b, at)
                           : kind == 'i'
                               ? I32At(b, at)
                               : std::bit_cast<float>(static_cast<std::uint32_t>(UIntAt(b, at, 4)));
        EXPECT_EQ(got, kind == 'f' ? static_cast<float>(value) : value)
            << "at " << base << " + " << offset;
    }
}

}  // namespace molvera::test
