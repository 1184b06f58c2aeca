#include "app/DrawOptions.h"

#include "app/UsageText.h"
#include "model/Settings.h"
#include "model/records/Hardware.h"
#include "ui/floor/geometry/FloorGeometry.h"
#include "ui/floor/geometry/FontBands.h"

#include <QCommandLineParser>

#include <algorithm>
#include <climits>
#include <span>
#include <string_view>

namespace mirovane {

namespace {

constexpr double largestRatio = 8;

/// The map is hidden by this word among the types.
constexpr std::string_view mapWord = "Map";

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

/// "Card Module" and "card module"; "Map" for the floor map.
void hideNamed(const QString& text, DrawOptions& options) {
    for (const QString& part : text.split(u',')) {
        const std::string name = part.trimmed().toStdString();
        const std::int32_t type = typeFromName(name);
        if (type != 0)
            options.hidden.push_back(type);
        else if (part.trimmed().compare(QLatin1String(mapWord.data()), Qt::CaseInsensitive) == 0)
            options.hideMap = true;
        else
            refuse(QStringLiteral("hide"), part,
                   QStringLiteral("device types, such as Printer or \"Card Module\", or Map"));
    }
}

MapBox boxOf(const QString& text) {
    const Value value{QStringLiteral("box"), text,
                      QStringLiteral("four whole numbers, such as 100,50,900,600: two corners on the map")};
    const QStringList parts = text.split(u',');
    if (parts.size() != 4)
        refuse(value.option, text, value.expected);
    const auto number = [&](qsizetype place) {
        return value.integer(parts[place], -coordinateLimit, coordinateLimit);
    };
    const MapBox box = MapBox{{number(0), number(1)}, {number(2), number(3)}}.normalised();
    if (box.BoxStart.x == box.BoxEnd.x || box.BoxStart.y == box.BoxEnd.y)
        refuse(value.option, text, QStringLiteral("two corners that enclose something"));
    return box;
}

QPageSize paperOf(const QString& text) {
    for (int id = 0; id <= QPageSize::LastPageSize; ++id) {
        const QPageSize paper(static_cast<QPageSize::PageSizeId>(id));
        if (id != QPageSize::Custom && (paper.key().compare(text, Qt::CaseInsensitive) == 0 ||
                                        paper.name().compare(text, Qt::CaseInsensitive) == 0))
            return paper;
    }
    refuse(QStringLiteral("paper"), text,
           QStringLiteral("the name of a paper size, such as A4, A3 or Letter"));
}

double ratioOf(const QString& text) {
    bool ok = false;
    const double ratio = text.toDouble(&ok);
    if (!ok || !(ratio >= 0.5 && ratio <= largestRatio))
        refuse(QStringLiteral("device-ratio"), text,
               QStringLiteral("a number from 0.5 to %1, such as 2").arg(largestRatio));
    return ratio;
}

/// Reads the values of the options that were given.
class CValues {
public:
    explicit CValues(const QCommandLineParser& parser) : parser_(parser) {}

    bool given(const char* name) const { return parser_.isSet(QString::fromLatin1(name)); }
    QString text(const char* name) const { return parser_.value(QString::fromLatin1(name)); }

    void number(const char* name, int least, int most, const QString& expected, std::int32_t& target) const {
        if (!given(name))
            return;
        const Value value{QString::fromLatin1(name), text(name), expected};
        target = value.integer(value.text, least, most);
    }

    void common(DrawOptions& options) const {
        const QString percent =
            QStringLiteral("a percentage from %1 to %2").arg(smallestZoom).arg(largestZoom);
        number("zoom", smallestZoom, largestZoom, percent, options.ZoomPercent);
        number("devices-zoom", smallestZoom, largestZoom, percent, options.ZoomDevicesPercent);
        number("font-scale", -largestLabelFont, largestLabelFont,
               QStringLiteral("pixels from -%1 to %1").arg(largestLabelFont), options.ZoomFontScale);
        if (given("select"))
            options.selected = recordIDs(text("select"));
        if (given("show"))
            options.shown = labelNames(text("show"));
        if (given("hide"))
            hideNamed(text("hide"), options);
    }

