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
    QTimer::singleShot(
        0, qApp,
        [key] {
            if (QWidget* box = QApplication::activeModalWidget())
                QTest::keyClick(box, key);
        });
}

TEST(WidgetDialogsTest, NeitherEnterNorEscapeSaysYes) {
    CWidgetDialogs dialogs(QStringLiteral("1"), {});
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        answerWith(key);
        EXPECT_FALSE(dialogs.ask(
            {Question::Kind::ReplaceFile, "floor.mv already exists.\n\nDo you want to replace it?"}));
    }
}

TEST(WidgetDialogsTest, TheStationRestsWhileAQuestionIsOpen) {
    std::vector<bool> told;
    CWidgetDialogs dialogs(QStringLiteral("1"), [&told](bool open) { told.push_back(open); });
    answerWith(Qt::Key_Escape);
    dialogs.ask({Question::Kind::ResetCriteria, "Really?"});
    EXPECT_EQ(told, (std::vector{true, false}));
}

} // namespace
} // namespace mirovane
