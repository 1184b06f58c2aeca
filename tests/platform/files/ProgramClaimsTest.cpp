#include "platform/files/ProgramClaims.h"

#include "tests/support/TestFolder.h"

#include <gtest/gtest.h>
#include <memory>

namespace mirovane {

namespace {

class ProgramClaimsTest : public testing::Test {
protected:
    std::unique_ptr<CProgramClaims> program() {
        auto claims = std::make_unique<CProgramClaims>(calls_, folder_.file("run"));
        claims->setDatafile("/srv/floor.mv");
        return claims;
    }

private:
    test::TestFolder folder_;
    CFileCalls calls_;
};

TEST_F(ProgramClaimsTest, GoFromProgramToProgramAndEndWithThem) {
    const auto window = program();
    auto service = program();
    EXPECT_FALSE(window->elsewhere("livestat"));
    ASSERT_TRUE(service->take("livestat"));
    EXPECT_TRUE(window->elsewhere("livestat"));
    EXPECT_FALSE(service->elsewhere("livestat"));
    EXPECT_FALSE(window->elsewhere("livediscover"));

    ASSERT_TRUE(window->take("livestat"));
    EXPECT_TRUE(service->elsewhere("livestat"));
    window->letGo("livestat"); // its save failed, say
    EXPECT_FALSE(service->elsewhere("livestat"));
    EXPECT_TRUE(window->elsewhere("livestat"));

    service.reset(); // killed
    EXPECT_FALSE(window->elsewhere("livestat"));
}

TEST_F(ProgramClaimsTest, MoveToTheNextDatafile) {
    const auto window = program();
    const auto service = program();
    ASSERT_TRUE(window->take("livestat"));
    window->setDatafile("/srv/copy.mv");
    EXPECT_FALSE(service->elsewhere("livestat"));
    service->setDatafile("/srv/copy.mv");
    EXPECT_TRUE(service->elsewhere("livestat"));
}

} // namespace

} // namespace mirovane
