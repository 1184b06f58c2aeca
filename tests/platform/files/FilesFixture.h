#pragma once

#include "platform/files/PosixFiles.h"
#include "tests/platform/files/FaultyCalls.h"
#include "tests/support/TestFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/stat.h>

namespace mirovane::test {

constexpr std::chrono::milliseconds patience{200};

inline struct stat statusOf(const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status;
}

inline std::size_t filesIn(const std::string& folder) {
    using std::filesystem::directory_iterator;
    return static_cast<std::size_t>(std::distance(directory_iterator(folder), directory_iterator()));
}

inline std::optional<FileError> save(Files& files, const std::string& path, std::string_view content) {
    auto locked = files.lock(path, FileAccess::Write, patience);
    if (!locked)
        return locked.error();
    const auto replaced = locked.value()->replace(content);
    return replaced ? std::nullopt : std::optional<FileError>(replaced.error());
}

/// A datafile in a folder of its own, saved through calls that can fail.
class FilesFixture : public testing::Test {
protected:
    TestFolder folder;
    TestFolder backup;
    FaultyCalls calls;
    CPosixFiles files{calls, backup.path() + "/deep/er"};
    const std::string path = folder.file("floor.mv");
    const std::string before = std::string(3000, 'o');
    const std::string after = std::string(5000, 'n');
};

} // namespace mirovane::test
