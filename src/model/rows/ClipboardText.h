#pragma once

#include "model/format/Datafile.h"
#include "model/records/Hardware.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// The text form in which devices travel through the clipboard, into a spreadsheet and back: one line per
/// device, 19 fields with a TAB between them, CR LF between lines. In order: Modified, state ("Active",
/// "Inactive" or nothing), reminder, ToDo, type's display name, Name, IPAddress, Username, MACAddress, ToJack
/// (nothing for a Location Marker), Comment, then flag ("Check" or nothing) and text of the /, \, - and |
/// line. Dates are in the locale's own form ("%c"). RecID, Position, Priority and the placement in the
/// Discovered/Misc window do not travel.
///
/// A field can hold neither TAB nor line break: each becomes one blank (CR LF together one), or every column
/// behind it would move. One that begins with a quotation mark is put into such marks, and its own are
/// doubled: spreadsheets read and write it so.
constexpr std::size_t clipboardFieldCount = 19;

/// Bytes: a text as the record holds it. Shown: each text as UTF-8, for a clipboard that other programs read.
enum class ClipboardForm { Bytes, Shown };

/// Without line end.
std::string clipboardLine(const CHardware& device, ClipboardForm form);

/// Lines with CR LF between them, none at the end.
std::string clipboardText(std::span<const CHardware* const> devices, ClipboardForm form);

/// A text from the clipboard may be anything. What is beyond these numbers is counted and not kept.
struct ClipboardLimits {
    std::size_t rows = Datafile::maxRecords;
    std::size_t problems = 100'000;
};

/// What a text in that form says.
struct ClipboardReading {
    /// A new device on the floor map, with its type's priority; RecID and Position are left for the caller.
    struct Row {
        std::size_t line; ///< from 1
        CHardware device;
    };

    /// Dropped: the line made no device (its type is unknown, or it has too many fields). Otherwise the
    /// device is there without the date that could not be read: with the present time as Modified, or no
    /// reminder.
    struct Problem {
        std::size_t line;
        std::string sentence;
        bool dropped;
    };

    std::vector<Row> rows;
    std::vector<Problem> problems;
    std::size_t dropped = 0; ///< lines that made no device
    std::size_t beyond = 0;  ///< lines after the last row that was taken, not looked at
};

/// Lines may end with CR LF, LF or CR, and a field in quotation marks may go over several; empty ones say
/// nothing, nor does a byte-order mark; fields missing at a line's end are empty. Dates are read in the
/// locale's form, in that of the C locale and as "2026-11-22 14:30". `now` is for lines without a Modified.
ClipboardReading readClipboardText(std::string_view text, TimeStamp now, const ClipboardLimits& limits = {});

} // namespace mirovane