    void picture(DrawOptions& options) const {
        if (given("size"))
            options.size = sizeOf(text("size"));
        if (given("scroll"))
            options.scroll = scrollOf(text("scroll"));
        if (given("hover"))
            number("hover", INT_MIN, INT_MAX, QStringLiteral("one record ID"), options.hovered.emplace());
        if (given("device-ratio"))
            options.devicePixelRatio = ratioOf(text("device-ratio"));
    }

    void pages(DrawOptions& options) const {
        if (given("box"))
            options.box = boxOf(text("box"));
        if (given("paper"))
            options.paper = paperOf(text("paper"));
        options.landscape = given("landscape");
    }

private:
    const QCommandLineParser& parser_;
};

void readFiles(const QCommandLineParser& parser, const QString& command, DrawOptions& options) {
    options.output = parser.value(command);
    const QStringList files = parser.positionalArguments();
    if (options.output.isEmpty())
        throw BadArgument{QStringLiteral("--%1 needs the name of the file to write").arg(command)};
    if (files.isEmpty())
        throw BadArgument{QStringLiteral("no datafile was named")};
    if (files.size() > 1)
        throw BadArgument{QStringLiteral("unexpected argument \"%1\"").arg(files[1])};
    options.datafile = files[0];
}

QString latin(std::string_view text) {
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

bool asksForHelp(const QStringList& arguments) {
    return arguments.contains(QStringLiteral("--help")) || arguments.contains(QStringLiteral("-h"));
}

Result<DrawOptions, QString> parsed(const QStringList& arguments, const QString& command,
                                    std::span<const DesktopOption> own,
                                    void (CValues::*readOwn)(DrawOptions&) const) {
    DrawOptions options;
    options.help = asksForHelp(arguments);
    if (options.help)
        return options;
    QCommandLineParser parser;
    parser.addOption({command, QString(), QStringLiteral("OUT")});
    for (const std::span<const DesktopOption> group :
         {std::span<const DesktopOption>(commonDrawOptions), own})
        for (const DesktopOption& option : group)
            parser.addOption({latin(option.name), QString(), latin(option.value)});
    if (!parser.parse(QStringList{QStringLiteral("mirovane")} + arguments))
        return parser.errorText();
    try {
        readFiles(parser, command, options);
        const CValues values(parser);
        values.common(options);
        (values.*readOwn)(options);
    } catch (const BadArgument& bad) {
        return bad.sentence;
    }
    return options;
}

} // namespace

Result<DrawOptions, QString> parseRenderOptions(const QStringList& arguments) {
    return parsed(arguments, QStringLiteral("render"), pictureOptions, &CValues::picture);
}

Result<DrawOptions, QString> parsePrintOptions(const QStringList& arguments) {
    return parsed(arguments, QStringLiteral("print"), pageOptions, &CValues::pages);
}

QString renderUsage() {
    return QStringLiteral(R"(Usage: mirovane --render OUT.png DATAFILE [options]

Draws one frame of the floor as the window would show it, without a display. Changes
neither the datafile nor anybody's settings.

)") + optionLines(commonDrawOptions) +
           optionLines(pictureOptions) +
           QStringLiteral(
               R"(  --help                  this text

Exit status: 0 the picture was written, 2 usage error, 3 a file could not be read or written.
)");
}

QString printUsage() {
    return QStringLiteral(R"(Usage: mirovane --print OUT.pdf DATAFILE [options]

Writes the floor as pages of a PDF file, without a display: tiles of a page each, with
their numbers in the margin. Changes neither the datafile nor anybody's settings.

)") + optionLines(pageOptions) +
           optionLines(commonDrawOptions) + QStringLiteral(R"(  --help                  this text

Exit status: 0 the pages were written, 2 usage error, 3 a file could not be read or written.
)");
}

} // namespace mirovane
