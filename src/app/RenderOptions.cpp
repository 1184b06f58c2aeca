#include "app/RenderOptions.h"

#include "model/Settings.h"
#include "ui/floor/geometry/FloorGeometry.h"

#include <QCommandLineParser>

#include <algorithm>
#include <climits>

namespace mirovane {

namespace {

struct OptionText {
    const char* name;
    const char* value;
};

constexpr OptionText optionTexts[] = {
    {"render", "OUT.png"}, {"size", "WxH"},         {"zoom", "PERCENT"}, {"devices-zoom", "PERCENT"},
    {"scroll", "X,Y"},     {"select", "RECID,..."}, {"hover", "RECID"},  {"show", "LABEL,..."}};

/// Thrown within this file only: the first thing wrong ends the reading of the arguments.
struct BadArgument {
    QString sentence;
};

[[noreturn]] void refuse(const QString& option, const QString& value, const QString& expected) {
    throw BadArgument{QStringLiteral("--%1 %2: expected %3").arg(option, value, expected)};
}

/// What an option was given and what it wants.
struct Value {
    QString option;
    QString text;
    QString expected;

    /// One number of the text, which may be all of it.
    int integer(const QString& part, int least, int most) const {
        bool ok = false;
        const int number = part.toInt(&ok);
        if (!ok || number < least || number > most)
            refuse(option, text, expected);
        return number;
    }
};

QSize sizeOf(const QString& text) {
    const Value value{
        QStringLiteral("size"), text,
        QStringLiteral("width and height in pixels, such as 1920x1080, at most %1 each and %2 million "
                       "pixels together")
            .arg(largestRenderSide)
            .arg(mostRenderPixels / 1000000)};
    const QStringList parts = text.split(u'x', Qt::KeepEmptyParts, Qt::CaseInsensitive);
    if (parts.size() != 2)
        refuse(value.option, text, value.expected);
    const QSize size(value.integer(parts[0], 1, largestRenderSide),
                     value.integer(parts[1], 1, largestRenderSide));
    if (qint64{size.width()} * size.height() > mostRenderPixels)
        refuse(value.option, text, value.expected);
    return size;
}

QPoint scrollOf(const QString& text) {
    const Value value{QStringLiteral("scroll"), text,
                      QStringLiteral("two whole numbers from 0 up, such as 300,200")};
    const QStringList parts = text.split(u',');
    if (parts.size() != 2)
        refuse(value.option, text, value.expected);
    return {value.integer(parts[0], 0, coordinateLimit), value.integer(parts[1], 0, coordinateLimit)};
}

std::vector<std::int32_t> recordIDs(const QString& text) {
    const Value value{QStringLiteral("select"), text,
                      QStringLiteral("record IDs with commas between, such as 3,17")};
    std::vector<std::int32_t> ids;
    for (const QString& part : text.split(u','))
        ids.push_back(value.integer(part, INT_MIN, INT_MAX));
    return ids;
}

std::vector<std::string> labelNames(const QString& text) {
    std::vector<std::string> names;
    for (const QString& part : text.split(u',')) {
        const std::string name = part.toStdString();
        if (!displayToggle(name))
            refuse(QStringLiteral("show"), part,
                   QStringLiteral("names of display settings, such as PropertiesIPAddress (see --help)"));
        names.push_back(name);
    }
    return names;
}

void readValues(const QCommandLineParser& parser, RenderOptions& options) {
    const auto given = [&parser](const char* name) {
        return parser.isSet(QString::fromLatin1(name));
    };
    const auto value = [&parser](const char* name) {
        return parser.value(QString::fromLatin1(name));
    };
    const auto percent = [&](const char* name) {
        const Value zoom{QString::fromLatin1(name), value(name),
                         QStringLiteral("a percentage from %1 to %2").arg(smallestZoom).arg(largestZoom)};
        return zoom.integer(zoom.text, smallestZoom, largestZoom);
    };
    if (given("size"))
        options.size = sizeOf(value("size"));
    if (given("zoom"))
        options.ZoomPercent = percent("zoom");
    if (given("devices-zoom"))
        options.ZoomDevicesPercent = percent("devices-zoom");
    if (given("scroll"))
        options.scroll = scrollOf(value("scroll"));
    if (given("select"))
        options.selected = recordIDs(value("select"));
    if (given("hover")) {
        const Value hover{QStringLiteral("hover"), value("hover"), QStringLiteral("one record ID")};
        options.hovered = hover.integer(hover.text, INT_MIN, INT_MAX);
    }
    if (given("show"))
        options.shown = labelNames(value("show"));
}

void readFiles(const QCommandLineParser& parser, RenderOptions& options) {
    options.output = parser.value(QStringLiteral("render"));
    const QStringList files = parser.positionalArguments();
    if (options.output.isEmpty())
        throw BadArgument{QStringLiteral("--render needs the name of the picture to write")};
    if (files.isEmpty())
        throw BadArgument{QStringLiteral("no datafile was named")};
    if (files.size() > 1)
        throw BadArgument{QStringLiteral("unexpected argument \"%1\"").arg(files[1])};
    options.datafile = files[0];
}

} // namespace

Result<RenderOptions, QString> parseRenderOptions(const QStringList& arguments) {
    RenderOptions options;
    options.help = arguments.contains(QStringLiteral("--help")) || arguments.contains(QStringLiteral("-h"));
    if (options.help)
        return options;
    QCommandLineParser parser;
    for (const OptionText& option : optionTexts)
        parser.addOption({QString::fromLatin1(option.name), QString(), QString::fromLatin1(option.value)});
    if (!parser.parse(QStringList{QStringLiteral("mirovane")} + arguments))
        return parser.errorText();
    try {
        readFiles(parser, options);
        readValues(parser, options);
    } catch (const BadArgument& bad) {
        return bad.sentence;
    }
    return options;
}

QString renderUsage() {
    return QStringLiteral(
        R"(Usage: mirovane --render OUT.png DATAFILE [options]

Draws one frame of the floor as the window would show it, without a display. Changes
neither the datafile nor anybody's settings.

  --size WxH              size of the window in pixels; without it, the whole floor
  --zoom PERCENT          zoom of the floor map and of positions, 1 to 10000 (100)
  --devices-zoom PERCENT  zoom of the icons, 1 to 10000 (100)
  --scroll X,Y            top left corner of the window, in pixels of the zoomed floor (0,0)
  --select RECID,...      devices that are selected
  --hover RECID           device that the pointer rests on
  --show LABEL,...        texts shown at devices; those not named are off:
                            PropertiesComputer PropertiesIPAddress PropertiesUsername
                            PropertiesMACAddress PropertiesJack PropertiesComment
                            PropertiesSlash PropertiesBackslash PropertiesHorz PropertiesVert
                          Lines are all on, unless some are named:
                            PropertiesSlashDraw PropertiesBackslashDraw
                            PropertiesHorzDraw PropertiesVertDraw
  --help                  this text

Exit status: 0 the picture was written, 2 usage error, 3 a file could not be read or written.
)");
}

} // namespace mirovane
