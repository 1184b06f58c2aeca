#pragma once

#include <string>
#include <string_view>

namespace mirovane {

/// "/srv/site" for "/srv/site/floor.mv", "." for "floor.mv".
std::string folderOf(const std::string& path);
std::string nameOf(const std::string& path);

/// Both paths lead to one file, be it by way of links; also for one path where no file stands yet.
bool isSameFile(const std::string& a, const std::string& b);

/// A folder or a file of any kind; false also where that cannot be found out.
bool existsOnDisk(const std::string& path);

/// Counted from the current folder where it is relative, and without "." and "..": settings that belong to a
/// datafile go by its path, which must be the same however the user spelled it. As it is where the current
/// folder is gone, and when it is empty.
std::string absolutePath(const std::string& path);

/// Sixteen hexadecimal digits that tell texts apart in file names.
std::string fingerprintOf(std::string_view text);

} // namespace mirovane
