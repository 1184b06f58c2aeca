#include "model/rows/TextExport.h"

#include "model/format/Datafile.h"
#include "model/rows/ListRows.h"
#include "platform/files/FilePaths.h"

#include <algorithm>
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
class CLineWriter {
public:
    CLineWriter(std::string& text, const TextExportFormat& format) : text_(text) {
        std::string quoteBefore;
        for (std::size_t column = 1; column < listColumnCount; ++column) {
            const bool quoted = format.quoteAll || (format.quoteComment && isComment(column));
            const std::string quote = quoted ? "\"" : "";
            between_[column] = quoteBefore;
            if (column > 1)
                between_[column] += format.delimiter;
            between_[column] += quote;
            quoteBefore = quote;
        }
        between_.back() = quoteBefore + "\r\n";
    }

    void header() {
        line([this](std::size_t column) { text_ += headerNames[column - 1]; });
    }

    void row(const CHardware& device) {
        line([this, &device](std::size_t column) { cell(device, column); });
    }

private:
    template <typename AppendCell>
    void line(AppendCell appendCell) {
        for (std::size_t column = 1; column < listColumnCount; ++column) {
            text_ += between_[column];
            appendCell(column);
        }
        text_ += between_.back();
    }

    static bool isComment(std::size_t column) {
        return static_cast<ListColumn>(column) == ListColumn::Comment;
    }

    void cell(const CHardware& device, std::size_t column) {
        const std::size_t start = text_.size();
        appendListCell(text_, device, static_cast<ListColumn>(column));
        if (isComment(column)) {
            const auto begin = text_.begin() + static_cast<std::ptrdiff_t>(start);
            std::transform(begin, text_.end(), begin,
                           [](char c) { return c == '\r' || c == '\n' ? ' ' : c; });
        }
    }

    std::string& text_;
    std::array<std::string, listColumnCount + 1> between_; ///< before each column, and behind the last
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
    CLineWriter writer(text, format);
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
