#pragma once

#include "ui/dialogs/PhotoSettings.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>

namespace mirovane {

/// "User Photo Settings": the folder of the users' photos and their size. Stores nothing itself.
class CPhotoSettingsDialog final : public QDialog {
    Q_OBJECT

public:
    explicit CPhotoSettingsDialog(const PhotoSettings& settings, QWidget* parent = nullptr);

    /// A folder that nobody touched keeps its bytes.
    PhotoSettings settings() const;

private:
    QLayout* makeFolder();
    QLayout* makeScale();
    void browse();
    void showWhetherItIsThere();

    PhotoSettings given_;
    QString shownFolder_;
    QLineEdit* folder_;
    QLabel* note_;
    QSpinBox* scale_;
};

} // namespace mirovane
