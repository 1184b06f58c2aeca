/// Preloaded into a program: while the file named by HANG_FLAG exists, every call on a path below HANG_FOLDER
/// waits, as calls on a share do whose server went away. Nothing ends the wait but the flag's end.

#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

void waitForShare(const char* path) {
    static const char* const folder = std::getenv("HANG_FOLDER");
    static const char* const flag = std::getenv("HANG_FLAG");
    if (!folder || !flag || !path || std::strncmp(path, folder, std::strlen(folder)) != 0)
        return;
    while (syscall(SYS_faccessat, AT_FDCWD, flag, F_OK) == 0)
        usleep(5000);
}

template <typename Call>
Call real(const char* name) {
    return reinterpret_cast<Call>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

int stat(const char* path, struct stat* status) noexcept {
    waitForShare(path);
    static const auto call = real<int (*)(const char*, struct stat*)>("stat");
    return call(path, status);
}

int access(const char* path, int mode) noexcept {
    waitForShare(path);
    static const auto call = real<int (*)(const char*, int)>("access");
    return call(path, mode);
}

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = static_cast<mode_t>(va_arg(rest, int));
    va_end(rest);
    waitForShare(path);
    static const auto call = real<int (*)(const char*, int, mode_t)>("open");
    return call(path, flags, mode);
}

int rename(const char* from, const char* to) noexcept {
    waitForShare(to);
    static const auto call = real<int (*)(const char*, const char*)>("rename");
    return call(from, to);
}

char* realpath(const char* path, char* to) noexcept {
    waitForShare(path);
    static const auto call = real<char* (*)(const char*, char*)>("realpath");
    return call(path, to);
}

DIR* opendir(const char* path) {
    waitForShare(path);
    static const auto call = real<DIR* (*)(const char*)>("opendir");
    return call(path);
}
}
