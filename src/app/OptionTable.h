#pragma once

#include <array>
#include <string_view>

namespace mirovane {

/// One option of the window's program: for its usage texts, its manual page and what the shell completes.
struct DesktopOption {
    std::string_view name;  ///< without its dashes
    std::string_view value; ///< empty: it takes none
    std::string_view help;
};

inline constexpr std::array windowOptions{
    DesktopOption{"config", "DIR", "keep the user's settings in DIR"},
    DesktopOption{"find", "TEXT", "show the device that TEXT fits best, by any of its fields"},
    DesktopOption{"render", "OUT.png", "draw one frame of the floor to a PNG file, without a display"},
    DesktopOption{"print", "OUT.pdf", "write the floor as pages of a PDF file, without a display"},
    DesktopOption{"help", "", "print the usage; with --render and --print, theirs"},
    DesktopOption{"version", "", "print the version"},
};

/// Of --render and of --print.
inline constexpr std::array commonDrawOptions{
    DesktopOption{"zoom", "PERCENT", "zoom of the floor map and of positions, 1 to 10000 (100)"},
    DesktopOption{"devices-zoom", "PERCENT", "zoom of the icons, 1 to 10000 (100)"},
    DesktopOption{"font-scale", "PIXELS", "added to the height of all labels (0)"},
    DesktopOption{"select", "RECID,...", "devices that are selected"},
    DesktopOption{"show", "LABEL,...",
                  "texts shown at devices; those not named are off: PropertiesComputer, PropertiesIPAddress, "
                  "PropertiesUsername, PropertiesMACAddress, PropertiesJack, PropertiesComment, "
                  "PropertiesSlash, PropertiesBackslash, PropertiesHorz, PropertiesVert. Lines are all on, "
                  "unless some are named: PropertiesSlashDraw, PropertiesBackslashDraw, PropertiesHorzDraw, "
                  "PropertiesVertDraw"},
    DesktopOption{"hide", "TYPE,...",
                  "device types that are hidden, such as Printer,Jack; Map hides the floor map"},
};

inline constexpr std::array pictureOptions{
    DesktopOption{"size", "WxH", "size of the window in pixels; without it, the whole floor"},
    DesktopOption{"scroll", "X,Y", "top left corner of the window, in pixels of the zoomed floor (0,0)"},
    DesktopOption{"hover", "RECID", "device that the pointer rests on"},
    DesktopOption{"device-ratio", "NUMBER",
                  "pixels of the picture for each pixel of the window, 0.5 to 8 (1)"},
};

inline constexpr std::array pageOptions{
    DesktopOption{"box", "X1,Y1,X2,Y2",
                  "the part of the floor between two corners, in pixels of the map; without it, the whole "
                  "floor"},
    DesktopOption{"paper", "NAME", "paper size, such as A4, A3 or Letter (A4)"},
    DesktopOption{"landscape", "", "pages lie on their long side"},
};

} // namespace mirovane
