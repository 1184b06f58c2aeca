#pragma once

#include "model/Document.h"
#include "tests/support/NewFloor.h"

#include <string>

namespace mirovane::bench {

/// Fills a new datafile with so many devices of about 270 bytes each, as a grown site has them: names,
/// addresses and a comment on every device, jack numbers and a label on most.
inline void fillBigFloor(CMirovaneDoc& doc, std::int32_t devices) {
    test::newFloor(doc);
    for (std::int32_t i = 0; i < devices; ++i) {
        const std::int32_t type = 1 + i % 12;
        const std::string number = std::to_string(10'000 + i);
        const CHardware* added = doc.addDevice(type, [&](CHardware& device) {
            device.State = i % 3;
            device.Position = {(i * 37) % 4000, (i * 91) % 2500};
            device.Name = "ws-" + number + "-hq";
            device.IPAddress = "127." + std::to_string(i / 65025 % 255) + "." +
                               std::to_string(i / 255 % 255) + "." + std::to_string(i % 255);
            device.MACAddress =
                "02:00:00:0" + std::to_string(i % 10) + ":" + std::to_string(10 + i % 89) + ":7f";
            device.Username = "user" + number;
            device.ToJack = "B2-" + number;
            device.Comment = "Second floor, room " + number + ", delivered with the batch of spring";
            device.SlashText = "rack " + std::to_string(i % 40);
            device.VertText = "VLAN " + std::to_string(i % 200);
        });
        if (!added)
            return;
    }
}

} // namespace mirovane::bench
