#pragma once

#include "model/records/Text.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace mirovane {

/// A cursor over bytes of unknown origin. Never reads past the end and trusts no length before it has
/// compared it with what remains. The first error sticks: from then on every read gives 0 or an empty text
/// and moves nothing, so a caller may read a whole record and ask once. Integers are little-endian. The small
/// reads are inline: loading a large datafile is forty of them for each record.
class CByteReader {
public:
    explicit CByteReader(std::string_view bytes) : bytes_(bytes) {}

    std::uint8_t readUint8() { return has(1) ? static_cast<std::uint8_t>(take(1)[0]) : std::uint8_t{0}; }
    std::uint16_t readUint16();
    std::uint32_t readUint32() { return has(4) ? uint32At(take(4)) : 0; }
    std::int32_t readInt32() { return static_cast<std::int32_t>(readUint32()); }
    double readDouble();

    /// As many as the span holds; none when they are not all there.
    void readInt32s(std::span<std::int32_t> to) {
        if (!has(to.size() * 4))
            return;
        const char* p = take(to.size() * 4);
        for (std::int32_t& value : to) {
            value = static_cast<std::int32_t>(uint32At(p));
            p += 4;
        }
    }

    /// A text where it lies, valid as long as the bytes are.
    struct Text {
        std::string_view bytes;
        bool wide = false; ///< UTF-16LE code units

        /// In this platform's 8-bit text.
        std::string string() const { return wide ? bytesFromUtf16Le(bytes) : std::string(bytes); }
    };

    /// A length in any of its forms, then that many bytes or code units.
    Text readText() {
        const std::size_t start = offset_;
        const std::uint8_t length = readUint8();
        if (length == longForm) [[unlikely]]
            return readLongText();
        return {readTextBytes(start, length, 1)};
    }

    /// A record count: 16 bits, or 0xFFFF and 32 bits.
    std::uint32_t readCount();

    std::string_view readBytes(std::size_t count) {
        return has(count) ? std::string_view(take(count), count) : std::string_view();
    }

    std::size_t offset() const { return offset_; }
    std::size_t remaining() const { return bytes_.size() - offset_; }
    bool failed() const { return failed_; }

    /// Where reading stopped making sense, and why; meaningful once failed.
    std::size_t errorOffset() const { return errorOffset_; }
    const std::string& reason() const { return reason_; }

    /// For errors that only the caller can see. Keeps an earlier one.
    void fail(std::size_t offset, std::string reason);

private:
    static constexpr std::uint8_t longForm = 0xFF;

    static std::uint32_t uint32At(const char* p) {
        const auto byte = [p](int i) {
            return static_cast<std::uint32_t>(static_cast<std::uint8_t>(p[i]));
        };
        return byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24;
    }

    /// Once failed, nothing is left to be had.
    bool has(std::size_t count) {
        if (count <= remaining() && !failed_) [[likely]]
            return true;
        failAtEnd();
        return false;
    }
    const char* take(std::size_t count) {
        const char* p = bytes_.data() + offset_;
        offset_ += count;
        return p;
    }
    std::string_view readTextBytes(std::size_t start, std::uint64_t length, std::uint64_t unitSize) {
        const std::uint64_t count = length * unitSize;
        if (failed_ || count > remaining()) [[unlikely]] {
            failAtText(start, count);
            return {};
        }
        return {take(static_cast<std::size_t>(count)), static_cast<std::size_t>(count)};
    }
    void failAtEnd();
    void failAtText(std::size_t start, std::uint64_t count);
    Text readLongText();
    Text readWideText();

    std::string_view bytes_;
    std::size_t offset_ = 0;
    std::size_t errorOffset_ = 0;
    bool failed_ = false;
    std::string reason_;
};

} // namespace mirovane
