#include "ui/widgets/PickList.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QFocusEvent>
#include <QKeyEvent>

namespace mirovane {

namespace {

bool chooses(const QKeyEvent& event) {
    switch (event.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
        return true;
    default:
        return !event.text().trimmed().isEmpty() && event.text().front().isPrint();
    }
}

} // namespace

CPickList::CPickList(QWidget* parent) : QComboBox(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setMaxVisibleItems(20);
}

void CPickList::focusInEvent(QFocusEvent* event) {
    QComboBox::focusInEvent(event);
    if (event->reason() != Qt::PopupFocusReason)
        Q_EMIT entered();
}

void CPickList::keyPressEvent(QKeyEvent* event) {
    const bool commands = event->modifiers() & (Qt::ControlModifier | Qt::AltModifier);
    if (commands || isEditable() || !chooses(*event)) {
        QComboBox::keyPressEvent(event);
        return;
    }
    showPopup();
    if (!event->text().trimmed().isEmpty())
        QCoreApplication::sendEvent(view(), event);
    event->accept();
}

void CPickList::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace mirovane
