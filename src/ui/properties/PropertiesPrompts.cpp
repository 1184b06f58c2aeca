#include "ui/properties/PropertiesPrompts.h"

#include <QFileDialog>
#include <QImageReader>
#include <QMessageBox>
#include <QPushButton>

namespace mirovane {

namespace {

const QString programName = QStringLiteral("Mirovane");

/// "Pictures (*.bmp *.png ...)": what this computer can show.
QString pictureFilter() {
    QStringList patterns;
    for (const QByteArray& format : QImageReader::supportedImageFormats())
        patterns << QStringLiteral("*.") + QString::fromLatin1(format);
    return QObject::tr("Pictures (%1)").arg(patterns.join(u' '));
}

} // namespace

/// Plain text: a device's name comes from the network.
DuplicateAnswer CWidgetPropertiesPrompts::askDuplicate(QWidget& parent, const QString& question,
                                                       const QString& other) {
    QMessageBox box(QMessageBox::Question, programName, question, QMessageBox::Yes | QMessageBox::No,
                    &parent);
    box.setObjectName(QStringLiteral("duplicateQuestion"));
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(other);
    QPushButton* show = box.addButton(QObject::tr("&Show It"), QMessageBox::ActionRole);
    show->setToolTip(QObject::tr("Show the other device and go on editing this one"));
    box.setDefaultButton(QMessageBox::No);
    box.setEscapeButton(QMessageBox::No);
    const int answer = box.exec();
    if (box.clickedButton() == show)
        return DuplicateAnswer::ShowOther;
    return answer == QMessageBox::Yes ? DuplicateAnswer::Apply : DuplicateAnswer::Cancel;
}

QStringList CWidgetPropertiesPrompts::choosePictures(QWidget& parent, const QString& folder) {
    return QFileDialog::getOpenFileNames(&parent, QObject::tr("Add Pictures"), folder,
                                         pictureFilter() + QStringLiteral(";;") +
                                             QObject::tr("All Files (*)"));
}

void CWidgetPropertiesPrompts::fail(QWidget& parent, const QString& text) {
    QMessageBox box(QMessageBox::Critical, programName, text, QMessageBox::Ok, &parent);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

} // namespace mirovane
