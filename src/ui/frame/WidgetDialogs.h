#pragma once

#include "ui/frame/base/FrameDialogs.h"
#include "ui/widgets/ShareWait.h"

#include <QMessageBox>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <functional>

namespace mirovane {

/// Message boxes and file dialogs in front of the main window. While a question or a failure is shown, the
/// station's timers stand still: a tick in the box's event loop could replace the records that the question
/// is about.
class CWidgetDialogs final : public FrameDialogs {
public:
    /// `aroundBox(true)` is called before a box opens, `aroundBox(false)` after it was closed.
    CWidgetDialogs(QString version, std::function<void(bool open)> aroundBox);

    /// Boxes are in front of this window when none of the program's has the keyboard, else of that one.
    void setParent(QWidget* parent) { parent_ = parent; }

    /// The session is ending: nobody is there to answer. From now on questions are answered No (and
    /// "Discard"), and failures go to standard error.
    void silence() { silent_ = true; }

    bool ask(const Question& question) override;
    bool askStop(const std::string& question) override;
    void fail(const std::string& text) override;
    bool keepWaiting(const std::string& path) override;
    SaveAnswer askToSave(const std::string& question, SaveOffer offer) override;
    std::optional<std::string> chooseFileToOpen(const FileChoice& choice) override;
    std::optional<std::string> chooseFileToSave(const FileChoice& choice) override;
    std::optional<ExportSettings> askExport(const ExportRequest& request) override;
    std::optional<std::string> insertText(const std::string& command) override;
    std::optional<CustomZoom> askCustomZoom(const CustomZoom& start) override;
    std::optional<PhotoSettings> askPhotoSettings(const PhotoSettings& settings) override;
    bool openPage(const QString& path) override;
    bool choosePrinter(QPrinter& printer) override;
    void setUpPage(QPrinter& printer) override;
    void previewPages(QPrinter& printer, const std::function<void(QPrinter&)>& print) override;
    void about() override;

private:
    class BoxOpen;

    QWidget* asking() const;
    bool askYesNo(QMessageBox::Icon icon, const std::string& question);

    QString version_;
    std::function<void(bool)> aroundBox_;
    QPointer<QWidget> parent_;
    int boxesOpen_ = 0;
    bool silent_ = false;
    CShareWait shareWait_;
};

} // namespace mirovane
