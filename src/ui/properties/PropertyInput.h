#pragma once

#include "model/properties/PropertiesForm.h"

#include <QAbstractButton>
#include <QLabel>
#include <QToolButton>
#include <QWidget>

#include <string>

namespace mirovane {

/// What is below a field.
struct FieldNote {
    QString news; ///< what somebody else changed meanwhile: not to be overlooked
    QString text; ///< in grey: which rule of Live Stat writes the field and what the rule found last
};

/// One text field of a Properties dialog: its input, the padlock that keeps Live Stat away from it, and the
/// note below. Shows what the form holds and enters what is typed there. Main thread; the form outlives it.
class CPropertyInput : public QWidget {
    Q_OBJECT

public:
    enum class Kind { Line, Lines };

    /// `name` is the field's name in the record, `label` what people call it.
    CPropertyInput(CPropertiesForm& form, const char* name, const QString& label, Kind kind, QWidget* parent);

    const std::string& field() const { return field_; }

    /// Brings everything up to date with the form; what is being typed stays.
    void refresh(const FieldNote& note);

    /// Where the keyboard goes: for labels and the order of the fields.
    QWidget& input() { return *input_; }

Q_SIGNALS:
    /// The form has another value.
    void edited();

    /// The keyboard came here.
    void entered();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QLabel* makeNote(const char* name);
    void makeLine();
    void makeLines();
    void makePadlock(const QString& label);
    QString inputText() const;
    void setInputText(const QString& text);
    void selectHint();
    void takeTyped();
    void turnPadlock();
    void showPadlock();
    void showNote(const FieldNote& note);
    void elideNotes();

    CPropertiesForm& form_;
    std::string field_;
    Kind kind_;
    QWidget* input_ = nullptr;
    QToolButton* padlock_ = nullptr;
    QLabel* news_;
    QLabel* note_;
    FieldNote shown_;
    bool showing_ = false;
};

} // namespace mirovane
