#include "ui/floor/FloorToolTip.h"

#include "model/records/Text.h"
#include "ui/floor/FloorInput.h"
#include "ui/floor/MirovaneView.h"

#include <QMouseEvent>
#include <QStringList>
#include <QTextDocument>
#include <QTimerEvent>
#include <QToolTip>

#include <string_view>

namespace mirovane {

namespace {

constexpr int restMilliseconds = 500;
constexpr qsizetype longestValue = 200;

QString valueText(std::string_view bytes) {
    QString text = QString::fromStdString(displayText(bytes)).simplified();
    if (text.size() > longestValue)
        text = text.left(longestValue) + QChar(0x2026);
    return text;
}

} // namespace

QString toolTipText(const CHardware& device) {
    QStringList lines;
    const auto add = [&lines](const QString& name, std::string_view value) {
        if (const QString text = valueText(value); !text.isEmpty())
            lines << name + QStringLiteral(": ") + text;
    };
    add(CFloorToolTip::tr("Type"), typeName(device.Type));
    add(CFloorToolTip::tr("Computer name"), device.Name);
    add(CFloorToolTip::tr("IP Address"), device.IPAddress);
    add(CFloorToolTip::tr("Username"), device.Username);
    add(CFloorToolTip::tr("MAC Address"), device.MACAddress);
    if (device.Type != DeviceType::LocationMarker)
        add(CFloorToolTip::tr("Jack"), device.ToJack);
    add(CFloorToolTip::tr("Comment"), device.Comment);
    add(CFloorToolTip::tr("/ Text"), device.SlashText);
    add(CFloorToolTip::tr("\\ Text"), device.BackslashText);
    add(CFloorToolTip::tr("- Text"), device.HorzText);
    if (device.Type != DeviceType::LocationMarker)
        add(CFloorToolTip::tr("| Text"), device.VertText);
    if (device.ReminderOn == 1)
        add(CFloorToolTip::tr("To do"), device.ToDo);
    return lines.join(u'\n');
}

CFloorToolTip::CFloorToolTip(CMirovaneView& view) : QObject(&view), view_(view) {
    view_.viewport()->installEventFilter(this);
}

bool CFloorToolTip::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseMove: {
        const auto& move = static_cast<const QMouseEvent&>(*event);
        pointer_ = move.position().toPoint();
        if (move.buttons() == Qt::NoButton)
            rest_.start(restMilliseconds, this);
        else
            rest_.stop();
        break;
    }
    case QEvent::Leave:
    case QEvent::MouseButtonPress:
    case QEvent::Wheel:
    case QEvent::KeyPress:
        rest_.stop();
        QToolTip::hideText();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void CFloorToolTip::timerEvent(QTimerEvent* event) {
    if (event->timerId() != rest_.timerId()) {
        QObject::timerEvent(event);
        return;
    }
    rest_.stop();
    show();
}

/// What a device is called comes from the network: it is shown as text, whatever it looks like.
void CFloorToolTip::show() {
    const CHardware* device = view_.input().deviceUnder(pointer_);
    if (!device)
        return;
    const FloorView& view = view_.state().view;
    const QRect icon(view.toFrame(device->Position),
                     scaled(view_.drawing().icons().sizes().of(device->Type), view.zoom.ZoomDevicesPercent));
    QToolTip::showText(view_.viewport()->mapToGlobal(pointer_),
                       Qt::convertFromPlainText(toolTipText(*device), Qt::WhiteSpaceNormal), view_.viewport(),
                       icon);
}

} // namespace mirovane
