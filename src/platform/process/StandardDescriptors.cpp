#include "platform/process/StandardDescriptors.h"

#include <fcntl.h>
#include <unistd.h>

namespace mirovane {

void fillStandardDescriptors() {
    int filled = STDIN_FILENO;
    while (filled >= 0 && filled <= STDERR_FILENO) {
        filled = ::open("/dev/null", O_RDONLY); // takes the lowest free number
        if (filled < 0)
            filled = ::open("/", O_RDONLY | O_DIRECTORY); // a bare chroot has no devices
    }
    if (filled >= 0)
        ::close(filled);
}

} // namespace mirovane
