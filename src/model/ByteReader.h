#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace mirovane {

/// A cursor over bytes of unknown origin. Never reads past the end and trusts no length before it has
/// compared it with what remains. The first error sticks: from then on every read gives 0 or an empty text
/// and moves nothing, so a caller may read a whole record and ask once. Integers are little-endian.
class ByteReader {
public:
    explicit ByteReader(std::string_view bytes) : bytes_(bytes) {}

    std::uint8_t readUint8();
    std::uint16_t readUint16();
    std::uint32_t readUint32();
    std::int32_t readInt32() { return static_cast<std::int32_t>(readUint32()); }
    double readDouble();

    /// A length in any of its forms, then that many bytes. The wide form comes out in this platform's 8-bit
    /// text.
    std::string readText();

    /// A record count: 16 bits, or 0xFFFF and 32 bits.
    std::uint32_t readCount();

    std::string_view readBytes(std::size_t count);

    std::size_t offset() const { return offset_; }
    std::size_t remaining() const { return bytes_.size() - offset_; }
    bool failed() const { return failed_; }

    /// Where reading stopped making sense, and why; meaningful once failed.
    std::size_t errorOffset() const { return errorOffset_; }
    const std::string& reason() const { return reason_; }

    /// For errors that only the caller can see. Keeps an earlier one.
    void fail(std::size_t offset, std::string reason);

private:
    bool need(std::size_t count, const char* what);
    std::string readLongText();
    std::string readWideText();
    std::string_view readTextBytes(std::size_t start, std::uint64_t length, std::uint64_t unitSize);

    std::string_view bytes_;
    std::size_t offset_ = 0;
    std::size_t errorOffset_ = 0;
    bool failed_ = false;
    std::string reason_;
};

} // namespace mirovane
