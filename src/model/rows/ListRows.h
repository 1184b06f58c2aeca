#pragma once

#include "model/records/Hardware.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

class CMirovaneDoc;

/// The columns of the List View, in their order.
enum class ListColumn {
    ID,
    Modified,
    LS,
    Priority,
    Reminder,
    ToDo,
    Device,
    Name,
    IPAddress,
    Username,
    MACAddress,
    ToJack,
    Comment,
    SlashText,
    BackslashText,
    HorzText,
    VertText,
};

constexpr int listColumnCount = 17;

struct ListColumnDefinition {
    std::string_view title;
    int width;              ///< pixels, at first
    std::string_view field; ///< the record's field by its code name
};

std::span<const ListColumnDefinition, listColumnCount> listColumns();

/// By title ("IP Address") or by the record's field ("IPAddress"), upper and lower case alike.
std::optional<ListColumn> listColumnFromName(std::string_view name);

/// What the cell shows, in the record's own bytes.
std::string listCellText(const CHardware& device, ListColumn column);
void appendListCell(std::string& text, const CHardware& device, ListColumn column);

/// Which records have a row.
struct ListFilter {
    bool floor = true;
    bool discovered = true;
    std::uint32_t hiddenTypes = 0; ///< bit (floor code - 1) set = rows of that type are left out

    bool shows(const CHardware& record) const;
};

/// What the column of IP addresses is sorted by: as a text 10.0.0.10 comes before 10.0.0.9.
enum class AddressOrder : std::uint8_t { Text, Number };

/// What the List View shows and in which order. One per station: the window changes it, the automatic export
/// writes the rows that it describes, also where no window is open.
struct ListViewState {
    ListFilter filter;
    ListColumn column = ListColumn::Modified;
    bool greatestFirst = false;
    AddressOrder addresses = AddressOrder::Text;
};

/// Sorts rows that are in list order; rows with equal keys keep that order in both directions. Every key is
/// made once, so 65,000 rows take tens of milliseconds even by a text column.
void sortListRows(std::vector<const CHardware*>& rows, ListColumn column, bool greatestFirst,
                  AddressOrder addresses = AddressOrder::Text);

/// True when the two are neighbours however the rows are sorted.
bool sameSortKey(const CHardware& a, const CHardware& b, const ListViewState& state);

/// Where `record`, a device of the document, belongs among sorted rows that do not hold it. A few dozen
/// comparisons, however many rows there are.
std::size_t sortedPlace(std::span<const CHardware* const> rows, const CHardware& record,
                        const ListViewState& state, const CMirovaneDoc& document);

/// The rows of the List View from top to bottom. The pointers live as long as records of the document do.
std::vector<const CHardware*> listViewRows(const CMirovaneDoc& document, const ListViewState& state);

} // namespace mirovane
