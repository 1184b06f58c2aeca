#include "ui/dialogs/ExportDialog.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace mirovane {
namespace {

class ExportDialogTest : public testing::Test {
protected:
    ExportDialogTest() {
        CHardware device;
        device.Type = DeviceType::Printer;
        device.Name = "prn";
        device.Comment = "a\r\nb";
        request.datafile = folder.filePath(QStringLiteral("floor.mv")).toStdString();
        request.firstRows = {device};
        request.rowCount = 1;
    }

    CExportDialog& open() {
        dialog.emplace(request, [this](QWidget&, const QString& start) {
            browsedFrom = start;
            return chosen;
        });
        return *dialog;
    }
    template <typename T>
    T& find(const char* name) {
        T* widget = dialog->findChild<T*>(QLatin1String(name));
        EXPECT_NE(widget, nullptr) << name;
        return *widget;
    }
    QString preview() { return find<QPlainTextEdit>("exportPreview").toPlainText(); }

    QTemporaryDir folder;
    ExportRequest request;
    std::optional<CExportDialog> dialog;
    std::optional<QString> chosen;
    QString browsedFrom;
};

TEST_F(ExportDialogTest, WhatNobodyTouchedComesBackByteForByte) {
    request.settings = {"caf\xE9.txt", false, "\xA7", true, false, true, true};
    EXPECT_EQ(open().settings(), request.settings);
    request.settings = {};
    EXPECT_EQ(open().settings(), request.settings);
}

TEST_F(ExportDialogTest, TheControlsAreTheSettings) {
    open();
    QTest::keyClicks(&find<QLineEdit>("exportFilename"), QStringLiteral("list.txt"));
    EXPECT_FALSE(find<QLineEdit>("exportCustomText").isEnabled());
    find<QRadioButton>("exportCustom").click();
    QTest::keyClicks(&find<QLineEdit>("exportCustomText"), QStringLiteral(";"));
    for (const char* name : {"exportQuoteAll", "exportQuoteComment", "exportIncludeHeader", "exportAuto"})
        find<QCheckBox>(name).click();
    find<QPushButton>("exportOk").click();
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(dialog->settings(), (ExportSettings{"list.txt", false, ";", true, true, true, true}));
    QTest::keyClick(&*dialog, Qt::Key_Escape);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
}

TEST_F(ExportDialogTest, ThePreviewIsWhatTheFileWillHold) {
    open();
    EXPECT_TRUE(preview().contains(QStringLiteral("Printer \u2192 prn \u2192  \u2192 ")));
    EXPECT_TRUE(preview().contains(QStringLiteral("a  b")));
    find<QRadioButton>("exportCustom").click();
    QTest::keyClicks(&find<QLineEdit>("exportCustomText"), QStringLiteral(","));
    find<QCheckBox>("exportIncludeHeader").click();
    find<QCheckBox>("exportQuoteComment").click();
    EXPECT_TRUE(preview().startsWith(QStringLiteral("Modified,LS,Pri,")));
    EXPECT_TRUE(preview().contains(QStringLiteral(",Printer,prn,,,,,\"a  b\",,,,")));
    EXPECT_EQ(preview().count(u'\n'), 1);
}

TEST_F(ExportDialogTest, ARelativeNameShowsWhereItLeads) {
    open();
    const QString target = folder.filePath(QStringLiteral("list.txt"));
    QTest::keyClicks(&find<QLineEdit>("exportFilename"), QStringLiteral("list.txt"));
    EXPECT_EQ(find<QLabel>("exportTarget").text(), QStringLiteral("Creates ") + target);
    chosen = folder.filePath(QStringLiteral("other.txt"));
    find<QPushButton>("exportBrowse").click();
    EXPECT_EQ(browsedFrom, target);
    EXPECT_EQ(dialog->settings().ExportFilename, chosen->toStdString());
    chosen.reset();
    find<QPushButton>("exportBrowse").click();
    EXPECT_EQ(find<QLineEdit>("exportFilename").text(), folder.filePath(QStringLiteral("other.txt")));
}

TEST_F(ExportDialogTest, TextsStayWithinTheirLimitInBytes) {
    open();
    QLineEdit& name = find<QLineEdit>("exportFilename");
    name.setText(QString(254, u'x'));
    name.insert(QStringLiteral("\u00E4"));
    EXPECT_EQ(dialog->settings().ExportFilename, std::string(254, 'x')) << "two bytes do not fit any more";
    QTest::keyClicks(&name, QStringLiteral("yz"));
    EXPECT_EQ(dialog->settings().ExportFilename, std::string(254, 'x') + "y");
}

TEST_F(ExportDialogTest, TheLastFailureIsToldUntilItIsOver) {
    request.lastFailure = "cannot write /srv/x: No space left on device";
    open();
    EXPECT_TRUE(find<QLabel>("exportFailure").text().endsWith(QStringLiteral("No space left on device")));
    EXPECT_TRUE(find<QLabel>("exportFailure").isVisibleTo(&*dialog));
    request.lastFailure.clear();
    open();
    EXPECT_FALSE(find<QLabel>("exportFailure").isVisibleTo(&*dialog));
}

} // namespace
} // namespace mirovane
