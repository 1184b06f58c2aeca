#include "cli/base/RecordJson.h"

#include "model/records/FieldNames.h"
#include "model/records/Text.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>

namespace mirovane {

namespace {

QJsonArray stampsArray(const CHardware& record) {
    QJsonArray stamps;
    for (const TimeStamp stamp : record.RuleStamps)
        stamps.append(stamp);
    return stamps;
}

QJsonObject dateTimeObject(const DateTime& dateTime) {
    const QJsonValue value = std::isfinite(dateTime.value) ? QJsonValue(dateTime.value) : QJsonValue();
    return {{QStringLiteral("status"), dateTime.status}, {QStringLiteral("value"), value}};
}

QJsonValue fieldJson(const CHardware& record, const RecordField& field) {
    if (const auto* text = std::get_if<std::string CHardware::*>(&field.member))
        return jsonText(record.**text);
    if (const auto* number = std::get_if<std::int32_t CHardware::*>(&field.member))
        return record.**number;
    switch (field.kind) {
    case FieldKind::Position:
        return QJsonArray{record.Position.x, record.Position.y};
    case FieldKind::RuleStamps:
        return stampsArray(record);
    default:
        return dateTimeObject(record.ReminderDate);
    }
}

} // namespace

QString jsonKey(std::string_view name) {
    return QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()));
}

QString jsonText(std::string_view bytes) {
    const std::string text = displayText(bytes);
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QJsonObject recordObject(const CHardware& record) {
    QJsonObject object;
    for (const RecordField& field : recordFields())
        object.insert(jsonKey(field.name), fieldJson(record, field));
    return object;
}

std::string jsonLine(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

void CJsonArrayPrinter::add(const QJsonObject& object) {
    out_.print(any_ ? ",\n" : "[\n");
    out_.print(jsonLine(object));
    any_ = true;
}

void CJsonArrayPrinter::end() {
    out_.print(any_ ? "\n]\n" : "[]\n");
}

} // namespace mirovane
