#pragma once

#include <QDialog>

#include <string>

class QLineEdit;

namespace mirovane {

/// "Insert text to Command": asks for the text that replaces $mvW before an application runs. Accepted means
/// Execute.
class CInsertTextDialog : public QDialog {
    Q_OBJECT

public:
    /// `command` is the application's, unexpanded.
    explicit CInsertTextDialog(const std::string& command, QWidget* parent = nullptr);

    /// What was typed, as it goes into the command.
    std::string text() const;

private:
    QLineEdit* text_;
};

} // namespace mirovane
