#include "ui/floor/map/BitmapFile.h"

#include <QFile>
#include <QtEndian>

#include <cstdint>
#include <cstdlib>

namespace mirovane {

namespace {

constexpr qsizetype headerBytes = 38;
constexpr qsizetype sizeEnd = 26;
constexpr quint32 newestHeaders = 40; ///< bytes of the oldest header that has all of the fields read here

/// A header may state any size; with this one the sum still fits.
constexpr qint64 moreThanAnyFile = qint64{1} << 62;

template <typename T>
T field(const QByteArray& head, qsizetype offset) {
    return qFromLittleEndian<T>(head.constData() + offset);
}

qint64 statedBytesOf(const QByteArray& head, QSize size) {
    if (head.size() < headerBytes || field<quint32>(head, 14) < newestHeaders)
        return 0;
    const auto depth = field<quint16>(head, 28);
    const auto compression = field<quint32>(head, 30);
    const bool plain = compression == 0 || compression == 3;
    if (!plain)
        return qint64{field<quint32>(head, 10)} + field<quint32>(head, 34);
    const qint64 line = (qint64{size.width()} * depth + 31) / 32 * 4;
    const qint64 lines = qMax(size.height(), 1);
    return field<quint32>(head, 10) + qMin(line, moreThanAnyFile / lines) * lines;
}

} // namespace

BitmapHeader readBitmapHeader(const QString& path) {
    QFile file(path);
    QByteArray head;
    if (file.open(QIODevice::ReadOnly))
        head = file.read(headerBytes);
    if (head.size() < sizeEnd || !head.startsWith("BM"))
        return {};
    const auto height = field<qint32>(head, 22);
    const QSize size(field<qint32>(head, 18), height == INT32_MIN ? 0 : std::abs(height));
    return {size, size.width() > 0 ? statedBytesOf(head, size) : 0};
}

bool isCutShort(const QString& path) {
    const BitmapHeader header = readBitmapHeader(path);
    return header.size.isValid() && QFile(path).size() < header.statedBytes;
}

} // namespace mirovane
