#include "ui/floor/map/MapFile.h"

#include "ui/floor/map/BitmapFile.h"
#include "ui/floor/map/FloorMap.h"
#include "ui/floor/map/LargeImage.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QSvgRenderer>

namespace mirovane {

namespace {

constexpr qint64 mostMapPixels = 500'000'000;
constexpr qint64 largestVectorBytes = qint64{64} << 20;
constexpr int largestVectorSide = 32767;
constexpr qint64 jpegTail = 65536;

QString cannotShow(const QString& path, const QString& why) {
    return CFloorMap::tr("Floor map file %1 cannot be shown: %2").arg(path, why);
}

QString tooLarge(const QString& path, QSize size) {
    return CFloorMap::tr("Floor map file %1 is too large to be shown: it has %2 x %3 pixels, the limit is %4 "
                         "million. Save it smaller.")
        .arg(path, QString::number(size.width()), QString::number(size.height()),
             QString::number(mostMapPixels / 1000000));
}

/// The readers of both kinds take such a file and make up what it lacks.
bool endIsMissing(const QString& path, const QByteArray& format) {
    if (format != "jpeg")
        return isCutShort(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    file.seek(std::max<qint64>(0, file.size() - jpegTail));
    return !file.readAll().contains("\xFF\xD9");
}

bool isVector(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(4096);
    return head.startsWith("\x1F\x8B") ? path.endsWith(QStringLiteral(".svgz"), Qt::CaseInsensitive)
                                       : head.contains("<svg");
}

LoadedMap readVector(const QString& path) {
    LoadedMap map;
    QFile file(path);
    if (file.size() > largestVectorBytes) {
        map.problem =
            cannotShow(path, CFloorMap::tr("drawings are read up to %1 MB").arg(largestVectorBytes >> 20));
        return map;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        map.problem = cannotShow(path, file.errorString());
        return map;
    }
    const QByteArray drawing = file.readAll();
    QSvgRenderer renderer;
    if (!renderer.load(drawing))
        map.problem = cannotShow(path, CFloorMap::tr("it is not a whole SVG drawing"));
    else if (const QSize size = renderer.defaultSize();
             size.isEmpty() || std::max(size.width(), size.height()) > largestVectorSide)
        map.problem = cannotShow(path, CFloorMap::tr("the drawing says no usable size"));
    else
        map.picture = std::make_shared<const CMapPicture>(drawing, size);
    return map;
}

/// What is larger than may be in memory is read straight into a file. Only small pictures are turned as their
/// camera says, since that takes a second one.
QImage readPixels(QImageReader& reader, const QString& path, QSize size, QString& problem) {
    const bool small = imageBytes(size, reader.imageFormat()) <= largestImageInMemory;
    reader.setAutoTransform(small);
    if (small || !size.isValid()) {
        QImage image = reader.read();
        problem = image.isNull() ? reader.errorString() : QString();
        return image;
    }
    if (readBitmapHeader(path).size.isValid())
        return readLargeBitmap(path, problem);
    QImage image = makeLargeImage(size, reader.imageFormat(), &problem);
    if (!image.isNull() && !reader.read(&image)) {
        problem = reader.errorString();
        return {};
    }
    return image;
}

LoadedMap readRaster(const QString& path) {
    LoadedMap map;
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    const QSize stated = reader.size();
    const QSize size = stated.isValid() ? stated : readBitmapHeader(path).size;
    if (qint64{size.width()} * size.height() > mostMapPixels && size.isValid()) {
        map.problem = tooLarge(path, size);
        return map;
    }
    if (endIsMissing(path, reader.format())) {
        map.problem =
            CFloorMap::tr("Floor map file %1 cannot be shown: it is damaged, its end is missing").arg(path);
        return map;
    }
    QString problem;
    QImage image = readPixels(reader, path, size, problem);
    if (image.isNull())
        map.problem = cannotShow(path, problem);
    else
        map.picture = std::make_shared<const CMapPicture>(std::move(image));
    if (map.picture && map.picture->size().isEmpty()) {
        map.picture.reset();
        map.problem = cannotShow(path, CFloorMap::tr("there is no room for it on this computer"));
    }
    return map;
}

} // namespace

LoadedMap readMapFile(const QString& path) {
    if (!QFileInfo::exists(path)) {
        LoadedMap map;
        map.missing = true;
        map.problem = CFloorMap::tr("Floor map file %1 does not exist!").arg(path);
        return map;
    }
    return isVector(path) ? readVector(path) : readRaster(path);
}

} // namespace mirovane
