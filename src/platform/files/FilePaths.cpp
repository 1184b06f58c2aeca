#include "platform/files/FilePaths.h"

#include "platform/AbandonableCalls.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace mirovane {

namespace {

/// `otherwise` where the share of `path` does not answer within half a second.
template <typename Answer, typename Look>
Answer answerInTime(const std::string& path, const Answer& otherwise, Look look) {
    constexpr std::chrono::milliseconds patience{500};
    const auto answer = std::make_shared<Answer>(otherwise);
    const auto call = [answer, look] {
        *answer = look();
    };
    const auto end = CAbandonableCalls().run(folderOf(path), call, patience);
    return end == CAbandonableCalls::End::Done ? *answer : otherwise;
}

} // namespace

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string nameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

bool isSameFile(const std::string& a, const std::string& b) {
    if (a == b)
        return true;
    return answerInTime<bool>(a, false, [a, b] {
        std::error_code failed;
        return std::filesystem::equivalent(a, b, failed);
    });
}

bool existsOnDisk(const std::string& path) {
    return answerInTime<bool>(
        path, false,
        [path] {
            std::error_code failed;
            return std::filesystem::exists(path, failed);
        });
}

/// root may write what nobody may: whoever took every right to write away meant him, too.
bool mayBeWritten(const std::string& path) {
    return answerInTime<bool>(
        path, true,
        [path] {
            struct stat status = {};
            return ::access(path.c_str(), W_OK) == 0 && ::stat(path.c_str(), &status) == 0 &&
                   (status.st_mode & 0222) != 0;
        });
}

std::string pathWithoutLinks(const std::string& path) {
    return answerInTime<std::string>(
        path, path,
        [path] {
            std::error_code failed;
            const std::filesystem::path real = std::filesystem::canonical(path, failed);
            return failed ? path : real.string();
        });
}

bool isMissing(const std::string& path) {
    return answerInTime<bool>(
        path, false,
        [path] {
            std::error_code failed;
            return std::filesystem::status(path, failed).type() == std::filesystem::file_type::not_found;
        });
}

/// Behind a symbolic link ".." leads elsewhere than the text says.
std::string absolutePath(const std::string& path) {
    std::error_code failed;
    const std::filesystem::path absolute = std::filesystem::absolute(path, failed);
    if (failed || path.empty())
        return path;
    const std::filesystem::path shortest = absolute.lexically_normal();
    return isSameFile(shortest.parent_path(), absolute.parent_path()) ? shortest.string() : absolute.string();
}

std::string fingerprintOf(std::string_view text) {
    std::uint64_t hash = 14695981039346656037U;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
    std::string digits;
    for (int shift = 60; shift >= 0; shift -= 4)
        digits += "0123456789abcdef"[hash >> shift & 0xF];
    return digits;
}

} // namespace mirovane
