#include "platform/files/FileErrors.h"

#include <cerrno>
#include <system_error>

namespace mirovane {

namespace {

FileError::Kind kindOf(int code) {
    switch (code) {
    case ENOENT:
    case ENOTDIR:
        return FileError::Kind::NotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case ETXTBSY:
        return FileError::Kind::Denied;
    case EAGAIN:
        return FileError::Kind::Locked;
    case ENOSPC:
    case EDQUOT:
        return FileError::Kind::NoSpace;
    case EFBIG:
        return FileError::Kind::TooLarge;
    default:
        return FileError::Kind::Other;
    }
}

} // namespace

FileError fileError(std::string_view what, const std::string& path, int code) {
    return {kindOf(code), code,
            std::string(what) + " " + path + ": " + std::error_code(code, std::generic_category()).message()};
}

FileIdentity identityFrom(const struct stat& status) {
    return {static_cast<std::int64_t>(status.st_mtim.tv_sec) * 1'000'000'000 + status.st_mtim.tv_nsec,
            static_cast<std::uint64_t>(status.st_size), static_cast<std::uint64_t>(status.st_ino)};
}

} // namespace mirovane
