#pragma once

#include "model/Document.h"
#include "model/Selection.h"
#include "platform/files/PosixFiles.h"
#include "tests/support/FakeTime.h"
#include "tests/support/Paths.h"
#include "tests/support/TestFolder.h"
#include "ui/floor/geometry/FloorIndex.h"
#include "ui/floor/map/FloorMap.h"
#include "ui/floor/paint/FloorFrame.h"
#include "ui/floor/paint/IconSet.h"
#include "ui/floor/paint/PhotoStore.h"

#include <QColor>
#include <QGuiApplication>
#include <QImage>

#include <gtest/gtest.h>
#include <string>

namespace mirovane::test {

/// A document in memory and everything that a frame of it is painted from.
class Floor {
public:
    Floor() {
        display.readAll(settings);
        for (const char* name :
             {"PropertiesSlashDraw", "PropertiesBackslashDraw", "PropertiesHorzDraw", "PropertiesVertDraw"})
            display.*displayToggle(name) = true;
        display.PropertiesUsername = false;
        icons.LoadIcons(QString::fromStdString(test::sourceFile("assets/icons")));
        state.view.client = QSize(400, 300);
    }

    const CHardware& add(std::int32_t type, MapPoint at, const std::function<void(CHardware&)>& fill = {}) {
        return *doc.addDevice(
            type,
            [&](CHardware& device) {
                device.Position = at;
                if (fill)
                    fill(device);
            });
    }

    FloorSources sources() { return {doc, display, index, icons, map.tiles(), photos}; }

    /// A whole frame, drawn with nothing kept from before.
    QImage freshFrame(qreal ratio = 1) {
        CFloorFrame frame(sources());
        FloorViewState shown = state;
        shown.view.ratio = ratio;
        frame.setState(shown);
        return frame.image().copy();
    }

    FakeClock clock;
    CPosixFiles files;
    CMessageLog log{clock};
    CMemorySettingsStore store;
    CSettings settings{store};
    DisplaySettings display;
    CMirovaneDoc doc{clock, log, {"host", "user"}};
    CSelection selection{doc};
    CFloorIndex index{doc};
    CIconSet icons;
    CFloorMap map;
    CPhotoStore photos{CPhotoStore::Reading::Now};
    FloorViewState state;
};

inline QColor colourAt(const QImage& image, int x, int y) {
    return image.pixelColor(x, y);
}

/// Empty when equal; else where they differ first.
inline std::string firstDifference(const QImage& a, const QImage& b) {
    if (a.size() != b.size())
        return "sizes differ";
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            if (a.pixel(x, y) != b.pixel(x, y))
                return "at " + std::to_string(x) + "," + std::to_string(y) + ": " +
                       a.pixelColor(x, y).name().toStdString() + " against " +
                       b.pixelColor(x, y).name().toStdString();
        }
    }
    return {};
}

} // namespace mirovane::test
