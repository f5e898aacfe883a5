#include "base/binstream.h"

#include <algorithm>
#include <cstring>

namespace molvera {

void BinaryReader::Need(std::size_t n) const {
    if (n > Remaining()) throw ReadError("unexpected end of data");
}

void BinaryReader::Seek(std::size_t pos) {
    if (pos > data_.size()) throw ReadError("seek past the end");
    pos_ = pos;
}

std::int16_t BinaryReader::I16() {
    Need(2);
    auto b = reinterpret_cast<const unsigned char*>(data_.data() + pos_);
    pos_ += 2;
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(b[0] | (b[1] << 8)));
}

std::int32_t BinaryReader::I32() {
    Need(4);
    auto b = reinterpret_cast<const unsigned char*>(data_.data() + pos_);
    pos_ += 4;
    std::uint32_t u = static_cast<std::uint32_t>(b[0]) | (static_cast<std::uint32_t>(b[1]) << 8) |
                      (static_cast<std::uint32_t>(b[2]) << 16) |
                      (static_cast<std::uint32_t>(b[3]) << 24);
    return static_cast<std::int32_t>(u);
}

float BinaryReader::F32() {
    std::uint32_t u = static_cast<std::uint32_t>(I32());
    float f;
    std::memcpy(&f, &u, 4);
    return f;
}

double BinaryReader::F64() {
    std::uint64_t lo = static_cast<std::uint32_t>(I32());
    std::uint64_t hi = static_cast<std::uint32_t>(I32());
    std::uint64_t u = lo | (hi << 32);
    double d;
    std::memcpy(&d, &u, 8);
    return d;
}

std::string BinaryReader::Bytes(std::size_t n) {
    Need(n);
    std::string s(data_.substr(pos_, n));
    pos_ += n;
    return s;
}

std::vector<float> BinaryReader::ReadSingleArray(std::size_t maxCount) {
    const std::int16_t dims = I16();
    const std::int32_t count = I32();
    const std::int32_t lower = I32();
    if (dims != 1 || lower != 0 || count < 0 || static_cast<std::size_t>(count) > maxCount ||
        static_cast<std::size_t>(count) * 4 > Remaining()) {
        throw ReadError("bad array header");
    }
    std::vector<float> a(static_cast<std::size_t>(count));
    for (float& v : a) v = F32();
    return a;
}

std::vector<float> BinaryReader::ReadFixedSingles(std::size_t count, std::size_t keep) {
    Need(count * 4);
    std::vector<float> a(std::min(count, keep));
    for (float& v : a) v = F32();
    pos_ += (count - a.size()) * 4;
    return a;
}

void BinaryWriter::I16(std::int16_t v) {
    const auto u = static_cast<std::uint16_t>(v);
    const char b[2] = {static_cast<char>(u & 0xFF), static_cast<char>(u >> 8)};
    out_.write(b, 2);
}

void BinaryWriter::I32(std::int32_t v) {
    const auto u = static_cast<std::uint32_t>(v);
    const char b[4] = {static_cast<char>(u & 0xFF), static_cast<char>((u >> 8) & 0xFF),
                       static_cast<char>((u >> 16) & 0xFF), static_cast<char>(u >> 24)};
    out_.write(b, 4);
}

void BinaryWriter::F32(float v) {
    std::uint32_t u;
    std::memcpy(&u, &v, 4);
    I32(static_cast<std::int32_t>(u));
}

void BinaryWriter::Bytes(std::string_view s) {
    out_.write(s.data(), static_cast<std::streamsize>(s.size()));
}

void BinaryWriter::WriteSingleArray(const std::vector<float>& a) {
    I16(1);
    I32(static_cast<std::int32_t>(a.size()));
    I32(0);
    for (float v : a) F32(v);
}

}  // namespace molvera
