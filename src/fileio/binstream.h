#pragma once
// Little-endian binary reading and writing with explicit widths.

#include <cstdint>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "model/records.h"

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
    Text20 ReadText20();
    /// An array header (Int16 dimensions 1, Int32 count, Int32 lower bound 0) and its
    /// elements; the count must be at most `maxCount` and fit in the remaining bytes.
    SingleArray ReadSingleArray(std::size_t maxCount);
    /// `count` Singles without a header; only the first `keep` are returned.
    SingleArray ReadFixedSingles(std::size_t count, std::size_t keep);

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
    void WriteText20(const Text20& t);
    /// Array header and every element from index 0.
    void WriteSingleArray(const SingleArray& a);
    bool Good() const { return static_cast<bool>(out_); }

private:
    std::ostream& out_;
};

/// Reads a whole file into memory; fails when it cannot be opened or is larger than
/// `maxBytes`.
bool ReadWholeFile(const std::string& path, std::string& bytes, std::size_t maxBytes);

/// Writes a file safely: `write` fills a temporary file in the same folder, which then
/// replaces `path`; when anything fails the previous file stays as it was.
bool WriteFileAtomically(const std::string& path,
                         const std::function<bool(std::ostream&)>& write);

}  // namespace molvera
