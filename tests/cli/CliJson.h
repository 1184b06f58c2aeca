#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <string>

namespace mirovane::test {

inline QJsonArray jsonArray(const std::string& text) {
    return QJsonDocument::fromJson(QByteArray::fromStdString(text)).array();
}

inline std::string textOf(const QJsonValue& object, const char* key) {
    return object.toObject().value(QLatin1String(key)).toString().toStdString();
}

inline int numberOf(const QJsonValue& object, const char* key) {
    return object.toObject().value(QLatin1String(key)).toInt(-77);
}

} // namespace mirovane::test
