#include "platform/Host.h"

#include <array>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace mirovane {

namespace {

constexpr std::size_t longestComputerName = 30;

} // namespace

std::string computerName() {
    std::array<char, 256> name = {};
    if (gethostname(name.data(), name.size() - 1) != 0)
        return {};
    return std::string(name.data()).substr(0, longestComputerName);
}

std::string loginName() {
    std::vector<char> buffer(16384);
    passwd entry = {};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found)
        return found->pw_name;
    for (const char* variable : {"LOGNAME", "USER"})
        if (const char* value = std::getenv(variable))
            return value;
    return {};
}

} // namespace mirovane
