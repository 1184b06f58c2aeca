#include "cli/station/LogPrinter.h"

#include "cli/base/RecordJson.h"

#include <QDateTime>

#include <string>
#include <string_view>

namespace mirovane {

namespace {

struct KindWords {
    LogWeight weight;
    LinePriority priority;
    std::string_view name; ///< as --log and the JSON lines have it
};

KindWords wordsOf(LogKind kind) {
    switch (kind) {
    case LogKind::Statistics:
        return {LogWeight::Debug, LinePriority::Debug, "debug"};
    case LogKind::Lasting:
    case LogKind::State:
        return {LogWeight::Notice, LinePriority::Notice, "notice"};
    case LogKind::Trouble:
        return {LogWeight::Error, LinePriority::Error, "err"};
    case LogKind::Message:
        break;
    }
    return {LogWeight::Info, LinePriority::Info, "info"};
}

} // namespace

void CLogPrinter::lineLogged(const LogLine& line) {
    const KindWords words = wordsOf(line.kind);
    if (words.weight < log_)
        return;
    std::string text = out_.resultsGoToJournal() ? line.text : line.shown(); // the journal dates it itself
    if (json_)
        text = jsonLine({{jsonKey("time"), QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs)},
                         {jsonKey("priority"), jsonKey(words.name)},
                         {jsonKey("message"), jsonText(line.text)}});
    out_.printLine(words.priority, json_ ? text : printable(text));
    out_.flush();
}

} // namespace mirovane
