#include "ui/floor/paint/PhotoStore.h"

#include "ui/floor/map/BitmapFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QImageReader>
#include <QMetaObject>
#include <QPointer>
#include <QThreadPool>

namespace mirovane {

namespace {

constexpr int largestPhotoSide = 4096;

/// Only the user under the pointer is shown; a few more are kept for a pointer that goes back and forth.
constexpr qsizetype keptPhotos = 32;

QImage readPhoto(const QString& path) {
    QImageReader reader(path);
    const QSize size = reader.size();
    if (size.width() > largestPhotoSide || size.height() > largestPhotoSide || isCutShort(path))
        return {};
    QImage image = reader.read();
    image.setDevicePixelRatio(1);
    return image.isNull() ? image : image.convertToFormat(QImage::Format_RGB32);
}

} // namespace

QString photoPath(const QString& folder, const QString& username) {
    QString name = username;
    if (name.startsWith(u'['))
        name = name.mid(1).chopped(name.size() > 1 ? 1 : 0);
    name.replace(u'\\', u'/');
    if (folder.isEmpty() || name.isEmpty() || name.contains(QChar(0)) || name.size() > 255 ||
        name.split(u'/').contains(QStringLiteral("..")))
        return {};
    QString base = folder;
    if (!QDir(base).exists())
        base.replace(u'\\', u'/');
    return base + u'/' + name + QStringLiteral(".bmp");
}

QImage CPhotoStore::photo(const QString& path) {
    if (path.isEmpty())
        return {};
    if (const auto kept = photos_.constFind(path); kept != photos_.constEnd())
        return *kept;
    if (photos_.size() >= keptPhotos)
        photos_.clear();
    if (reading_ == Reading::Now)
        return *photos_.insert(path, readPhoto(path));
    photos_.insert(path, QImage());
    readLater(path);
    return {};
}

void CPhotoStore::readLater(const QString& path) {
    QThreadPool::globalInstance()->start([self = QPointer<CPhotoStore>(this), path] {
        const QImage image = readPhoto(path);
        if (image.isNull())
            return;
        QMetaObject::invokeMethod(
            qApp,
            [self, path, image] {
                if (!self)
                    return;
                self->photos_.insert(path, image);
                Q_EMIT self->arrived();
            },
            Qt::QueuedConnection);
    });
}

} // namespace mirovane
