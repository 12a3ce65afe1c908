#include <FakePlatform.h>
#include <Tilewright/SnapController.h>
#include <Tilewright/SnapSettings.h>
#include <WindowManager/LayoutStore.h>

#include <array>
#include <gtest/gtest.h>
#include <random>
#include <utility>

using namespace tilewright;
using namespace tilewright::testing;

namespace {

constexpr int eventsPerSeed = 260'000;
constexpr std::array seeds{1U, 20U, 300U, 4000U};

/// A frame in Accessibility screen space.
struct Frame {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
};

/// What the controller has to do, told once more in few words and by other means: the state table
/// with the zone lookup and the frame computation written out.
struct Restated {
    bool modifier = false;
    bool dragging = false;
    bool visible = false;
    bool asked = false;
    std::shared_ptr<FakeElement> captured;
    std::shared_ptr<const FakeScreen> screen;
    std::vector<Zone> zones;
    std::optional<QUuid> highlighted;

    void hide() {
        visible = false;
        screen.reset();
        highlighted.reset();
        captured.reset();
    }
};

class RandomDrags {
public:
    explicit RandomDrags(unsigned seed)
        : random_(seed) {
        platform_.fakeAccessibility.recordsCalls = false;
        for (int index = 0; index < 4; ++index)
            windows_.push_back(makeWindow());
        platform_.fakeAccessibility.elementAt = [this](AXPoint) { return underPointer_; };
        field_ = platform_.fakeAccessibility.makeElement("field");
        addLayouts();
        changeDisplays();
        SnapController::shared().start();
    }

    void run(int events) {
        for (int event = 0; event < events; ++event) {
            step();
            ASSERT_NO_FATAL_FAILURE(compare()) << "event " << event;
        }
        EXPECT_GT(snaps_, events / 200);
        EXPECT_GT(fallbacks_, 0);
        EXPECT_GT(refusals_, 0);
        SnapController::shared().stop();
        EXPECT_TRUE(platform_.fakeEventMonitors.monitors.empty());
        EXPECT_EQ(platform_.fakeEventMonitors.installed.size(),
                  platform_.fakeEventMonitors.removed.size());
        EXPECT_FALSE(platform_.overlay.isVisible);
        EXPECT_EQ(platform_.fakeAccessibility.liveValues, 0);
    }

private:
    int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }
    bool oneIn(int count) { return upTo(count - 1) == 0; }

    std::shared_ptr<FakeElement> makeWindow() {
        return platform_.fakeAccessibility.makeWindow("window");
    }

    void addLayouts() {
        ZoneLayout overlapping = ZoneLayout::halves();
        overlapping.id = QUuid::createUuid();
        overlapping.isBuiltIn = false;
        overlapping.zones[0].width = 0.7;
        overlapping.zones[1].height = 0.6;
        ZoneLayout empty = overlapping;
        empty.id = QUuid::createUuid();
        empty.zones.clear();
        LayoutStore& store = LayoutStore::shared();
        store.addCustomLayout(overlapping);
        store.addCustomLayout(empty);
        FakeScreen::Values values;
        for (const auto& [display, layout] :
             {std::pair(1U, ZoneLayout::bentoBox()), std::pair(2U, ZoneLayout::halves()),
              std::pair(3U, overlapping), std::pair(4U, empty)}) {
            values.displayID = display;
            store.assign(layout, *makeScreen(values));
        }
    }

    std::shared_ptr<FakeScreen> makeDisplay(int index) {
        static constexpr std::array<AppKitRect, 4> frames{{{0, 0, 1440, 900},
                                                           {1440, -200, 1920, 1080},
                                                           {-1300, 100, 1280, 1024},
                                                           {100, 900, 1366, 768}}};
        FakeScreen::Values values;
        const auto place = static_cast<std::size_t>(index);
        values.frame = frames.at(place);
        values.visibleFrame = values.frame;
        values.visibleFrame->height -= upTo(1) * 25;
        values.visibleFrame->y += upTo(1) * 30;
        values.displayID = static_cast<quint32>(index + 1);
        if (oneIn(20))
            values.displayID.reset();
        return makeScreen(values);
    }

    void changeDisplays() {
        displays_.clear();
        const int first = upTo(3);
        const int count = oneIn(10) ? 0 : 1 + upTo(3);
        for (int index = 0; index < count; ++index)
            displays_.push_back(makeDisplay((first + index) % 4));
        platform_.fakeScreens.change({displays_.begin(), displays_.end()});
    }

