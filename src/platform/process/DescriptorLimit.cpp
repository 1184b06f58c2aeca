#include "platform/process/DescriptorLimit.h"

#include <algorithm>
#include <sys/resource.h>

namespace mirovane {

void raiseDescriptorLimit() {
    constexpr rlim_t enough = 65536;
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= std::min(limit.rlim_max, enough))
        return;
    limit.rlim_cur = std::min(limit.rlim_max, enough);
    setrlimit(RLIMIT_NOFILE, &limit); // refused: the usual limit serves a site of usual size
}

} // namespace mirovane
