#include "ui/floor/FloorGesture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace mirovane {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string point(MapPoint p) {
    return std::to_string(p.x) + "," + std::to_string(p.y);
}

/// An intent in words, devices by their record IDs.
struct Words {
    static std::string of(const CHardware* device) {
        return device ? std::to_string(device->RecID) : "nothing";
    }

    std::string operator()(const FloorIntent::SelectOnly& i) const { return "only " + of(i.device); }
    std::string operator()(const FloorIntent::AddToSelection& i) const {
        std::string text = "add";
        for (const CHardware* device : i.devices)
            text += " " + of(device);
        return text;
    }
    std::string operator()(const FloorIntent::Deselect& i) const { return "deselect " + of(i.device); }
    std::string operator()(const FloorIntent::BringToFront& i) const { return "front " + of(i.device); }
    std::string operator()(const FloorIntent::MoveSelection& i) const {
        return (i.first ? "first move " : "move ") + point(i.by);
    }
    std::string operator()(const FloorIntent::FinishMove&) const { return "finish"; }
    std::string operator()(const FloorIntent::GiveUpMove&) const { return "give up"; }
    std::string operator()(const FloorIntent::AddMarkerPoint& i) const {
        return (i.StartNewArea ? "new area " : "area ") + std::to_string(i.MarkingMarker) + ": " +
               point(i.at);
    }
    std::string operator()(const FloorIntent::ForgetSelectedMarker&) const { return "forget marker"; }
    std::string operator()(const FloorIntent::Repaint&) const { return "repaint"; }
};

/// A letter for each event: (p)ress, (m)ove, (r)elease, (e)scape; capitals with Ctrl; "!" before it: while
/// busy.
struct Event {
    std::string what;
    QPoint at;
    std::vector<int> hits = {};
};

class FloorGestureTest : public testing::Test {
protected:
    FloorGestureTest() {
        for (int i = 0; i < 3; ++i)
            devices[i].RecID = i;
        devices[2].Selected = 1;
    }

    std::vector<std::string> play(const Event& event) {
        FloorPointer pointer;
        pointer.at = event.at;
        pointer.ZoomPercent = ZoomPercent;
        pointer.Busy = event.what.front() == '!';
        const char letter = event.what.back();
        pointer.ctrl = letter < 'a';
        for (const int hit : event.hits)
            pointer.hits.push_back(&devices[hit]);
        const char lower = static_cast<char>(std::tolower(letter));
        const FloorIntents intents = lower == 'p'   ? gesture.press(pointer)
                                     : lower == 'm' ? gesture.move(pointer)
                                     : lower == 'e' ? gesture.giveUp()
                                                    : gesture.release(pointer);
        std::vector<std::string> words;
        for (const AnyFloorIntent& intent : intents)
            words.push_back(std::visit(Words(), intent));
        return words;
    }

    /// All events in turn; what each asked for, joined.
    std::string playAll(const std::vector<Event>& events) {
        std::string all;
        for (std::size_t i = 0; i < events.size(); ++i) {
            all += i == 0 ? "" : " | ";
            const std::vector<std::string> words = play(events[i]);
            for (std::size_t word = 0; word < words.size(); ++word)
                all += (word == 0 ? "" : ", ") + words[word];
        }
        return all;
    }

    std::optional<MapBox> box() const { return gesture.shown().box; }

    CHardware devices[3]; ///< 1 is not selected, 2 is
    std::int32_t ZoomPercent = 100;
    CFloorGesture gesture;
};

