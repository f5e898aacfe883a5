#pragma once
// Building and inspecting little-endian byte strings by hand, independently of the
// program's own binary stream.

#include <cstdint>
#include <cstring>
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
    LeBytes& I16(int v) {
        const auto u = static_cast<std::uint16_t>(static_cast<std::int16_t>(v));
        bytes.push_back(static_cast<char>(u & 0xFF));
        bytes.push_back(static_cast<char>(u >> 8));
        return *this;
    }
    LeBytes& I32(std::int32_t v) {
        const auto u = static_cast<std::uint32_t>(v);
        for (int k = 0; k < 4; ++k) bytes.push_back(static_cast<char>((u >> (8 * k)) & 0xFF));
        return *this;
    }
    LeBytes& F32(float v) {
        std::uint32_t u;
        std::memcpy(&u, &v, 4);
        return I32(static_cast<std::int32_t>(u));
    }
    /// A Text20: `s` padded with blanks.
    LeBytes& Text20(std::string_view s) {
        std::string t(s.substr(0, 20));
        t.resize(20, ' ');
        return Raw(t);
    }
    /// Array header (1 dimension, count, lower bound 0) and the elements.
    LeBytes& Array(std::initializer_list<float> values) {
        I16(1).I32(static_cast<std::int32_t>(values.size())).I32(0);
        for (float v : values) F32(v);
        return *this;
    }
    std::size_t size() const { return bytes.size(); }
};

inline std::int16_t I16At(const std::string& b, std::size_t at) {
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(
        static_cast<unsigned char>(b.at(at)) | (static_cast<unsigned char>(b.at(at + 1)) << 8)));
}

inline std::int32_t I32At(const std::string& b, std::size_t at) {
    std::uint32_t u = 0;
    for (int k = 3; k >= 0; --k)
        u = (u << 8) | static_cast<unsigned char>(b.at(at + static_cast<std::size_t>(k)));
    return static_cast<std::int32_t>(u);
}

inline float F32At(const std::string& b, std::size_t at) {
    const auto u = static_cast<std::uint32_t>(I32At(b, at));
    float f;
    std::memcpy(&f, &u, 4);
    return f;
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
    for (const ValueAt& r : rows) {
        const std::size_t at = base + r.offset;
        const double got = r.kind == 'h'   ? I16At(b, at)
                           : r.kind == 'i' ? I32At(b, at)
                                           : F32At(b, at);
        const double want = r.kind == 'f' ? static_cast<float>(r.value) : r.value;
        EXPECT_EQ(got, want) << "at " << base << " + " << r.offset;
    }
}

}  // namespace molvera::test
