#pragma once

#include "ui/properties/PropertiesDialog.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QTimeEdit>

#include <array>

namespace mirovane {

class CChoiceInput;

/// "Properties": one or several devices of every kind but jacks and location markers.
class CDevicePropertiesDialog final : public CPropertiesDialog {
    Q_OBJECT

public:
    CDevicePropertiesDialog(CStation& station, PropertiesSet set, const QDateTime& now, QWidget* parent);

    PropertiesEdit edit() const override;

private:
    QLayout* makeIdentity();
    QLayout* makeTexts();
    QLayout* makeReminder();
    QCheckBox* addBox(const char* field, const QString& text);
    void showForm() override;
    FieldNote noteOf(const std::string& field) const override;
    void showBox(QCheckBox& box);
    void showReminder();
    bool eventFilter(QObject* watched, QEvent* event) override;
    void enterDate();
    QDateTime pickedDate() const;

    QDateTime now_;
    CChoiceInput* type_ = nullptr;
    std::array<QCheckBox*, 5> boxes_{};
    std::size_t boxCount_ = 0;
    QCheckBox* reminder_ = nullptr;
    QDateEdit* date_ = nullptr;
    QTimeEdit* time_ = nullptr;
    CPropertyInput* toDo_ = nullptr;
};

} // namespace mirovane
