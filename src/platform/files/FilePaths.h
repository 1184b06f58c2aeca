#pragma once

#include <string>
#include <string_view>

namespace mirovane {

/// "/srv/site" for "/srv/site/floor.mv", "." for "floor.mv".
std::string folderOf(const std::string& path);
std::string nameOf(const std::string& path);

/// Both paths lead to one file, perhaps through links. Also true for one path where there is no file yet.
/// False where that cannot be found out within half a second.
bool isSameFile(const std::string& a, const std::string& b);

/// There is a folder or a file of any kind. False also where that cannot be found out within half a second.
bool existsOnDisk(const std::string& path);

/// Somebody may write the file, and this user is among them. True also where that cannot be found out within
/// half a second: a save will tell.
bool mayBeWritten(const std::string& path);

/// Without symbolic links; the path itself where that cannot be found out within half a second.
std::string pathWithoutLinks(const std::string& path);

/// There is certainly nothing. False also where that cannot be found out within half a second.
bool isMissing(const std::string& path);

/// The path from the root on, without "." and "..": settings that belong to a datafile go by its path, which
/// must be the same however the user spelled it. An empty path stays as it is, and so does every path when
/// the current folder is gone.
std::string absolutePath(const std::string& path);

/// Sixteen hexadecimal digits that tell texts apart in file names.
std::string fingerprintOf(std::string_view text);

} // namespace mirovane
