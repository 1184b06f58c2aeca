#include "ui/widgets/LeaveBox.h"

#include <QFocusEvent>
#include <QKeyEvent>

#include <limits>

namespace mirovane {

/// A stored text that the box cuts would differ from what it shows, and the cut one be stored unasked.
CLeaveBox::CLeaveBox(QWidget* parent) : QLineEdit(parent) {
    setMaxLength(std::numeric_limits<int>::max());
}

void CLeaveBox::setStored(const QString& text) {
    const bool keep = typing();
    stored_ = text;
    if (!keep && this->text() != text) {
        setText(text);
        setCursorPosition(0);
    }
}

void CLeaveBox::commit() {
    if (!typing())
        return;
    stored_ = text();
    Q_EMIT leftChanged(stored_);
}

void CLeaveBox::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    Q_EMIT entered();
}

/// The box's own context menu takes the focus, too, and gives it back.
void CLeaveBox::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason)
        commit();
}

void CLeaveBox::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        commit();
        event->accept(); // not for the window's buttons
    } else if (event->key() == Qt::Key_Escape && typing()) {
        revert();
        event->accept();
    } else {
        QLineEdit::keyPressEvent(event);
    }
}

} // namespace mirovane
