#include "Plan.h"

namespace plan {

namespace {

constexpr int deskWidth = 84;
constexpr int deskDepth = 56;

/// Two rows of desks back to back.
void addDeskBlock(std::vector<Item>& items, int x, int y, int columns) {
    for (int column = 0; column < columns; ++column) {
        const int left = x + column * deskWidth;
        items.push_back({Kind::Desk, {left, y, deskWidth, deskDepth}, Side::North});
        items.push_back({Kind::Desk, {left, y + deskDepth, deskWidth, deskDepth}, Side::South});
    }
}

/// A table with chairs along both long sides.
void addConferenceTable(std::vector<Item>& items, QRect table, int chairsEachSide) {
    const bool upright = table.height() > table.width();
    const int step = (upright ? table.height() : table.width()) / chairsEachSide;
    for (int i = 0; i < chairsEachSide; ++i) {
        const int along = i * step + step / 2 - 11;
        if (upright) {
            items.push_back({Kind::Chair, {table.left() - 18, table.top() + along, 22, 22}, Side::West});
            items.push_back({Kind::Chair, {table.right() - 4, table.top() + along, 22, 22}, Side::East});
        } else {
            items.push_back({Kind::Chair, {table.left() + along, table.top() - 18, 22, 22}, Side::North});
            items.push_back({Kind::Chair, {table.left() + along, table.bottom() - 4, 22, 22}, Side::South});
        }
    }
    items.push_back({Kind::Table, table});
}

void addCafeTable(std::vector<Item>& items, QPoint centre) {
    const auto chair = [&](int dx, int dy, Side back) {
        items.push_back({Kind::Chair, {centre.x() + dx - 10, centre.y() + dy - 10, 20, 20}, back});
    };
    chair(0, -34, Side::North);
    chair(0, 34, Side::South);
    chair(-34, 0, Side::West);
    chair(34, 0, Side::East);
    items.push_back({Kind::RoundTable, {centre.x() - 28, centre.y() - 28, 56, 56}});
}

void addOpenPlan(std::vector<Item>& items) {
    // Studio
    for (const int y : {124, 300}) {
        addDeskBlock(items, 96, y, 3);
        addDeskBlock(items, 412, y, 3);
    }
    items.push_back({Kind::Plant, {362, 160, 36, 36}});
    items.push_back({Kind::Plant, {362, 336, 36, 36}});
    items.push_back({Kind::Cabinet, {690, 90, 24, 120}});
    // Engineering
    addDeskBlock(items, 1176, 124, 3);
    addDeskBlock(items, 1176, 300, 3);
    for (const int y : {108, 206, 304})
        items.push_back({Kind::Desk, {1578, y, deskDepth, deskWidth}, Side::West});
    items.push_back({Kind::Board, {1122, 110, 6, 150}});
    items.push_back({Kind::Plant, {1474, 74, 36, 36}});
}

void addMeetingRooms(std::vector<Item>& items) {
    addConferenceTable(items, {768, 120, 144, 66}, 3); // Heron
    items.push_back({Kind::Board, {953, 100, 6, 100}});
    addConferenceTable(items, {768, 322, 144, 66}, 3); // Otter
    items.push_back({Kind::Board, {953, 300, 6, 100}});
    addConferenceTable(items, {1016, 640, 92, 280}, 5); // Kingfisher
    items.push_back({Kind::Board, {1000, 1000, 120, 6}});
    items.push_back({Kind::Cabinet, {1164, 700, 30, 160}});
    items.push_back({Kind::Plant, {932, 960, 36, 36}});
}

void addServiceRooms(std::vector<Item>& items) {
    // Store, Copy & post
    items.push_back({Kind::Cabinet, {966, 84, 30, 128}});
    items.push_back({Kind::Cabinet, {1084, 84, 30, 128}});
    items.push_back({Kind::Machine, {972, 262, 56, 46}});
    items.push_back({Kind::Machine, {972, 334, 56, 46}});
    items.push_back({Kind::Counter, {1078, 262, 36, 140}});
    // Archive
    for (const int x : {500, 552, 604})
        items.push_back({Kind::Cabinet, {x, 880, 30, 122}});
    // IT workshop, Server room
    items.push_back({Kind::Desk, {1206, 586, 56, 84}, Side::East});
    items.push_back({Kind::Counter, {1206, 686, 40, 66}});
    items.push_back({Kind::Cabinet, {1324, 556, 70, 26}});
    for (const int x : {1216, 1262, 1308, 1354})
        items.push_back({Kind::Rack, {x, 796, 40, 44}});
    for (const int x : {1216, 1262, 1308, 1354})
        items.push_back({Kind::Rack, {x, 908, 40, 44}});
    items.push_back({Kind::Machine, {1206, 968, 90, 32}});
    items.push_back({Kind::Machine, {1304, 968, 90, 32}});
}

void addSocialRooms(std::vector<Item>& items) {
    // Reception
    items.push_back({Kind::Counter, {150, 640, 120, 26}, Side::None});
    items.push_back({Kind::Desk, {150, 666, 120, 46}, Side::South});
    items.push_back({Kind::Sofa, {60, 820, 44, 150}, Side::West});
    items.push_back({Kind::Sofa, {130, 958, 130, 44}, Side::South});
    items.push_back({Kind::RoundTable, {150, 862, 64, 64}});
    items.push_back({Kind::Plant, {58, 574, 36, 36}});
    items.push_back({Kind::Plant, {310, 958, 36, 36}});
    // Kitchen
    items.push_back({Kind::Counter, {646, 640, 44, 360}});
    items.push_back({Kind::Sink, {652, 700, 32, 44}});
    items.push_back({Kind::Hob, {652, 800, 32, 44}});
    items.push_back({Kind::Machine, {646, 940, 44, 60}});
    for (const QPoint centre : {QPoint(770, 680), QPoint(860, 780), QPoint(770, 890)})
        addCafeTable(items, centre);
    items.push_back({Kind::Plant, {874, 960, 36, 36}});
    // Stairs and lift
    items.push_back({Kind::Stairs, {366, 850, 108, 152}});
    items.push_back({Kind::Lift, {368, 562, 52, 60}});
    // Toilets
    for (const int x : {492, 572}) {
        items.push_back({Kind::Toilet, {x + 14, 728, 28, 44}, Side::South});
        items.push_back({Kind::Basin, {x - 6, 640, 22, 30}, Side::West});
    }
}

void addOffices(std::vector<Item>& items) {
    // Director
    items.push_back({Kind::Desk, {1510, 640, 110, 60}, Side::South});
    items.push_back({Kind::Chair, {1540, 612, 22, 22}, Side::North});
    items.push_back({Kind::Chair, {1576, 612, 22, 22}, Side::North});
    items.push_back({Kind::Cabinet, {1456, 680, 26, 94}});
    items.push_back({Kind::Plant, {1598, 562, 34, 34}});
    // Accounts
    items.push_back({Kind::Desk, {1550, 826, 84, 56}, Side::South});
    items.push_back({Kind::Desk, {1550, 928, 84, 56}, Side::North});
    items.push_back({Kind::Cabinet, {1456, 900, 26, 102}});
}

} // namespace

const std::vector<Room>& rooms() {
    static const std::vector<Room> all = {
        {"Studio", {40, 50, 680, 400}, Floor::Carpet},
        {"Heron", {720, 50, 240, 200}, Floor::Quiet},
        {"Otter", {720, 250, 240, 200}, Floor::Quiet},
        {"Store", {960, 50, 160, 170}, Floor::Technical},
        {"Copy & post", {960, 220, 160, 230}, Floor::Technical},
        {"Engineering", {1120, 50, 520, 400}, Floor::Carpet},
        {"", {40, 450, 1600, 100}, Floor::Hall},
        {"Reception", {40, 550, 320, 460}, Floor::Hall},
        {"Stairs", {360, 550, 120, 460}, Floor::Technical, {14, 276}},
        {"", {360, 550, 66, 84}, Floor::Technical},
        {"WC", {480, 550, 80, 230}, Floor::Wet, {28, 66}},
        {"WC", {560, 550, 80, 230}, Floor::Wet, {28, 66}},
        {"Archive", {480, 780, 160, 230}, Floor::Technical},
        {"Kitchen", {640, 550, 280, 460}, Floor::Kitchen},
        {"Kingfisher", {920, 550, 280, 460}, Floor::Quiet},
        {"IT workshop", {1200, 550, 200, 210}, Floor::Carpet},
        {"Server room", {1200, 760, 200, 250}, Floor::Technical},
        {"", {1400, 550, 50, 460}, Floor::Hall},
        {"Director", {1450, 550, 190, 230}, Floor::Carpet},
        {"Accounts", {1450, 780, 190, 230}, Floor::Carpet},
    };
    return all;
}

const std::vector<Door>& doors() {
    static const std::vector<Door> all = {
        {{340, 450}, 36, Wall::Horizontal, false, -1},  {{376, 450}, 36, Wall::Horizontal, true, -1},
        {{720, 204}, 36, Wall::Vertical, true, 1},      {{900, 450}, 36, Wall::Horizontal, true, -1},
        {{1000, 220}, 36, Wall::Horizontal, false, -1}, {{1030, 450}, 60, Wall::Horizontal, false, 0},
        {{1450, 450}, 36, Wall::Horizontal, false, -1}, {{1486, 450}, 36, Wall::Horizontal, true, -1},
        {{120, 550}, 160, Wall::Horizontal, false, 0},  {{360, 720}, 36, Wall::Vertical, false, -1},
        {{372, 550}, 44, Wall::Horizontal, false, 0},   {{434, 550}, 38, Wall::Horizontal, true, 1},
        {{480, 800}, 36, Wall::Vertical, true, -1},     {{500, 550}, 34, Wall::Horizontal, true, 1},
        {{580, 550}, 34, Wall::Horizontal, true, 1},    {{720, 550}, 80, Wall::Horizontal, false, 0},
        {{1060, 550}, 36, Wall::Horizontal, false, 1},  {{1096, 550}, 36, Wall::Horizontal, true, 1},
        {{1400, 680}, 36, Wall::Vertical, true, -1},    {{1340, 760}, 36, Wall::Horizontal, true, 1},
        {{1404, 550}, 42, Wall::Horizontal, false, 0},  {{1450, 600}, 36, Wall::Vertical, false, 1},
        {{1450, 830}, 36, Wall::Vertical, false, 1},
    };
    return all;
}

const std::vector<Window>& windows() {
    static const std::vector<Window> all = {
        {{90, 50}, 130, Wall::Horizontal},    {{250, 50}, 130, Wall::Horizontal},
        {{410, 50}, 130, Wall::Horizontal},   {{570, 50}, 130, Wall::Horizontal},
        {{770, 50}, 140, Wall::Horizontal},   {{1160, 50}, 130, Wall::Horizontal},
        {{1320, 50}, 130, Wall::Horizontal},  {{1480, 50}, 130, Wall::Horizontal},
        {{40, 110}, 120, Wall::Vertical},     {{40, 280}, 120, Wall::Vertical},
        {{40, 620}, 120, Wall::Vertical},     {{40, 820}, 150, Wall::Vertical},
        {{1640, 100}, 130, Wall::Vertical},   {{1640, 270}, 130, Wall::Vertical},
        {{1640, 600}, 130, Wall::Vertical},   {{1640, 830}, 130, Wall::Vertical},
        {{110, 1010}, 160, Wall::Horizontal}, {{700, 1010}, 160, Wall::Horizontal},
        {{980, 1010}, 160, Wall::Horizontal}, {{1490, 1010}, 110, Wall::Horizontal},
    };
    return all;
}

const std::vector<Item>& furniture() {
    static const std::vector<Item> all = [] {
        std::vector<Item> items;
        addOpenPlan(items);
        addMeetingRooms(items);
        addServiceRooms(items);
        addSocialRooms(items);
        addOffices(items);
        return items;
    }();
    return all;
}

} // namespace plan
