#pragma once

#include "station/Station.h"

#include <QDialog>
#include <QTimer>

#include <functional>
#include <string>

class QLabel;
class QLineEdit;
class QPushButton;

namespace mirovane {

class CApplicationRows;

/// "External Applications": the entries of the datafile, what a command may hold, and the terminal that
/// this user's programs open in. Not modal: a command can be tried on the floor while its line is still in
/// sight. The datafile is saved a moment after each change, and when the window closes. The station outlives
/// the window. Main thread.
class CApplicationsWindow : public QDialog {
    Q_OBJECT

public:
    /// What the window needs of the user.
    struct Asking {
        std::function<void(const FileError&)> saveFailed; ///< the save at the window's end; the log was told
        std::function<bool(const std::string& name)> mayDelete;
    };

    CApplicationsWindow(CStation& station, CSettings& settings, Asking asking, QWidget* parent = nullptr);
    ~CApplicationsWindow() override;

    /// Shows the window, or brings it to the top.
    void present();

    /// What is being typed goes into the document, as if its box had been left.
    void store();

protected:
    void hideEvent(QHideEvent* event) override;

private:
    QWidget* makeTerminal();
    QWidget* makeButtons();
    QPushButton* makeMove(const QString& text, const char* name, int step);
    void explain(const QString& command);
    void storeTerminal();
    void saveSoon();
    void saveLater();
    std::optional<FileError> save();

    CStation& station_;
    CSettings& settings_;
    Asking asking_;
    CApplicationRows* rows_;
    QLineEdit* terminal_;
    QPushButton* add_;
    QLabel* explanation_;
    QTimer saveTimer_;
    bool unsaved_ = false;
};

/// What will happen when this command runs, in a line for people; empty for an empty command.
QString commandExplained(const std::string& command, const CHardware* device);

} // namespace mirovane
