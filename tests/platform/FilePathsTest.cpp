#include "platform/FilePaths.h"

#include "tests/support/TestFolder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace mirovane {
namespace {

namespace fs = std::filesystem;

TEST(FilePathsTest, aPathIsOneHoweverItIsSpelled) {
    const test::TestFolder folder;
    fs::create_directory(folder.file("sub"));
    const std::string plain = folder.file("floor.mv");
    EXPECT_EQ(absolutePath(folder.path() + "/./sub/..//floor.mv"), plain);
    EXPECT_EQ(absolutePath("./floor.mv"), fs::current_path().string() + "/floor.mv");
    EXPECT_EQ(absolutePath(""), "");

    fs::create_directories(folder.file("far/away"));
    fs::create_directory_symlink(folder.file("far/away"), folder.file("link"));
    const std::string behindLink = folder.path() + "/link/../floor.mv";
    EXPECT_EQ(absolutePath(behindLink), behindLink) << "not the floor.mv that stands beside the link";
}

} // namespace
} // namespace mirovane
