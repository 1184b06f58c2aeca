#include "ui/floor/map/BitmapFile.h"

#include "ui/floor/map/LargeImage.h"

#include <QCoreApplication>
#include <QFile>
#include <QtEndian>

#include <cstdint>
#include <cstdlib>
#include <cstring>

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

/// The pixels of one line of the file, written as the image holds them.
void copyLine(const QByteArray& line, int depth, QImage& image, int y) {
    uchar* out = image.scanLine(y);
    if (depth <= 8) {
        std::memcpy(out, line.constData(), static_cast<std::size_t>((image.width() * depth + 7) / 8));
        return;
    }
    const auto* in = reinterpret_cast<const uchar*>(line.constData());
    auto* pixels = reinterpret_cast<QRgb*>(out);
    for (int x = 0; x < image.width(); ++x, in += depth / 8)
        pixels[x] = qRgb(in[2], in[1], in[0]);
}

QList<QRgb> colourTable(QFile& file, quint32 headerSize, int depth, quint32 stated) {
    const int most = 1 << depth;
    const int count =
        stated == 0 ? most : static_cast<int>(qMin<quint32>(stated, static_cast<quint32>(most)));
    file.seek(14 + qint64{headerSize});
    const QByteArray bytes = file.read(qint64{4} * count);
    QList<QRgb> colours(most, qRgb(0, 0, 0));
    for (int i = 0; i < bytes.size() / 4; ++i)
        colours[i] = qRgb(static_cast<uchar>(bytes[4 * i + 2]), static_cast<uchar>(bytes[4 * i + 1]),
                          static_cast<uchar>(bytes[4 * i]));
    return colours;
}

} // namespace

QImage readLargeBitmap(const QString& path, QString& problem) {
    QFile file(path);
    const QSize size = readBitmapHeader(path).size;
    const QByteArray head = file.open(QIODevice::ReadOnly) ? file.read(54) : QByteArray();
    const int depth = head.size() < 54 ? 0 : field<quint16>(head, 28);
    const bool plain = head.size() == 54 && field<quint32>(head, 30) == 0;
    if (!plain || size.isEmpty() || (depth != 1 && depth != 8 && depth != 24 && depth != 32)) {
        problem = QCoreApplication::translate(
            "CFloorMap",
            "a bitmap of this size is read when it is not compressed and has 1, 8, 24 or 32 bits a pixel");
        return {};
    }
    const QImage::Format format = depth == 1   ? QImage::Format_Mono
                                  : depth == 8 ? QImage::Format_Indexed8
                                               : QImage::Format_RGB32;
    QImage image = makeLargeImage(size, format, &problem);
    if (image.isNull())
        return {};
    if (depth <= 8)
        image.setColorTable(colourTable(file, field<quint32>(head, 14), depth, field<quint32>(head, 46)));
    const bool upwards = field<qint32>(head, 22) > 0;
    const qint64 lineBytes = (qint64{size.width()} * depth + 31) / 32 * 4;
    file.seek(field<quint32>(head, 10));
    for (int i = 0; i < size.height(); ++i) {
        const QByteArray line = file.read(lineBytes);
        if (line.size() < lineBytes) {
            problem = file.errorString();
            return {};
        }
        copyLine(line, depth, image, upwards ? size.height() - 1 - i : i);
    }
    return image;
}

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
