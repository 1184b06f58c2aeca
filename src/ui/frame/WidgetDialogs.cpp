#include "ui/frame/WidgetDialogs.h"

#include "model/records/Text.h"
#include "ui/applications/InsertTextDialog.h"
#include "ui/dialogs/ExportDialog.h"
#include "ui/dialogs/PhotoSettingsDialog.h"
#include "ui/floor/geometry/FloorGeometry.h"
#include "ui/floor/geometry/FontBands.h"
#include "ui/floor/geometry/ZoomSteps.h"

#include <QApplication>
#include <QCursor>
#include <QDesktopServices>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPushButton>
#include <QStringList>
#include <QUrl>

#include <cstdio>

namespace mirovane {

namespace {

const QString programName = QStringLiteral("Mirovane");

QString shown(const std::string& text) {
    return QString::fromStdString(displayText(text));
}

/// Plain text, whatever a host or a file called itself.
void prepare(QMessageBox& box, QMessageBox::Icon icon, const std::string& text) {
    box.setObjectName(QStringLiteral("messageBox"));
    box.setWindowTitle(programName);
    box.setIcon(icon);
    box.setTextFormat(Qt::PlainText);
    const QString whole = shown(text);
    const qsizetype firstGap = whole.indexOf(QStringLiteral("\n\n"));
    box.setText(whole.left(firstGap));
    if (firstGap >= 0)
        box.setInformativeText(whole.mid(firstGap + 2));
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
}

void prepare(QFileDialog& dialog, const FileChoice& choice) {
    dialog.setObjectName(QStringLiteral("fileDialog"));
    QStringList filters;
    for (const std::string& filter : choice.filters)
        filters << QString::fromStdString(filter);
    dialog.setNameFilters(filters);
    if (choice.start.empty())
        return;
    const QFileInfo start(QFile::decodeName(choice.start.c_str()));
    if (start.isDir()) {
        dialog.setDirectory(start.filePath());
        return;
    }
    dialog.setDirectory(start.absolutePath());
    dialog.selectFile(start.fileName());
}

std::optional<std::string> chosenFile(QFileDialog& dialog) {
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return QFile::encodeName(dialog.selectedFiles().constFirst()).toStdString();
}

} // namespace

/// Tells the owner of the timers once, however many boxes lie on each other.
class CWidgetDialogs::BoxOpen {
public:
    explicit BoxOpen(CWidgetDialogs& dialogs) : dialogs_(dialogs) {
        if (dialogs_.boxesOpen_++ == 0 && dialogs_.aroundBox_)
            dialogs_.aroundBox_(true);
        QGuiApplication::setOverrideCursor(Qt::ArrowCursor); // the box may interrupt a wait
    }
    ~BoxOpen() {
        QGuiApplication::restoreOverrideCursor();
        if (--dialogs_.boxesOpen_ == 0 && dialogs_.aroundBox_)
            dialogs_.aroundBox_(false);
    }
    BoxOpen(const BoxOpen&) = delete;
    BoxOpen& operator=(const BoxOpen&) = delete;

private:
    CWidgetDialogs& dialogs_;
};

CWidgetDialogs::CWidgetDialogs(QString version, std::function<void(bool)> aroundBox)
    : version_(std::move(version)), aroundBox_(std::move(aroundBox)) {}

/// A box in front of a window that nobody works in is not seen, or takes the wrong one along to the top.
QWidget* CWidgetDialogs::asking() const {
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    QWidget* active = QApplication::activeWindow();
    return active ? active : parent_.data();
}

bool CWidgetDialogs::ask(const Question& question) {
    return askYesNo(QMessageBox::Question, question.text);
}

bool CWidgetDialogs::askStop(const std::string& question) {
    return askYesNo(QMessageBox::Critical, question);
}

bool CWidgetDialogs::askYesNo(QMessageBox::Icon icon, const std::string& question) {
    if (silent_)
        return false;
    const BoxOpen open(*this);
    QMessageBox box(asking());
    prepare(box, icon, question);
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    // Yes replaces a file, loses changes or takes Live Stat from a colleague: not for a stray Enter.
    box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

void CWidgetDialogs::fail(const std::string& text) {
    if (silent_) {
        std::fprintf(stderr, "mirovane: %s\n", text.c_str());
        return;
    }
    const BoxOpen open(*this);
    QMessageBox box(asking());
    prepare(box, QMessageBox::Critical, text);
    box.exec();
}

bool CWidgetDialogs::keepWaiting(const std::string& path) {
    return silent_ || shareWait_.keepWaiting(path, asking());
}

SaveAnswer CWidgetDialogs::askToSave(const std::string& question, SaveOffer offer) {
    if (silent_)
        return SaveAnswer::Discard;
    const BoxOpen open(*this);
    QMessageBox box(asking());
    prepare(box, QMessageBox::Question, question);
    box.setStandardButtons(QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    box.setDefaultButton(QMessageBox::Save);
    box.button(QMessageBox::Save)
        ->setText(offer == SaveOffer::SaveAs ? QObject::tr("Save &As...") : QObject::tr("&Save"));
    box.button(QMessageBox::Discard)->setText(QObject::tr("&Discard"));
    const int answer = box.exec();
    if (answer == QMessageBox::Save)
        return SaveAnswer::Save;
    return answer == QMessageBox::Discard ? SaveAnswer::Discard : SaveAnswer::Cancel;
}

std::optional<std::string> CWidgetDialogs::chooseFileToOpen(const FileChoice& choice) {
    QFileDialog dialog(asking(), QString::fromStdString(choice.title));
    dialog.setFileMode(QFileDialog::ExistingFile);
    prepare(dialog, choice);
    return chosenFile(dialog);
}

std::optional<std::string> CWidgetDialogs::chooseFileToSave(const FileChoice& choice) {
    QFileDialog dialog(asking(), QString::fromStdString(choice.title));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setLabelText(QFileDialog::LookIn, QObject::tr("Save in:"));
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    prepare(dialog, choice);
    return chosenFile(dialog);
}

std::optional<ExportSettings> CWidgetDialogs::askExport(const ExportRequest& request) {
    const auto browse = [](QWidget& parent, const QString& start) -> std::optional<QString> {
        QFileDialog files(&parent, QObject::tr("Export"));
        files.setAcceptMode(QFileDialog::AcceptSave);
        files.setOption(QFileDialog::DontConfirmOverwrite); // asked when it is about to be written
        prepare(files, {QObject::tr("Export").toStdString(),
                        QFile::encodeName(start).toStdString(),
                        {QObject::tr("Text Files (*.txt *.csv)").toStdString(),
                         QObject::tr("All Files (*)").toStdString()}});
        const auto chosen = chosenFile(files);
        return chosen ? std::optional(QFile::decodeName(chosen->c_str())) : std::nullopt;
    };
    CExportDialog dialog(request, browse, asking());
    return dialog.exec() == QDialog::Accepted ? std::optional(dialog.settings()) : std::nullopt;
}

std::optional<std::string> CWidgetDialogs::insertText(const std::string& command) {
    const BoxOpen open(*this);
    CInsertTextDialog dialog(command, asking());
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.text();
}

std::optional<CustomZoom> CWidgetDialogs::askCustomZoom(const CustomZoom& start) {
    const BoxOpen open(*this);
    CCustomZoomDialog dialog(start, {smallestCommandZoom, largestZoom, largestLabelFont}, asking());
    return dialog.exec() == QDialog::Accepted ? std::optional(dialog.zoom()) : std::nullopt;
}

std::optional<PhotoSettings> CWidgetDialogs::askPhotoSettings(const PhotoSettings& settings) {
    const BoxOpen open(*this);
    CPhotoSettingsDialog dialog(settings, asking());
    return dialog.exec() == QDialog::Accepted ? std::optional(dialog.settings()) : std::nullopt;
}

bool CWidgetDialogs::openPage(const QString& path) {
    return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

bool CWidgetDialogs::choosePrinter(QPrinter& printer) {
    const BoxOpen open(*this);
    QPrintDialog dialog(&printer, asking());
    dialog.setObjectName(QStringLiteral("printDialog"));
    dialog.setOption(QAbstractPrintDialog::PrintPageRange);
    return dialog.exec() == QDialog::Accepted;
}

void CWidgetDialogs::setUpPage(QPrinter& printer) {
    const BoxOpen open(*this);
    QPageSetupDialog dialog(&printer, asking());
    dialog.setObjectName(QStringLiteral("pageSetup"));
    dialog.exec();
}

void CWidgetDialogs::previewPages(QPrinter& printer, const std::function<void(QPrinter&)>& print) {
    const BoxOpen open(*this);
    QPrintPreviewDialog dialog(&printer, asking());
    dialog.setObjectName(QStringLiteral("printPreview"));
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog, [&print](QPrinter* paper) {
        print(*paper);
        paper->setFullPage(true); // the pages have their margins; the preview would add them once more
    });
    dialog.exec();
    printer.setFullPage(false);
}

void CWidgetDialogs::about() {
    QMessageBox box(asking());
    box.setObjectName(QStringLiteral("aboutBox"));
    box.setWindowTitle(QObject::tr("About Mirovane"));
    box.setIconPixmap(parent_ ? parent_->windowIcon().pixmap(48, 48) : QPixmap());
    box.setTextFormat(Qt::PlainText);
    box.setText(QObject::tr("Mirovane %1").arg(version_));
    box.setInformativeText(QObject::tr("A floor plan of your site with every device on it, watched live.\n\n"
                                       "It works with these libraries:\n"
                                       "Qt %1 (GNU LGPL, version 3)\n"
                                       "PCRE2 (BSD licence)\n"
                                       "Net-SNMP (BSD-like licences)\n\n"
                                       "Their licences are in /usr/share/doc, in the folder of each package.")
                               .arg(QLatin1String(qVersion())));
    box.exec();
}

} // namespace mirovane
