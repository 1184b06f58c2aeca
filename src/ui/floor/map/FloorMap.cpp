#include "ui/floor/map/FloorMap.h"

#include "model/records/SpecialRecords.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QMetaObject>
#include <QPointer>

#include <algorithm>
#include <chrono>

namespace mirovane {

namespace {

QString stampOf(const QString& path) {
    const QFileInfo info(path);
    const qint64 modified = info.exists() ? info.lastModified().toMSecsSinceEpoch() : 0;
    return QStringLiteral("%1 %2 %3").arg(modified).arg(info.size()).arg(path);
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
        map = readMapFile(path);
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
    return MapRequest{named, datafile, again && !tiles_.picture() ? QString() : stamp_};
}

void CFloorMap::load(const QString& named, const QString& datafile, bool again) {
    const auto request = begin(named, datafile, again);
    if (!request)
        return;
    Q_EMIT reading(true);
    const auto read = [self = QPointer<CFloorMap>(this), request = *request, number = number_] {
        const LoadedMap map = readMap(request);
        if (!qApp)
            return;
        QMetaObject::invokeMethod(
            qApp,
            [self, number, map] {
                if (self)
                    self->finish(number, map);
            },
            Qt::QueuedConnection);
    };
    if (reads_.run(named.toStdString(), read, std::chrono::milliseconds(0)) !=
        CAbandonableCalls::End::Refused)
        return;
    LoadedMap none;
    none.problem = tr("The floor map could not be read: its share does not answer.");
    QMetaObject::invokeMethod(
        this, [this, number = number_, none] { finish(number, none); }, Qt::QueuedConnection);
}

void CFloorMap::loadNow(const QString& named, const QString& datafile) {
    if (const auto request = begin(named, datafile, false))
        finish(number_, readMap(*request));
}

void CFloorMap::finish(std::uint64_t number, const LoadedMap& map) {
    if (number != number_)
        return;
    loading_ = false;
    Q_EMIT reading(false);
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
