#include "platform/files/FilePaths.h"

#include "tests/support/TestFolder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace mirovane {
namespace {

namespace fs = std::filesystem;

TEST(FilePathsTest, APathIsOneHoweverItIsSpelled) {
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

TEST(FilePathsTest, FoldersAndNamesAreTheTwoPartsOfAPath) {
    for (const auto& [path, folder, name] : {std::tuple("/srv/site/floor.mv", "/srv/site", "floor.mv"),
                                             {"floor.mv", ".", "floor.mv"},
                                             {"/floor.mv", "/", "floor.mv"}}) {
        EXPECT_EQ(folderOf(path), folder);
        EXPECT_EQ(nameOf(path), name);
    }
    const test::TestFolder folder;
    test::writeBytes(folder.file("one"), "x");
    fs::create_hard_link(folder.file("one"), folder.file("two"));
    EXPECT_TRUE(isSameFile(folder.file("one"), folder.file("two")));
    EXPECT_TRUE(isSameFile(folder.file("none"), folder.file("none")));
    EXPECT_FALSE(isSameFile(folder.file("one"), folder.file("none")));
    EXPECT_TRUE(existsOnDisk(folder.path()));
    EXPECT_FALSE(existsOnDisk(folder.file("none")));
}

} // namespace
} // namespace mirovane