    void movePointer() {
        if (!displays_.empty() && !oneIn(20)) {
            // Half points, edges and corners of zones included.
            const auto index =
                static_cast<std::size_t>(upTo(static_cast<int>(displays_.size()) - 1));
            const AppKitRect frame = displays_[index]->frame();
            pointer() = {frame.x + (frame.width * upTo(200) / 200),
                         frame.y + (frame.height * upTo(200) / 200)};
        } else {
            pointer() = {static_cast<double>(upTo(8000)) - 4000,
                         static_cast<double>(upTo(8000)) - 4000};
        }
    }
    AppKitPoint& pointer() { return platform_.fakePointer.at; }

    std::shared_ptr<FakeElement> anyWindow() {
        const auto index = static_cast<std::size_t>(upTo(static_cast<int>(windows_.size())));
        return index < windows_.size() ? windows_[index] : nullptr;
    }

    void changeWindows() {
        switch (upTo(5)) {
        case 0:
            // A window vanishes and another one appears.
            if (const auto window = anyWindow()) {
                window->isGone = true;
                std::shared_ptr<FakeElement>& place = windows_[static_cast<std::size_t>(upTo(3))];
                past_.push_back(std::exchange(place, makeWindow()));
            }
            break;
        case 1:
            underPointer_ = anyWindow();
            break;
        case 2: {
            auto& elements = platform_.fakeAccessibility.systemWide->elements;
            focused_ = anyWindow();
            field_->elements[AXAttribute::window] = focused_;
            if (focused_)
                elements[AXAttribute::focusedUIElement] = field_;
            else
                elements.clear();
            break;
        }
        case 3:
            platform_.fakeAccessibility.trusted = !oneIn(3);
            break;
        case 4:
            platform_.fakeAccessibility.positionValuesFail = oneIn(4);
            break;
        default:
            platform_.fakeAccessibility.sizeValuesFail = oneIn(4);
            break;
        }
    }

    void step() {
        const int choice = upTo(999);
        if (choice < 600) {
            if (!oneIn(5))
                movePointer();
            drag();
        } else if (choice < 780) {
            changeFlags();
        } else if (choice < 900) {
            release();
        } else if (choice < 940) {
            changeWindows();
        } else if (choice < 970) {
            changeDisplays();
        } else if (choice < 980) {
            SnapSettings::shared().setModifier(
                SnapModifiers::allCases.at(static_cast<std::size_t>(upTo(3))));
        } else if (choice < 990) {
            platform_.fakeMainLoop.runPosted();
        } else if (choice < 995) {
            SnapController::shared().start();
            expected_.hide();
        } else {
            SnapController::shared().stop();
            expected_.hide();
            // What happens meanwhile is nobody's business.
            drag(false);
            SnapController::shared().start();
        }
    }

    void send(EventType type, ModifierFlags held) {
        const auto kind =
            oneIn(4) ? FakeEventMonitors::Kind::local : FakeEventMonitors::Kind::global;
        platform_.fakeEventMonitors.send(kind, {type, held});
    }

    void changeFlags() {
        const auto bits = static_cast<quint32>(upTo(15)) << 17U;
        const auto others = static_cast<quint32>(upTo(1)) << 16U;
        const quint32 chosen = static_cast<quint32>(eventFlag(SnapSettings::shared().modifier()));
        // The chosen key more often than chance would have it.
        const quint32 held = oneIn(2) ? bits | others | chosen : bits | others;
        send(EventType::flagsChanged, ModifierFlags(held));
        expected_.modifier = (held & chosen) != 0;
        if (!expected_.modifier && expected_.visible)
            expected_.hide();
    }

    void drag(bool isHeeded = true) {
        send(EventType::leftMouseDragged, {});
        if (!isHeeded || !expected_.modifier)
            return;
        if (!expected_.dragging) {
            expected_.dragging = true;
            expected_.captured = underPointer_ && !underPointer_->isGone ? underPointer_ : nullptr;
        }
        std::shared_ptr<const FakeScreen> under;
        for (const auto& display : displays_) {
            const AppKitRect frame = display->frame();
            if (!under && pointer().x >= frame.x && pointer().x < frame.x + frame.width &&
                pointer().y >= frame.y && pointer().y < frame.y + frame.height)
                under = display;
        }
        if (!under)
            return;
        if (under != expected_.screen) {
            expected_.screen = under;
            expected_.zones = LayoutStore::shared().layoutFor(*under).zones;
        }
        expected_.visible = true;
        expected_.highlighted = zoneUnderPointer();
    }

