#pragma once

#include <QLineEdit>

namespace mirovane {

/// A text box whose text counts once the user leaves it: for another input, for another window, or with
/// Return. Escape takes back what was typed since.
class CLeaveBox : public QLineEdit {
    Q_OBJECT

public:
    explicit CLeaveBox(QWidget* parent = nullptr);

    /// What is stored now. Shown at once, but never over text that is being typed.
    void setStored(const QString& text);

    /// It holds text that was not stored yet.
    bool typing() const { return text() != stored_; }

    /// As if the user had left it.
    void commit();

    /// As if nothing had been typed.
    void revert() { setText(stored_); }

Q_SIGNALS:
    void entered();
    void leftChanged(const QString& text);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QString stored_;
};

} // namespace mirovane
