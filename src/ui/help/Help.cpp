#include "ui/help/Help.h"

#include "ui/help/HelpPages.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWhatsThis>
#include <QWhatsThisClickedEvent>
#include <QWidget>

namespace mirovane {

CHelp::CHelp(QObject* parent) : QObject(parent) {
    qApp->installEventFilter(this);
}

void CHelp::pointAtSomething() {
    QWhatsThis::enterWhatsThisMode();
}

bool CHelp::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::QueryWhatsThis: // the pointer says that there is help on everything
        event->accept();
        return true;
    case QEvent::WhatsThis:
        event->accept();
        QWhatsThis::leaveWhatsThisMode();
        Q_EMIT pageWanted(helpPageOf(watched));
        return true;
    case QEvent::WhatsThisClicked: // a menu entry's line, with the page as its link
        Q_EMIT pageWanted(static_cast<QWhatsThisClickedEvent*>(event)->href());
        return true;
    case QEvent::KeyPress:
        return keyPressed(watched, static_cast<const QKeyEvent&>(*event));
    default:
        return false;
    }
}

/// Where a menu has these keys they never come here as a key press.
bool CHelp::keyPressed(QObject* watched, const QKeyEvent& key) {
    if (key.key() != Qt::Key_F1 || !watched->isWidgetType())
        return false;
    if (key.modifiers() == Qt::ShiftModifier)
        pointAtSomething();
    else if (key.modifiers() == Qt::NoModifier)
        Q_EMIT pageWanted(helpPageOf(watched));
    else
        return false;
    return true;
}

} // namespace mirovane
