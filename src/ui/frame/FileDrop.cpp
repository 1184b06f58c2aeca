#include "ui/frame/FileDrop.h"

#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

#include <optional>

namespace mirovane {

namespace {

/// One file of this computer or of a share, by its name a datafile.
std::optional<std::string> datafileIn(const QMimeData& dragged) {
    const QList<QUrl> urls = dragged.urls();
    if (urls.size() != 1 || !urls.first().isLocalFile())
        return std::nullopt;
    const QString path = urls.first().toLocalFile();
    if (!path.endsWith(QStringLiteral(".mv"), Qt::CaseInsensitive))
        return std::nullopt;
    return QFile::encodeName(path).toStdString();
}

} // namespace

CFileDrop::CFileDrop(QWidget& window) : QObject(&window) {
    window.setAcceptDrops(true);
    window.installEventFilter(this);
}

bool CFileDrop::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::DragEnter && event->type() != QEvent::Drop)
        return QObject::eventFilter(watched, event);
    auto& drop = static_cast<QDropEvent&>(*event); // a drag that enters is one, too
    const auto path = datafileIn(*drop.mimeData());
    if (!path)
        return QObject::eventFilter(watched, event);
    drop.setDropAction(Qt::CopyAction); // the file stays where it is
    drop.accept();
    if (event->type() == QEvent::Drop)
        Q_EMIT dropped(*path);
    return true;
}

} // namespace mirovane
