#pragma once

#include "model/find/FindSettings.h"

#include <QCheckBox>
#include <QDialog>
#include <QGroupBox>
#include <QLineEdit>

#include <array>

namespace mirovane {

/// "Find": what to look for, and in which fields. Shows the settings of the last search with their text
/// selected, so that the next one can be typed at once.
class CFindDialog : public QDialog {
    Q_OBJECT

public:
    CFindDialog(const FindSettings& settings, QWidget* parent);

    /// As the user left them.
    FindSettings settings() const;

private:
    QGroupBox* makeOptions(const FindSettings& settings);
    QGroupBox* makeFields(const FindSettings& settings);
    void enableText();

    QLineEdit* text_;
    QCheckBox* reminder_;
    QCheckBox* reminderDue_;
    QCheckBox* wholeWord_;
    QCheckBox* matchCase_;
    QCheckBox* includeMisc_;
    QGroupBox* include_;
    std::array<QCheckBox*, findFieldCount> fields_{};
};

} // namespace mirovane
