#pragma once

#include "model/Settings.h"
#include "model/records/Hardware.h"
#include "platform/files/Files.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace mirovane {

struct TextExportFormat {
    std::string delimiter = "\t"; ///< any length, perhaps empty
    bool quoteAll = false;
    bool quoteComment = false;
    bool header = false;
};

/// How one user exports one datafile. A datafile that moves starts with the defaults again.
struct ExportSettings {
    std::string ExportFilename;
    bool ExportTab = true;
    std::string ExportCustomText;
    bool ExportQuoteAll = false;
    bool ExportQuoteComment = false;
    bool ExportIncludeHeader = false;
    bool ExportAuto = false;

    /// Both texts are kept up to here, in bytes.
    static constexpr std::size_t longestText = 255;

    /// Writes the default of every value that is absent.
    void read(CSettings& settings, const std::string& datafile);
    void write(CSettings& settings, const std::string& datafile) const;

    TextExportFormat format() const;

    bool operator==(const ExportSettings&) const = default;
};

/// Where the export goes: a relative name counts from the datafile's folder, whatever the program's current
/// one is. Empty when there is no name.
std::string exportTarget(const std::string& filename, const std::string& datafile);

/// The List View's rows without the ID column: fields with the delimiter between them, lines with CR LF. In
/// the comment each CR and each LF becomes a blank. Nothing else is escaped: a delimiter or a quote within a
/// field stays as it is.
std::string exportText(std::span<const CHardware* const> rows, const TextExportFormat& format);

/// Puts the text into the file so that no reader sees half of it, except where the folder takes no new file
/// and the old one must be written over. Waits up to `patience` for a program that has the file locked, and
/// for a slow share without limit. Refuses the datafile itself and any other datafile as target. Any thread
/// that has `files` to itself.
std::optional<FileError> writeExport(Files& files, const std::string& target, const std::string& datafile,
                                     std::string_view text, std::chrono::milliseconds patience);

} // namespace mirovane
