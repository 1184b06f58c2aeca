#include "ui/frame/WidgetDialogs.h"

#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace mirovane {
namespace {

/// Presses a key in the box that comes up next.
void answerWith(Qt::Key key) {
    QTimer::singleShot(0, qApp, [key] {
        if (QWidget* box = QApplication::activeModalWidget())
            QTest::keyClick(box, key);
    });
}

TEST(WidgetDialogs, neitherEnterNorEscapeSaysYes) {
    WidgetDialogs dialogs(QStringLiteral("1"), {});
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        answerWith(key);
        EXPECT_FALSE(dialogs.ask("floor.mv already exists.\n\nDo you want to replace it?"));
    }
}

TEST(WidgetDialogs, theStationRestsWhileAQuestionIsOpen) {
    std::vector<bool> told;
    WidgetDialogs dialogs(QStringLiteral("1"), [&told](bool open) { told.push_back(open); });
    answerWith(Qt::Key_Escape);
    dialogs.ask("Really?");
    EXPECT_EQ(told, (std::vector{true, false}));
}

} // namespace
} // namespace mirovane
