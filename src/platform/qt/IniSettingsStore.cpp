#include "platform/qt/IniSettingsStore.h"

#include "platform/qt/ConfigFolder.h"

#include <QByteArray>
#include <QFile>
#include <QSettings>
#include <QString>
#include <QVariant>

namespace mirovane {

namespace {

constexpr std::size_t recentFilesKept = 4;

QByteArray bytesOf(const std::string& text) {
    return QByteArray(text.data(), static_cast<qsizetype>(text.size()));
}

/// A name may hold a datafile's path, and the store gives "/" and "\" a meaning of their own. Everything but
/// plain ASCII is written as %XX, so that any two names stay two.
QString keyIn(const char* group, const std::string& name) {
    const QByteArray escaped = bytesOf(name).toPercentEncoding(" :,;()[]{}!#$&'*+@");
    return QLatin1String(group) + QLatin1Char('/') + QString::fromLatin1(escaped);
}

QString settingsKey(const std::string& name) {
    return keyIn("Settings", name);
}

QString recentFileKey(std::size_t i) {
    return keyIn("RecentFiles", "File" + std::to_string(i + 1));
}

/// Text where it is text, so that the file can be read; bytes where it is not, so that nothing is lost.
QVariant stored(const std::string& value) {
    const QByteArray bytes = bytesOf(value);
    const QString text = QString::fromUtf8(bytes);
    return text.toUtf8() == bytes ? QVariant(text) : QVariant(bytes);
}

std::string textOf(const QVariant& value) {
    if (value.typeId() == QMetaType::QStringList) // an unquoted comma, written by hand
        return value.toStringList().join(QStringLiteral(", ")).toStdString();
    return value.typeId() == QMetaType::QByteArray ? value.toByteArray().toStdString()
                                                   : value.toString().toStdString();
}

QString iniFile(const std::string& folder) {
    return QFile::decodeName(bytesOf(configFolder(folder))) + QStringLiteral("/mirovane.ini");
}

} // namespace

CIniSettingsStore::CIniSettingsStore(const std::string& folder)
    : settings_(std::make_unique<QSettings>(iniFile(folder), QSettings::IniFormat)) {}

CIniSettingsStore::~CIniSettingsStore() = default;

std::optional<std::int32_t> CIniSettingsStore::readInteger(const std::string& name) const {
    bool isNumber = false;
    const std::int32_t value = settings_->value(settingsKey(name)).toInt(&isNumber);
    return isNumber ? std::optional<std::int32_t>(value) : std::nullopt;
}

void CIniSettingsStore::writeInteger(const std::string& name, std::int32_t value) {
    settings_->setValue(settingsKey(name), value);
}

std::optional<std::string> CIniSettingsStore::readText(const std::string& name) const {
    const QVariant value = settings_->value(settingsKey(name));
    return value.isValid() ? std::optional<std::string>(textOf(value)) : std::nullopt;
}

void CIniSettingsStore::writeText(const std::string& name, const std::string& value) {
    settings_->setValue(settingsKey(name), stored(value));
}

std::vector<std::string> CIniSettingsStore::readRecentFiles() const {
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < recentFilesKept; ++i) {
        const std::string path = textOf(settings_->value(recentFileKey(i)));
        if (!path.empty())
            paths.push_back(path);
    }
    return paths;
}

void CIniSettingsStore::writeRecentFiles(const std::vector<std::string>& paths) {
    for (std::size_t i = 0; i < recentFilesKept; ++i)
        if (i < paths.size())
            settings_->setValue(recentFileKey(i), stored(paths[i]));
        else
            settings_->remove(recentFileKey(i));
}

std::string CIniSettingsStore::fileName() const {
    return QFile::encodeName(settings_->fileName()).toStdString();
}

} // namespace mirovane
