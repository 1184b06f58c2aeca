#pragma once

#include "model/Settings.h"

#include <QList>
#include <QObject>
#include <QRect>
#include <QTimer>

#include <cstdint>
#include <optional>
#include <string_view>

class QWidget;

namespace mirovane {

/// Settings names of one window's place. The last two hold width and height, whatever their names say.
struct PlacementKeys {
    std::string_view left;
    std::string_view top;
    std::string_view width;
    std::string_view height;
};

constexpr PlacementKeys mainFramePlacement{"WindowTopX", "WindowTopY", "WindowBotX", "WindowBotY"};
constexpr PlacementKeys messageLogPlacement{"WindowMLogTopX", "WindowMLogTopY", "WindowMLogBotX",
                                            "WindowMLogBotY"};
constexpr PlacementKeys listViewPlacement{"WindowLVTopX", "WindowLVTopY", "WindowLVBotX", "WindowLVBotY"};

/// Stored for "not set"; then the window keeps its default.
constexpr std::int32_t placementNotSet = 65535;

/// What the settings hold; an absent value is nullopt.
struct StoredPlacement {
    std::optional<int> left;
    std::optional<int> top;
    std::optional<int> width;
    std::optional<int> height;
};

StoredPlacement readPlacement(const CSettings& settings, const PlacementKeys& keys);

/// The stored place moved and shrunk so that all of the window is on `screens` (available areas, the primary
/// one first): a monitor that was unplugged must not take the window, or half of it, with it.
QRect reachable(const QRect& wanted, const QList<QRect>& screens);

/// Puts a window that is not yet shown at its stored place. Each value that is set replaces the default on
/// its own.
void applyPlacement(QWidget& window, const StoredPlacement& stored);

/// The same for a window that is not the main one: its default stays unless left, width and height are set.
void restorePlacement(QWidget& window, const CSettings& settings, const PlacementKeys& keys);

/// Whether restorePlacement() finds a place.
bool hasPlacement(const CSettings& settings, const PlacementKeys& keys);

/// Where a window of this size covers least of the window that it opens beside (`owner`, with its frame): on
/// its right or left where the screen has room, else over its right edge.
QPoint placeBeside(const QSize& size, const QRect& owner, const QRect& screen);

/// Gives a window that is not yet shown the wanted size, or what its contents need, but no more than the
/// screen of its parent has.
void fitToScreen(QWidget& window, const QSize& wanted);

/// Writes the window's place to the settings shortly after every move or resize, except while it is minimised
/// or maximised. Shortly after, because a window system may report the size of a maximised window before it
/// reports that the window is maximised. Belongs to the window.
class CPlacementKeeper : public QObject {
    Q_OBJECT

public:
    CPlacementKeeper(QWidget& window, CSettings& settings, const PlacementKeys& keys);

    /// Writes now what is still waiting to be written.
    void flush();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void write();

    QWidget& window_;
    CSettings& settings_;
    PlacementKeys keys_;
    QTimer delay_;
};

} // namespace mirovane
