#pragma once
// Little-endian binary reading and writing with explicit widths.

#include <cstdint>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace molvera {

/// Thrown by BinaryReader when the data end early or a header is not acceptable;
/// readers catch it at their entry point.
struct ReadError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Reads little-endian values from a byte buffer held in memory.
class BinaryReader {
public:
    explicit BinaryReader(std::string_view bytes) : data_(bytes) {}

    std::int16_t I16();
    std::int32_t I32();
    float F32();
    double F64();
    std::string Bytes(std::size_t n);
    /// An array header (Int16 dimensions 1, Int32 count, Int32 lower bound 0) and its
    /// elements; the count must be at most `maxCount` and fit in the remaining bytes.
    std::vector<float> ReadSingleArray(std::size_t maxCount);
    /// `count` Singles without a header; only the first `keep` are returned.
    std::vector<float> ReadFixedSingles(std::size_t count, std::size_t keep);

    std::size_t Remaining() const { return data_.size() - pos_; }
    std::size_t Position() const { return pos_; }
    void Seek(std::size_t pos);

private:
    void Need(std::size_t n) const;
    std::string_view data_;
    std::size_t pos_ = 0;
};

/// Writes little-endian values to a stream; the caller checks the stream state.
class BinaryWriter {
public:
    explicit BinaryWriter(std::ostream& out) : out_(out) {}

    void I16(std::int16_t v);
    void I32(std::int32_t v);
    void F32(float v);
    void Bytes(std::string_view s);
    /// Array header and every element from index 0.
    void WriteSingleArray(const std::vector<float>& a);
    bool Good() const { return static_cast<bool>(out_); }

private:
    std::ostream& out_;
};

}  // namespace molvera
