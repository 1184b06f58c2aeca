#include "model/ByteReader.h"

#include "model/Text.h"

#include <bit>
#include <utility>

namespace mirovane {

namespace {

constexpr std::uint8_t longForm = 0xFF;
constexpr std::uint16_t wideForm = 0xFFFE;
constexpr std::uint16_t longestForm = 0xFFFF;

} // namespace

void ByteReader::fail(std::size_t offset, std::string reason) {
    if (failed_)
        return;
    failed_ = true;
    errorOffset_ = offset;
    reason_ = std::move(reason);
}

bool ByteReader::need(std::size_t count, const char* what) {
    if (failed_)
        return false;
    if (count <= remaining())
        return true;
    fail(offset_, std::string("the file ends inside ") + what);
    return false;
}

std::uint8_t ByteReader::readUint8() {
    if (!need(1, "a number"))
        return 0;
    return static_cast<std::uint8_t>(bytes_[offset_++]);
}

std::uint16_t ByteReader::readUint16() {
    if (!need(2, "a number"))
        return 0;
    const auto* p = bytes_.data() + offset_;
    offset_ += 2;
    return static_cast<std::uint16_t>(static_cast<std::uint8_t>(p[0]) | static_cast<std::uint8_t>(p[1]) << 8);
}

std::uint32_t ByteReader::readUint32() {
    if (!need(4, "a number"))
        return 0;
    const auto* p = bytes_.data() + offset_;
    offset_ += 4;
    const auto byte = [p](int i) {
        return static_cast<std::uint32_t>(static_cast<std::uint8_t>(p[i]));
    };
    return byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24;
}

double ByteReader::readDouble() {
    if (!need(8, "a date"))
        return 0.0;
    const std::uint64_t low = readUint32();
    const std::uint64_t high = readUint32();
    return std::bit_cast<double>(low | high << 32);
}

std::string_view ByteReader::readBytes(std::size_t count) {
    if (!need(count, "a fixed run of bytes"))
        return {};
    const std::string_view run = bytes_.substr(offset_, count);
    offset_ += count;
    return run;
}

std::uint32_t ByteReader::readCount() {
    const std::uint16_t count = readUint16();
    return count == 0xFFFF ? readUint32() : count;
}

std::string ByteReader::readText() {
    const std::size_t start = offset_;
    const std::uint8_t length = readUint8();
    if (length == longForm)
        return readLongText();
    return std::string(readTextBytes(start, length, 1));
}

std::string ByteReader::readLongText() {
    const std::size_t start = offset_ - 1;
    const std::uint16_t length = readUint16();
    if (length == wideForm)
        return readWideText();
    return std::string(readTextBytes(start, length == longestForm ? readUint32() : length, 1));
}

std::string ByteReader::readWideText() {
    const std::size_t start = offset_;
    std::uint64_t length = readUint8();
    if (length == longForm) {
        length = readUint16();
        if (length == wideForm)
            fail(start, "a text is marked as wide twice");
        else if (length == longestForm)
            length = readUint32();
    }
    return bytesFromUtf16Le(readTextBytes(start, length, 2));
}

std::string_view ByteReader::readTextBytes(std::size_t start, std::uint64_t length, std::uint64_t unitSize) {
    if (failed_)
        return {};
    const std::uint64_t count = length * unitSize;
    if (count > remaining()) {
        fail(start, "a text claims " + std::to_string(count) + " bytes, but only " +
                        std::to_string(remaining()) + " are left");
        return {};
    }
    return readBytes(static_cast<std::size_t>(count));
}

} // namespace mirovane