TEST_F(FloorGestureTest, EventsAskForWhatTheyMean) {
    struct Case {
        const char* what;
        std::vector<Event> events;
        const char* intents;
    };
    const Case cases[] = {
        {"a click selects the topmost device alone",
         {{"p", {5, 5}, {1, 2}}, {"r", {5, 5}, {1, 2}}},
         "only 1, front 1 | "},
        {"a click beside them selects none", {{"p", {5, 5}}, {"r", {5, 5}}}, "only nothing | "},
        {"Ctrl adds all that are hit", {{"P", {5, 5}, {1}}, {"R", {5, 5}, {1}}}, "add 1 | "},
        {"Ctrl on a selected device takes the topmost out",
         {{"P", {5, 5}, {2, 1}}, {"R", {5, 5}, {2, 1}}},
         "add 2 1 | deselect 2"},
        {"unless Ctrl was let go", {{"P", {5, 5}, {2}}, {"r", {5, 5}, {2}}}, "add 2 | "},
        {"or nothing is hit any more", {{"P", {5, 5}, {2}}, {"R", {5, 5}}}, "add 2 | "},
        {"or it was dragged",
         {{"P", {5, 5}, {2}}, {"M", {6, 7}}, {"R", {6, 7}, {2}}},
         "add 2 | first move 1,2 | finish"},
        {"Ctrl beside them does nothing", {{"P", {5, 5}}, {"R", {5, 5}}}, " | "},
        {"a drag moves from point to point",
         {{"p", {5, 5}, {1}}, {"m", {8, 1}}, {"m", {8, 2}}, {"r", {9, 9}}},
         "only 1, front 1 | first move 3,-4 | move 0,1 | finish"},
        {"a drag beside them is a box",
         {{"p", {5, 5}}, {"m", {8, 9}}, {"m", {1, 9}}, {"r", {1, 9}}},
         "only nothing | repaint | repaint | repaint"},
        {"while busy a press does nothing", {{"!p", {5, 5}, {1}}, {"!r", {5, 5}, {1}}}, " | "},
        {"nor does one with Ctrl", {{"!P", {5, 5}, {2}}, {"!R", {5, 5}, {2}}}, " | "},
        {"and a drag moves nothing",
         {{"p", {5, 5}, {1}}, {"!m", {8, 5}}, {"r", {8, 5}}},
         "only 1, front 1 |  | "},
        {"but goes on afterwards from where it is",
         {{"p", {5, 5}, {1}}, {"!m", {8, 5}}, {"m", {9, 5}}},
         "only 1, front 1 |  | first move 1,0"},
        {"a drag can be given up",
         {{"p", {5, 5}, {1}}, {"m", {8, 5}}, {"e", {}}, {"m", {20, 5}}, {"r", {20, 5}}, {"e", {}}},
         "only 1, front 1 | first move 3,0 | give up |  |  | "},
        {"so can a box",
         {{"p", {5, 5}}, {"m", {8, 9}}, {"e", {}}, {"m", {20, 5}}, {"r", {20, 5}}},
         "only nothing | repaint | repaint |  | "},
        {"and a box that was left",
         {{"p", {5, 5}}, {"m", {8, 9}}, {"r", {8, 9}}, {"e", {}}, {"e", {}}},
         "only nothing | repaint | repaint | repaint | "},
        {"a move without the button means nothing",
         {{"m", {5, 5}}, {"r", {5, 5}, {2}}, {"R", {5, 5}, {2}}},
         " |  | "},
    };
    for (const Case& c : cases) {
        gesture = CFloorGesture();
        EXPECT_EQ(playAll(c.events), c.intents) << c.what;
    }
}

TEST_F(FloorGestureTest, DistancesAndBoxesAreInMapCoordinates) {
    ZoomPercent = 50;
    EXPECT_EQ(playAll({{"p", {10, 10}, {1}}, {"m", {13, 5}}}), "only 1, front 1 | first move 6,-10");
    gesture.reset();
    ZoomPercent = 300;
    EXPECT_EQ(playAll({{"p", {10, 10}, {1}}, {"m", {12, 9}}, {"m", {14, 8}}, {"m", {16, 7}}}),
              "only 1, front 1 | first move 0,0 | move 1,0 | move 1,-1")
        << "a slow pointer takes the device along";
    gesture.reset();
    ZoomPercent = 200;
    playAll({{"p", {41, 20}}, {"m", {7, 99}}});
    EXPECT_EQ(box(), (MapBox{{20, 10}, {3, 49}})) << "as it is drawn";
    play({"r", {7, 99}});
    EXPECT_EQ(box(), (MapBox{{3, 10}, {20, 49}})) << "the larger corner comes second";
}

