#include "ui/discovered/DiscoveredDrag.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QIODevice>

namespace mirovane {

namespace {

QString format() {
    return QStringLiteral("application/x-mirovane-devices-%1").arg(QCoreApplication::applicationPid());
}

} // namespace

std::unique_ptr<QMimeData> draggedDevices(const std::vector<DeviceKey>& devices) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    for (const DeviceKey& device : devices)
        stream << device.recID << static_cast<quint64>(device.twin);
    auto data = std::make_unique<QMimeData>();
    data->setData(format(), bytes);
    return data;
}

std::vector<DeviceKey> draggedDevices(const QMimeData* data) {
    std::vector<DeviceKey> devices;
    if (!data || !data->hasFormat(format()))
        return devices;
    QDataStream stream(data->data(format()));
    while (!stream.atEnd()) {
        qint32 recID = 0;
        quint64 twin = 0;
        stream >> recID >> twin;
        if (stream.status() == QDataStream::Ok)
            devices.push_back({recID, static_cast<decltype(DeviceKey::twin)>(twin)});
    }
    return devices;
}

} // namespace mirovane
