#include "livestat/steps/PatternCheck.h"

#include <gtest/gtest.h>

namespace mirovane {
namespace {

TEST(PatternCheckTest, TellsAboutThePatternNotAboutTheDevice) {
    for (const char* good : {"", "$mvN", "^$mvI,", "($mvU)+", R"(\D\S)", "[a-z]{2,3}"})
        EXPECT_EQ(patternProblem(good), "") << good;
    EXPECT_NE(patternProblem("ab(").find("(at character 3)"), std::string::npos) << patternProblem("ab(");
    EXPECT_NE(patternProblem("$mvN["), "");
    EXPECT_EQ(patternProblem("$mvN[").find("at character"), std::string::npos);
}

} // namespace
} // namespace mirovane
