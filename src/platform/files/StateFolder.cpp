#include "platform/files/StateFolder.h"

#include "platform/files/FilePaths.h"

#include <cerrno>
#include <cstdlib>
#include <unistd.h>

namespace mirovane {

std::string defaultStateFolder() {
    const auto variable = [](const char* name) {
        const char* value = std::getenv(name);
        return value && value[0] == '/' ? std::string(value) : std::string();
    };
    if (const std::string state = variable("XDG_STATE_HOME"); !state.empty())
        return state + "/mirovane";
    if (const std::string home = variable("HOME"); !home.empty())
        return home + "/.local/state/mirovane";
    const std::string temporary = variable("TMPDIR");
    return (temporary.empty() ? std::string("/tmp") : temporary) + "/mirovane-" + std::to_string(::geteuid());
}

std::string stateFolderFor(const std::string& configFolder) {
    return configFolder.empty() ? defaultStateFolder() : absolutePath(configFolder) + "/state";
}

bool makeStateFolder(CFileCalls& calls, const std::string& folder) {
    if (isOwnFolder(calls, folder))
        return true;
    for (std::size_t slash = folder.find('/', 1); slash != std::string::npos;
         slash = folder.find('/', slash + 1))
        calls.makeFolder(folder.substr(0, slash), 0700);
    if (calls.makeFolder(folder, 0700) != 0 && errno != EEXIST)
        return false;
    if (isOwnFolder(calls, folder))
        return true;
    errno = EPERM;
    return false;
}

bool isOwnFolder(CFileCalls& calls, const std::string& folder) {
    struct stat status = {};
    return calls.statusAt(folder, status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
           (status.st_mode & S_IWOTH) == 0;
}

} // namespace mirovane
