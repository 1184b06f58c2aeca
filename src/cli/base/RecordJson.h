#pragma once

#include "cli/base/Output.h"
#include "model/records/Hardware.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <string>
#include <string_view>

namespace mirovane {

/// A record's bytes as text.
QString jsonText(std::string_view bytes);

/// A field's code name or another ASCII word as a key.
QString jsonKey(std::string_view name);

/// All stored fields under their code names; numbers that JSON cannot hold are null.
QJsonObject recordObject(const CHardware& record);

/// Prints one JSON array with an object a line: 65,000 records are never in memory twice.
class CJsonArrayPrinter {
public:
    explicit CJsonArrayPrinter(COutput& out) : out_(out) {}
    void add(const QJsonObject& object);
    void end();

private:
    COutput& out_;
    bool any_ = false;
};

/// One compact line, without its end.
std::string jsonLine(const QJsonObject& object);

} // namespace mirovane
