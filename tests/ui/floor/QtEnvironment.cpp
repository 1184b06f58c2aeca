#include <QApplication>

#include <gtest/gtest.h>
#include <memory>

namespace {

/// Fonts and pixmaps need an application object; one serves all tests of the program.
class QtEnvironment final : public testing::Environment {
public:
    void SetUp() override {
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        application_ = std::make_unique<QApplication>(argc_, argv_);
    }
    void TearDown() override { application_.reset(); }

private:
    int argc_ = 1;
    char name_[16] = "ui_floor_test";
    char* argv_[2] = {name_, nullptr};
    std::unique_ptr<QApplication> application_;
};

const testing::Environment* const environment = testing::AddGlobalTestEnvironment(new QtEnvironment);

} // namespace
