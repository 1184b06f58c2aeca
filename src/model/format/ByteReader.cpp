#include "model/format/ByteReader.h"

#include <bit>
#include <utility>

namespace mirovane {

namespace {

constexpr std::uint16_t wideForm = 0xFFFE;
constexpr std::uint16_t longestForm = 0xFFFF;

} // namespace

void CByteReader::fail(std::size_t offset, std::string reason) {
    if (failed_)
        return;
    failed_ = true;
    errorOffset_ = offset;
    reason_ = std::move(reason);
}

void CByteReader::failAtEnd() {
    fail(offset_, "the file ends too early");
}

void CByteReader::failAtText(std::size_t start, std::uint64_t count) {
    fail(start, "a text claims " + std::to_string(count) + " bytes, but only " + std::to_string(remaining()) +
                    " are left");
}

std::uint16_t CByteReader::readUint16() {
    if (!has(2))
        return 0;
    const std::uint8_t low = readUint8();
    return static_cast<std::uint16_t>(low | readUint8() << 8);
}

double CByteReader::readDouble() {
    if (!has(8))
        return 0.0;
    const std::uint64_t low = readUint32();
    const std::uint64_t high = readUint32();
    return std::bit_cast<double>(low | high << 32);
}

std::uint32_t CByteReader::readCount() {
    const std::uint16_t count = readUint16();
    return count == 0xFFFF ? readUint32() : count;
}

CByteReader::Text CByteReader::readLongText() {
    const std::size_t start = offset_ - 1;
    const std::uint16_t length = readUint16();
    if (length == wideForm)
        return readWideText();
    return {readTextBytes(start, length == longestForm ? readUint32() : length, 1)};
}

CByteReader::Text CByteReader::readWideText() {
    const std::size_t start = offset_;
    std::uint64_t length = readUint8();
    if (length == longForm) {
        length = readUint16();
        if (length == wideForm)
            fail(start, "a text is marked as wide twice");
        else if (length == longestForm)
            length = readUint32();
    }
    return {readTextBytes(start, length, 2), true};
}

} // namespace mirovane
