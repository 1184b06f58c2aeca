#include "ui/floor/paint/PhotoStore.h"

#include "model/records/SpecialRecords.h"
#include "ui/floor/map/BitmapFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QMetaObject>
#include <QPointer>

#include <chrono>

namespace mirovane {

namespace {

constexpr int largestPhotoSide = 4096;

/// Only the user under the pointer is shown; a few more are kept for a pointer that goes back and forth.
constexpr qsizetype keptPhotos = 32;

QImage readPhoto(const PhotoFolder& folder, const QString& username) {
    const QString path = photoFile(folder, username);
    if (path.isEmpty())
        return {};
    QImageReader reader(path);
    const QSize size = reader.size();
    if (size.width() > largestPhotoSide || size.height() > largestPhotoSide || isCutShort(path))
        return {};
    QImage image = reader.read();
    image.setDevicePixelRatio(1);
    return image.isNull() ? image : image.convertToFormat(QImage::Format_RGB32);
}

/// The name without the brackets of a user who has left; empty for one that leads out of the folder.
QString fileNameOf(const QString& username) {
    QString name = username;
    if (name.startsWith(u'['))
        name = name.mid(1).chopped(name.size() > 1 ? 1 : 0);
    name.replace(u'\\', u'/');
    if (name.isEmpty() || name.contains(QChar(0)) || name.size() > 255 ||
        name.split(u'/').contains(QStringLiteral("..")))
        return {};
    return name + QStringLiteral(".bmp");
}

} // namespace

QString photoFile(const PhotoFolder& folder, const QString& username) {
    const QString name = fileNameOf(username);
    if (folder.named.isEmpty() || name.isEmpty())
        return {};
    const FloorMapValues values{{}, QFile::encodeName(folder.named).toStdString()};
    const QString found =
        QFile::decodeName(values.findPhotos(QFile::encodeName(folder.datafile).toStdString()).c_str());
    const QFileInfo exact(found + u'/' + name);
    if (exact.isFile())
        return exact.filePath();
    const QDir around = exact.dir();
    for (const QString& entry : around.entryList(QDir::Files))
        if (entry.compare(exact.fileName(), Qt::CaseInsensitive) == 0)
            return around.filePath(entry);
    return {};
}

void CPhotoStore::setFolder(const PhotoFolder& folder) {
    if (folder == folder_)
        return;
    folder_ = folder;
    clear();
}

void CPhotoStore::clear() {
    photos_.clear();
    ++emptied_;
}

QImage CPhotoStore::photo(const QString& username) {
    if (username.isEmpty() || folder_.named.isEmpty())
        return {};
    if (const auto kept = photos_.constFind(username); kept != photos_.constEnd())
        return *kept;
    if (photos_.size() >= keptPhotos)
        photos_.clear();
    if (reading_ == Reading::Now)
        return *photos_.insert(username, readPhoto(folder_, username));
    photos_.insert(username, QImage());
    readLater(username);
    return {};
}

void CPhotoStore::readLater(const QString& username) {
    const auto read = [self = QPointer<CPhotoStore>(this), folder = folder_, username, asked = emptied_] {
        const QImage image = readPhoto(folder, username);
        if (image.isNull() || !qApp)
            return;
        QMetaObject::invokeMethod(
            qApp,
            [self, username, image, asked] {
                if (!self || asked != self->emptied_)
                    return;
                self->photos_.insert(username, image);
                Q_EMIT self->arrived();
            },
            Qt::QueuedConnection);
    };
    const auto end = reads_.run(folder_.named.toStdString(), read, std::chrono::milliseconds(0));
    if (end == CAbandonableCalls::End::Refused)
        photos_.remove(username); // asked for again when the share answers
}

} // namespace mirovane
