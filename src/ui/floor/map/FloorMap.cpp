#include "ui/floor/map/FloorMap.h"

#include "model/records/SpecialRecords.h"
#include "ui/floor/map/BitmapFile.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QMetaObject>
#include <QPointer>
#include <QThreadPool>

#include <algorithm>

namespace mirovane {

namespace {

/// Bytes of the bitmap in memory, before any of it is read.
qsizetype bitmapBytes(QSize size, QImage::Format format) {
    const int depth = format == QImage::Format_Invalid ? 32 : QImage::toPixelFormat(format).bitsPerPixel();
    return (qsizetype{size.width()} * depth + 7) / 8 * size.height();
}

/// The reader of bitmap files refuses more than this without a word about the size.
constexpr qint64 mostMapPixels = qint64{16384} * 16384;

QString tooLarge(const QString& path, QSize size, const QString& limit) {
    return CFloorMap::tr(
               "Floor map file %1 is too large to be shown: it has %2 x %3 pixels, %4. Save it smaller.")
        .arg(path)
        .arg(size.width())
        .arg(size.height())
        .arg(limit);
}

/// What is wrong with a picture of this size; empty when nothing is.
QString sizeProblem(const QString& path, QSize size, QImage::Format format) {
    if (qint64{size.width()} * size.height() > mostMapPixels)
        return tooLarge(path, size, CFloorMap::tr("the limit is %1 million").arg(mostMapPixels / 1000000));
    const qsizetype bytes = bitmapBytes(size, format);
    if (bytes > largestMapBytes)
        return tooLarge(
            path, size,
            CFloorMap::tr("which take %1 MB of memory, the limit is %2 MB; with 256 colours or fewer it "
                          "takes a quarter or less")
                .arg(bytes >> 20)
                .arg(largestMapBytes >> 20));
    return {};
}

QString stampOf(const QString& path) {
    const QFileInfo info(path);
    const qint64 modified = info.exists() ? info.lastModified().toMSecsSinceEpoch() : 0;
    return QStringLiteral("%1 %2 %3").arg(modified).arg(info.size()).arg(path);
}

LoadedMap readPicture(const QString& path) {
    LoadedMap map;
    if (!QFileInfo::exists(path)) {
        map.missing = true;
        map.problem = CFloorMap::tr("Floor map file %1 does not exist!").arg(path);
        return map;
    }
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    const QSize stated = reader.size();
    const QSize size = stated.isValid() ? stated : readBitmapHeader(path).size;
    if (size.isValid()) {
        map.problem = sizeProblem(path, size, reader.imageFormat());
        if (!map.problem.isEmpty())
            return map;
    }
    if (isCutShort(path)) {
        map.problem =
            CFloorMap::tr("Floor map file %1 cannot be shown: it is damaged, its end is missing").arg(path);
        return map;
    }
    QImage bitmap = reader.read();
    if (bitmap.isNull())
        map.problem = CFloorMap::tr("Floor map file %1 cannot be shown: %2").arg(path, reader.errorString());
    else
        map.picture = std::make_shared<const CMapPicture>(std::move(bitmap));
    return map;
}

} // namespace

QString locateMap(const QString& named, const QString& datafile) {
    const FloorMapValues map{QFile::encodeName(named).toStdString(), {}};
    return QFile::decodeName(map.findMap(QFile::encodeName(datafile).toStdString()).c_str());
}

LoadedMap readMap(const MapRequest& request) {
    const QString path = locateMap(request.named, request.datafile);
    const QString stamp = stampOf(path);
    LoadedMap map;
    if (stamp == request.known)
        map.unchanged = true;
    else
        map = readPicture(path);
    map.stamp = stamp;
    return map;
}

/// Nothing when no map is to be shown.
std::optional<MapRequest> CFloorMap::begin(const QString& named, const QString& datafile, bool again) {
    wanted_ = named;
    datafile_ = datafile;
    ++number_;
    loading_ = !named.isEmpty();
    if (!loading_) {
        finish(number_, {});
        return std::nullopt;
    }
    QImageReader::setAllocationLimit(static_cast<int>(largestMapBytes >> 20));
    return MapRequest{named, datafile, again && !tiles_.picture() ? QString() : stamp_};
}

void CFloorMap::load(const QString& named, const QString& datafile, bool again) {
    const auto request = begin(named, datafile, again);
    if (!request)
        return;
    QThreadPool::globalInstance()->start(
        [self = QPointer<CFloorMap>(this), request = *request, number = number_] {
            const LoadedMap map = readMap(request);
            QMetaObject::invokeMethod(
                qApp,
                [self, number, map] {
                    if (self)
                        self->finish(number, map);
                },
                Qt::QueuedConnection);
        });
}

void CFloorMap::loadNow(const QString& named, const QString& datafile) {
    if (const auto request = begin(named, datafile, false))
        finish(number_, readMap(*request));
}

void CFloorMap::finish(std::uint64_t number, const LoadedMap& map) {
    if (number != number_)
        return;
    loading_ = false;
    if (map.unchanged)
        return;
    stamp_ = map.stamp;
    // A file that cannot be shown keeps what was there, unless that was another site's floor.
    const bool damaged = !map.picture && !map.missing && !wanted_.isEmpty();
    if (wanted_ != shown_ && !(damaged && datafile_ == shownFor_))
        tiles_.setPicture(nullptr);
    if (map.picture)
        tiles_.setPicture(map.picture);
    shown_ = wanted_;
    shownFor_ = datafile_;
    Q_EMIT changed();
    if (!map.problem.isEmpty())
        Q_EMIT failed(map.problem, map.missing);
}

} // namespace mirovane