    std::optional<QUuid> zoneUnderPointer() {
        const AppKitRect area = expected_.screen->visibleFrame();
        const double x = (pointer().x - area.x) / area.width;
        const double y = (area.y + area.height - pointer().y) / area.height;
        std::optional<QUuid> found;
        if (x < 0 || x > 1 || y < 0 || y > 1)
            return found;
        for (const Zone& zone : expected_.zones) {
            if (x >= zone.x && x <= zone.x + zone.width && y >= zone.y && y <= zone.y + zone.height)
                found = zone.id;
        }
        return found;
    }

    void release() {
        send(EventType::leftMouseUp, {});
        if (expected_.dragging && expected_.visible)
            commit();
        expected_.dragging = false;
        expected_.hide();
    }

    void commit() {
        if (!expected_.highlighted)
            return;
        FakeAccessibility& accessibility = platform_.fakeAccessibility;
        if (!accessibility.trusted) {
            ++refusals_;
            expected_.asked = true;
            return;
        }
        if (!expected_.captured)
            ++fallbacks_;
        const auto target = expected_.captured ? expected_.captured : focused_;
        if (!target || target->isGone || accessibility.positionValuesFail ||
            accessibility.sizeValuesFail)
            return;
        for (const Zone& zone : expected_.zones) {
            if (zone.id == *expected_.highlighted) {
                frames_[target.get()] = frameOf(zone);
                ++snaps_;
                return;
            }
        }
    }

    Frame frameOf(const Zone& zone) {
        const AppKitRect area = expected_.screen->visibleFrame();
        const double top = displays_.empty() ? expected_.screen->frame().height
                                             : displays_.front()->frame().height;
        return {area.x + (zone.x * area.width),
                top - (area.y + area.height) + (zone.y * area.height), zone.width * area.width,
                zone.height * area.height};
    }

    void compare() {
        const SnapController& controller = SnapController::shared();
        ASSERT_EQ(controller.isModifierDown(), expected_.modifier);
        ASSERT_EQ(controller.isDragging(), expected_.dragging);
        ASSERT_EQ(controller.overlayVisible(), expected_.visible);
        ASSERT_EQ(platform_.overlay.isVisible, expected_.visible);
        ASSERT_EQ(controller.overlayModel().highlightedZoneID(), expected_.highlighted);
        // The overlay is visible in the snapping state only.
        ASSERT_TRUE(!platform_.overlay.isVisible || (expected_.modifier && expected_.dragging));
        if (expected_.visible) {
            ASSERT_EQ(platform_.overlay.screen, expected_.screen);
            ASSERT_EQ(controller.overlayModel().layout().zones, expected_.zones);
        }
        ASSERT_EQ(platform_.fakeAccessibility.trustRequests, expected_.asked ? 1 : 0);
        ASSERT_EQ(platform_.fakeEventMonitors.monitors.size(), 2U);
        ASSERT_LE(platform_.overlay.madeCount, 1);
        for (const auto& window : windows_)
            ASSERT_NO_FATAL_FAILURE(compareFrame(*window));
        // What the surface was told is of no further interest, and there would be a lot of it.
        platform_.overlay.calls.clear();
        platform_.fakeUserDefaults.writes.clear();
    }

    void compareFrame(const FakeElement& window) {
        const auto found = frames_.find(&window);
        const Frame frame = found == frames_.end() ? Frame{} : found->second;
        ASSERT_NEAR(window.position.x, frame.x, 1e-6);
        ASSERT_NEAR(window.position.y, frame.y, 1e-6);
        ASSERT_NEAR(window.size.width, frame.width, 1e-6);
        ASSERT_NEAR(window.size.height, frame.height, 1e-6);
    }

    std::mt19937 random_;
    FakeDesktop desktop_;
    FakePlatform& platform_ = desktop_.platform;
    std::vector<std::shared_ptr<FakeElement>> windows_;
    /// Keeps the address of each window its own.
    std::vector<std::shared_ptr<FakeElement>> past_;
    std::shared_ptr<FakeElement> underPointer_;
    std::shared_ptr<FakeElement> focused_;
    std::shared_ptr<FakeElement> field_;
    std::vector<std::shared_ptr<FakeScreen>> displays_;
    std::map<const FakeElement*, Frame> frames_;
    Restated expected_;
    int snaps_ = 0;
    int fallbacks_ = 0;
    int refusals_ = 0;
};

} // namespace

TEST(SnapController, KeepsToItsStateTableOverAMillionRandomEvents) {
    static_assert(eventsPerSeed * seeds.size() >= 1'000'000);
    for (const unsigned seed : seeds) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomDrags(seed).run(eventsPerSeed);
    }
}
