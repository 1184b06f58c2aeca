#pragma once

#include "ui/properties/PropertiesDialog.h"
#include "ui/properties/PropertiesPrompts.h"

#include <QListWidget>

namespace mirovane {

/// "Location Marker": one or several markers, with their pictures.
class CMarkerDialog final : public CPropertiesDialog {
    Q_OBJECT

public:
    /// `prompts` outlives the dialog.
    CMarkerDialog(CStation& station, PropertiesSet set, PropertiesPrompts& prompts, QWidget* parent);

    /// "Mark Area" was pressed: the area is to be marked when the dialog is accepted.
    bool marksArea() const { return markArea_ && markArea_->isChecked(); }

private:
    QWidget* makeMarkArea();
    QWidget* makePictures();
    void showForm() override;
    void enableButtons();
    void enableMarkArea();
    void view();
    void add();
    void remove();
    void enterPictures();

    PropertiesPrompts& prompts_;
    QPushButton* markArea_ = nullptr;
    QListWidget* pictures_ = nullptr;
    QLabel* note_ = nullptr;
    QPushButton* view_ = nullptr;
    QPushButton* remove_ = nullptr;
};

} // namespace mirovane