TEST_F(FloorGestureTest, ABoxStaysUntilAPressThatIsNotPartOfIt) {
    const auto drawBox = [this] {
        gesture.reset();
        playAll({{"p", {1, 1}}, {"m", {9, 9}}, {"r", {9, 9}}});
        ASSERT_EQ(box(), (MapBox{{1, 1}, {9, 9}}));
    };
    drawBox();
    EXPECT_THAT(play({"m", {30, 30}}), IsEmpty()) << "the pointer alone changes nothing";
    EXPECT_TRUE(box());
    EXPECT_THAT(play({"p", {30, 30}}), ElementsAre("repaint", "only nothing"));
    EXPECT_FALSE(box());

    drawBox();
    EXPECT_THAT(play({"P", {5, 5}, {1}}), ElementsAre("repaint", "add 1"));
    EXPECT_FALSE(box());

    drawBox();
    playAll({{"P", {30, 30}}, {"M", {40, 40}}});
    EXPECT_EQ(box(), (MapBox{{1, 1}, {9, 9}})) << "Ctrl draws no box and leaves this one";
    play({"R", {40, 40}});
    EXPECT_TRUE(box());
    play({"P", {30, 30}});
    EXPECT_TRUE(box());
    EXPECT_THAT(play({"R", {30, 30}}), ElementsAre("repaint")) << "a press without a drag";
    EXPECT_FALSE(box());

    drawBox();
    play({"!p", {30, 30}});
    EXPECT_TRUE(box());
    gesture.reset();
    EXPECT_FALSE(box()) << "another datafile";
}

TEST_F(FloorGestureTest, LabelsAreHiddenWhileTheButtonIsDown) {
    const auto labels = [&](const Event& event) {
        play(event);
        EXPECT_EQ(gesture.buttonDown(), !gesture.shown().LabelsShown);
        return gesture.shown().LabelsShown;
    };
    EXPECT_TRUE(gesture.shown().LabelsShown);
    EXPECT_FALSE(labels({"p", {1, 1}, {1}}));
    EXPECT_FALSE(labels({"m", {2, 2}}));
    EXPECT_TRUE(labels({"r", {2, 2}}));
    EXPECT_FALSE(labels({"!p", {1, 1}}));
    EXPECT_TRUE(labels({"r", {1, 1}}));
    EXPECT_FALSE(labels({"p", {1, 1}}));
    EXPECT_FALSE(labels({"m", {3, 3}})) << "a box";
    EXPECT_TRUE(labels({"r", {3, 3}}));
}

TEST_F(FloorGestureTest, MarkingTakesAPointWithEachClickUntilItEnds) {
    ZoomPercent = 50;
    gesture.startMarking(4, true);
    EXPECT_EQ(playAll({{"p", {5, 5}, {1}}, {"m", {7, 8}}, {"r", {10, 20}, {1}}}),
              "forget marker | repaint | new area 4: 20,40");
    EXPECT_EQ(gesture.shown().LastPoint, QPoint(10, 20));
    EXPECT_TRUE(gesture.shown().LabelsShown);
    gesture.renumber(3, 8);
    EXPECT_EQ(gesture.shown().MarkingMarker, 4);
    gesture.renumber(4, 9);
    EXPECT_EQ(playAll({{"P", {5, 5}, {2}}, {"R", {1, 1}, {2}}}), " | area 9: 2,2") << "a point is a point";
    EXPECT_EQ(gesture.endMarking(), 9);
    EXPECT_EQ(gesture.shown().MarkingMarker, 0);
    EXPECT_EQ(gesture.endMarking(), 0);
    EXPECT_THAT(play({"p", {5, 5}, {1}}), ElementsAre("only 1", "front 1"));
    EXPECT_EQ(gesture.endMarking(), 0);
    EXPECT_TRUE(gesture.buttonDown()) << "no marking, nothing ended";
    gesture.startMarking(4, false);
    gesture.reset();
    EXPECT_EQ(gesture.shown().MarkingMarker, 0);
}

} // namespace

} // namespace mirovane
