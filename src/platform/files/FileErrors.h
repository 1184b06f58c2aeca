#pragma once

#include "platform/files/Files.h"

#include <string>
#include <string_view>
#include <sys/stat.h>

namespace mirovane {

/// errno after `what` ("cannot write") failed on `path`, as a typed error with its sentence.
FileError fileError(std::string_view what, const std::string& path, int code);

FileIdentity identityFrom(const struct stat& status);

} // namespace mirovane
