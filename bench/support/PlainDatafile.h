#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace mirovane::bench {

/// The other side: the least that somebody would write who trusts the file. One buffer, one cursor, eleven
/// std::string and the numbers as they come; no checks but the form of a length, no look-ups, no locks.
struct PlainRecord {
    std::array<std::int32_t, 4> head;
    std::array<std::string, 11> texts;
    std::array<std::int32_t, 15> stamps;
    std::array<std::int32_t, 5> flags;
    std::int32_t dateStatus;
    double date;
    std::int32_t priority;
};

inline std::string readPlainFile(const std::string& path) {
    const int fd = open(path.c_str(), O_RDONLY);
    struct stat status = {};
    if (fd < 0 || fstat(fd, &status) != 0)
        throw std::runtime_error("cannot read " + path);
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t got = read(fd, bytes.data() + done, bytes.size() - done);
        if (got <= 0)
            throw std::runtime_error("cannot read " + path);
        done += static_cast<std::size_t>(got);
    }
    close(fd);
    return bytes;
}

namespace plain {

template <typename T>
void take(const char*& at, T& value) {
    std::memcpy(&value, at, sizeof value);
    at += sizeof value;
}

inline void takeText(const char*& at, std::string& text) {
    std::size_t length = static_cast<unsigned char>(*at++);
    if (length == 0xFF) {
        std::uint16_t longer = 0;
        take(at, longer);
        length = longer;
    }
    text.assign(at, length);
    at += length;
}

template <typename T>
void put(std::string& out, const T& value) {
    out.append(reinterpret_cast<const char*>(&value), sizeof value);
}

inline void putText(std::string& out, const std::string& text) {
    if (text.size() < 0xFF) {
        out.push_back(static_cast<char>(text.size()));
    } else {
        out.push_back('\xFF');
        put(out, static_cast<std::uint16_t>(text.size()));
    }
    out.append(text);
}

} // namespace plain

inline std::vector<PlainRecord> decodePlain(const std::string& bytes) {
    const char* at = bytes.data();
    std::uint16_t count = 0;
    plain::take(at, count);
    std::vector<PlainRecord> records(count);
    bool first = true;
    for (PlainRecord& record : records) {
        at += first ? 15 : 2;
        first = false;
        plain::take(at, record.head);
        for (std::size_t i = 0; i < 6; ++i)
            plain::takeText(at, record.texts[i]);
        plain::take(at, record.stamps);
        for (std::size_t i = 6; i < 10; ++i)
            plain::takeText(at, record.texts[i]);
        plain::take(at, record.flags);
        plain::take(at, record.dateStatus);
        plain::take(at, record.date);
        plain::takeText(at, record.texts[10]);
        plain::take(at, record.priority);
    }
    return records;
}

inline std::string encodePlain(const std::vector<PlainRecord>& records) {
    std::string out;
    plain::put(out, static_cast<std::uint16_t>(records.size()));
    bool first = true;
    for (const PlainRecord& record : records) {
        out.append(first ? std::string("\xFF\xFF\x01\0\x09\0CHardware", 15) : std::string("\x01\x80"));
        first = false;
        plain::put(out, record.head);
        for (std::size_t i = 0; i < 6; ++i)
            plain::putText(out, record.texts[i]);
        plain::put(out, record.stamps);
        for (std::size_t i = 6; i < 10; ++i)
            plain::putText(out, record.texts[i]);
        plain::put(out, record.flags);
        plain::put(out, record.dateStatus);
        plain::put(out, record.date);
        plain::putText(out, record.texts[10]);
        plain::put(out, record.priority);
    }
    return out;
}

/// Encode, write, flush, rename.
inline void savePlain(const std::string& path, const std::vector<PlainRecord>& records) {
    const std::string bytes = encodePlain(records);
    const std::string temporary = path + ".tmp";
    const int fd = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t put = write(fd, bytes.data() + done, bytes.size() - done);
        if (put <= 0)
            throw std::runtime_error("cannot write " + temporary);
        done += static_cast<std::size_t>(put);
    }
    if (fsync(fd) != 0 || close(fd) != 0 || rename(temporary.c_str(), path.c_str()) != 0)
        throw std::runtime_error("cannot write " + path);
}

} // namespace mirovane::bench
