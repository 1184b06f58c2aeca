#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace mirovane {

/// Appends what CByteReader reads. Texts are written in the 8-bit form only. Little-endian.
class CByteWriter {
public:
    void reserve(std::size_t bytes) { out_.reserve(bytes); }

    void writeUint8(std::uint8_t value) { out_.push_back(static_cast<char>(value)); }
    void writeUint16(std::uint16_t value) { writeLittleEndian<2>(value); }
    void writeUint32(std::uint32_t value) { writeLittleEndian<4>(value); }
    void writeInt32(std::int32_t value) { writeUint32(static_cast<std::uint32_t>(value)); }
    void writeDouble(double value) { writeLittleEndian<8>(std::bit_cast<std::uint64_t>(value)); }
    void writeBytes(std::string_view bytes) { out_.append(bytes); }

    void writeText(std::string_view text) {
        if (text.size() < 0xFF) {
            writeUint8(static_cast<std::uint8_t>(text.size()));
        } else if (text.size() < 0xFFFE) {
            writeUint8(0xFF);
            writeUint16(static_cast<std::uint16_t>(text.size()));
        } else {
            writeUint8(0xFF);
            writeUint16(0xFFFF);
            writeUint32(static_cast<std::uint32_t>(text.size()));
        }
        writeBytes(text);
    }

    void writeCount(std::size_t count) {
        if (count < 0xFFFF) {
            writeUint16(static_cast<std::uint16_t>(count));
        } else {
            writeUint16(0xFFFF);
            writeUint32(static_cast<std::uint32_t>(count));
        }
    }

    std::string take() { return std::move(out_); }

private:
    template <std::size_t size>
    void writeLittleEndian(std::uint64_t value) {
        char bytes[size];
        for (std::size_t i = 0; i < size; ++i)
            bytes[i] = static_cast<char>(value >> (8 * i) & 0xFF);
        out_.append(bytes, size);
    }

    std::string out_;
};

} // namespace mirovane
