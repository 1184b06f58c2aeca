#include "model/TextExport.h"

#include "model/Datafile.h"
#include "model/Dates.h"
#include "model/ListRows.h"
#include "platform/FilePaths.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace mirovane {

namespace {

constexpr std::int32_t absentFlag = 99;

/// As they were always written: "Pri" and "\Text" are not the List View's titles.
constexpr std::array<std::string_view, listColumnCount - 1> headerNames = {
    "Modified", "LS",          "Pri",       "Reminder", "To Do",  "Device", "Name",   "IP Address",
    "Username", "MAC Address", "to Jack/#", "Comment",  "/ Text", "\\Text", "- Text", "| Text",
};

struct FlagSetting {
    std::string_view name;
    bool ExportSettings::*flag;
};

constexpr std::array<FlagSetting, 5> flagSettings{{
    {ExportSetting::Tab, &ExportSettings::ExportTab},
    {ExportSetting::QuoteAll, &ExportSettings::ExportQuoteAll},
    {ExportSetting::QuoteComment, &ExportSettings::ExportQuoteComment},
    {ExportSetting::IncludeHeader, &ExportSettings::ExportIncludeHeader},
    {ExportSetting::Auto, &ExportSettings::ExportAuto},
}};

struct TextSetting {
    std::string_view name;
    std::string ExportSettings::*text;
};

constexpr std::array<TextSetting, 2> textSettings{{
    {ExportSetting::Filename, &ExportSettings::ExportFilename},
    {ExportSetting::CustomText, &ExportSettings::ExportCustomText},
}};

/// Lines of fields into one growing text.
class LineWriter {
public:
    LineWriter(std::string& text, const TextExportFormat& format) : text_(text), format_(format) {}

    void header() {
        for (int column = 1; column < listColumnCount; ++column)
            field(static_cast<ListColumn>(column),
                  [&] { text_ += headerNames[static_cast<std::size_t>(column - 1)]; });
        text_ += "\r\n";
    }

    void row(const CHardware& device) {
        for (int column = 1; column < listColumnCount; ++column)
            field(static_cast<ListColumn>(column), [&] { cell(device, static_cast<ListColumn>(column)); });
        text_ += "\r\n";
    }

private:
    template <typename AppendContent>
    void field(ListColumn column, AppendContent appendContent) {
        const bool quoted = format_.quoteAll || (format_.quoteComment && column == ListColumn::Comment);
        if (column != ListColumn::Modified)
            text_ += format_.delimiter;
        if (quoted)
            text_ += '"';
        appendContent();
        if (quoted)
            text_ += '"';
    }

    void cell(const CHardware& device, ListColumn column) {
        if (column == ListColumn::Modified) {
            stamp(device.Modified);
            return;
        }
        const std::size_t start = text_.size();
        appendListCell(text_, device, column);
        if (column == ListColumn::Comment)
            putOnOneLine(start);
    }

    /// To spell out a date costs more than the rest of a row, and rows of one run share theirs.
    void stamp(TimeStamp stamp) {
        if (stampText_.empty() || stamp != stamp_) {
            stamp_ = stamp;
            stampText_ = stampText(stamp);
        }
        text_ += stampText_;
    }

    void putOnOneLine(std::size_t start) {
        for (std::size_t at = text_.find_first_of("\r\n", start); at != std::string::npos;
             at = text_.find_first_of("\r\n", at + 1))
            text_[at] = ' ';
    }

    std::string& text_;
    const TextExportFormat& format_;
    TimeStamp stamp_ = 0;
    std::string stampText_;
};

/// A slip of the finger must not cost somebody his site.
bool holdsDatafile(const std::string& path) {
    std::array<char, Datafile::beginningSize> beginning{};
    std::ifstream file(path, std::ios::binary);
    file.read(beginning.data(), beginning.size());
    return Datafile::beginsLikeDatafile({beginning.data(), static_cast<std::size_t>(file.gcount())});
}

FileError cannotExport(const std::string& target, const std::string& why) {
    return {FileError::Kind::Other, 0, "cannot write " + target + ": " + why};
}

} // namespace

void ExportSettings::read(CSettings& settings, const std::string& datafile) {
    *this = {};
    for (const FlagSetting& setting : flagSettings) {
        const std::string name = exportSettingName(setting.name, datafile);
        const std::int32_t value = settings.read(name, absentFlag);
        if (value == absentFlag)
            settings.write(name, this->*setting.flag ? 1 : 0);
        else
            this->*setting.flag = value == 1;
    }
    for (const TextSetting& setting : textSettings) {
        const std::string name = exportSettingName(setting.name, datafile);
        if (const auto text = settings.store().readText(name))
            this->*setting.text = text->substr(0, longestText);
        else
            settings.store().writeText(name, {});
    }
}

void ExportSettings::write(CSettings& settings, const std::string& datafile) const {
    for (const FlagSetting& setting : flagSettings)
        settings.write(exportSettingName(setting.name, datafile), this->*setting.flag ? 1 : 0);
    for (const TextSetting& setting : textSettings)
        settings.store().writeText(exportSettingName(setting.name, datafile),
                                   (this->*setting.text).substr(0, longestText));
}

TextExportFormat ExportSettings::format() const {
    return {ExportTab ? "\t" : ExportCustomText, ExportQuoteAll, ExportQuoteComment, ExportIncludeHeader};
}

std::string exportTarget(const std::string& filename, const std::string& datafile) {
    if (filename.empty())
        return {};
    const std::filesystem::path folder = std::filesystem::path(datafile).parent_path();
    std::error_code failed;
    const std::filesystem::path target = std::filesystem::absolute(folder / filename, failed);
    return failed ? filename : target.lexically_normal().string();
}

std::string exportText(std::span<const CHardware* const> rows, const TextExportFormat& format) {
    constexpr std::size_t usualRow = 200;
    std::string text;
    text.reserve((rows.size() + 1) * usualRow);
    LineWriter writer(text, format);
    if (format.header)
        writer.header();
    for (const CHardware* row : rows)
        writer.row(*row);
    return text;
}

std::optional<FileError> writeExport(Files& files, const std::string& target, const std::string& datafile,
                                     std::string_view text, std::chrono::milliseconds patience) {
    if (target.empty())
        return FileError{FileError::Kind::Other, 0, "cannot write the export: it has no file name"};
    if (!datafile.empty() && isSameFile(target, datafile))
        return cannotExport(target, "it is the datafile itself");
    auto file = files.lock(target, FileAccess::Write, patience);
    if (!file)
        return file.error();
    if (file.value()->exists() && holdsDatafile(target))
        return cannotExport(target, "it is a datafile; choose another name");
    const auto written = file.value()->replace(text);
    if (!written)
        return written.error();
    return std::nullopt;
}

} // namespace mirovane
