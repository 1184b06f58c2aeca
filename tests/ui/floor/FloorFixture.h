#pragma once

#include "model/Document.h"
#include "platform/PosixFiles.h"
#include "tests/support/FakeTime.h"
#include "tests/support/TestFolder.h"
#include "ui/floor/FloorFrame.h"
#include "ui/floor/FloorIndex.h"
#include "ui/floor/FloorMap.h"
#include "ui/floor/IconSet.h"
#include "ui/floor/PhotoStore.h"

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
        for (const char* name :
             {"PropertiesSlashDraw", "PropertiesBackslashDraw", "PropertiesHorzDraw", "PropertiesVertDraw"})
            doc.display().*displayToggle(name) = true;
        doc.display().PropertiesUsername = false;
        icons.LoadIcons(QStringLiteral(MIROVANE_SOURCE_DIR "/assets/icons"));
        state.client = QSize(400, 300);
    }

    const CHardware& add(std::int32_t type, MapPoint at, const std::function<void(CHardware&)>& fill = {}) {
        return *doc.addDevice(type, [&](CHardware& device) {
            device.Position = at;
            if (fill)
                fill(device);
        });
    }

    FloorSources sources() { return {doc, index, icons, map.tiles(), photos}; }

    /// A whole frame, drawn with nothing kept from before.
    QImage freshFrame(qreal ratio = 1) {
        FloorFrame frame(sources());
        frame.setView(state, ratio);
        return frame.image().copy();
    }

    FakeClock clock;
    PosixFiles files;
    CMessageLog log{clock};
    MemorySettingsStore store;
    CSettings settings{store};
    CMirovaneDoc doc{files, clock, log, settings, {"host", "user"}};
    FloorIndex index{doc};
    IconSet icons;
    FloorMap map;
    PhotoStore photos{PhotoStore::Reading::Now};
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
