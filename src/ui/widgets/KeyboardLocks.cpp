#include "ui/widgets/KeyboardLocks.h"

#include <QDir>
#include <QFile>
#include <QStringList>

#include <algorithm>

namespace mirovane {

QString keyboardText(const KeyboardLocks& locks) {
    QStringList words;
    if (locks.caps)
        words << QStringLiteral("CAP");
    if (locks.num)
        words << QStringLiteral("NUM");
    if (locks.scroll)
        words << QStringLiteral("SCRL");
    return words.join(u' ');
}

CKeyboardLights::CKeyboardLights(QString folder) {
    const QDir lights(folder);
    const auto files = [&lights](const QString& pattern) {
        QStringList paths;
        for (const QString& name : lights.entryList({pattern}, QDir::Dirs | QDir::NoDotAndDotDot))
            paths << lights.filePath(name + QStringLiteral("/brightness"));
        return paths;
    };
    caps_ = files(QStringLiteral("*::capslock"));
    num_ = files(QStringLiteral("*::numlock"));
    scroll_ = files(QStringLiteral("*::scrolllock"));
}

bool CKeyboardLights::displayIsLocal(const QString& displayName) {
    return displayName.isEmpty() || displayName.startsWith(u':') ||
           displayName.startsWith(QStringLiteral("unix:"));
}

KeyboardLocks CKeyboardLights::read() const {
    return {anyLit(caps_), anyLit(num_), anyLit(scroll_)};
}

bool CKeyboardLights::anyLit(const QStringList& files) const {
    return std::ranges::any_of(
        files,
        [](const QString& path) {
            QFile file(path);
            return file.open(QIODevice::ReadOnly) && file.readAll().trimmed().toInt() > 0;
        });
}

} // namespace mirovane
