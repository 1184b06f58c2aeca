#include "tests/support/Paths.h"

namespace mirovane::test {

std::string sourceFile(std::string_view path) {
    return std::string(MIROVANE_SOURCE_DIR "/").append(path);
}

std::string builtProgram(std::string_view name) {
    return std::string(MIROVANE_BINARY_DIR "/bin/").append(name);
}

} // namespace mirovane::test
