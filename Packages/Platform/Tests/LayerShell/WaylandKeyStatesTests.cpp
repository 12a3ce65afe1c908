#include "WaylandFixture.h"

#include <LayerShell/WaylandKeyStates.h>

#include <QSignalSpy>
#include <key-states-server.h>

namespace tilewright::testing {
namespace {

constexpr std::uint32_t up = ORG_KDE_KWIN_KEYSTATE_STATE_UNLOCKED;
constexpr std::uint32_t pressed = ORG_KDE_KWIN_KEYSTATE_STATE_PRESSED;

class WaylandKeyStatesTest : public WaylandFixture {
protected:
    [[nodiscard]] bool come(ModifierFlags flags) {
        return waitUntil([&] { return states.flags() == flags; });
    }

    WaylandKeyStates states{connection};
};

TEST_F(WaylandKeyStatesTest, TellsTheKeysThatAreDownAlreadyWhenItBegins) {
    start();
    compositor->setKey(ORG_KDE_KWIN_KEYSTATE_KEY_CONTROL, pressed);
    compositor->setKey(ORG_KDE_KWIN_KEYSTATE_KEY_META, pressed);
    EXPECT_TRUE(come({ModifierFlag::control, ModifierFlag::command}));
    EXPECT_TRUE(states.isOffered());
}

TEST_F(WaylandKeyStatesTest, TellsOfEachKeyThatGoesDownAndUp) {
    connect();
    const std::pair<std::uint32_t, ModifierFlag> keys[] = {
        {ORG_KDE_KWIN_KEYSTATE_KEY_ALT, ModifierFlag::option},
        {ORG_KDE_KWIN_KEYSTATE_KEY_CONTROL, ModifierFlag::control},
        {ORG_KDE_KWIN_KEYSTATE_KEY_SHIFT, ModifierFlag::shift},
        {ORG_KDE_KWIN_KEYSTATE_KEY_META, ModifierFlag::command},
    };
    for (const auto& [key, flag] : keys) {
        compositor->setKey(key, pressed);
        EXPECT_TRUE(come({flag}));
        compositor->setKey(key, up);
        EXPECT_TRUE(come({}));
    }
}

TEST_F(WaylandKeyStatesTest, KeepsTheOtherKeyWhenOneOfTwoIsReleased) {
    connect();
    compositor->setKey(ORG_KDE_KWIN_KEYSTATE_KEY_SHIFT, pressed);
    compositor->setKey(ORG_KDE_KWIN_KEYSTATE_KEY_ALT, pressed);
    EXPECT_TRUE(come({ModifierFlag::shift, ModifierFlag::option}));
    compositor->setKey(ORG_KDE_KWIN_KEYSTATE_KEY_SHIFT, up);
    EXPECT_TRUE(come({ModifierFlag::option}));
}

TEST_F(WaylandKeyStatesTest, CountsALatchedAndALockedKeyAsHeld) {
    connect();
    compositor->setKey(ORG_KDE_KWIN_KEYSTATE_KEY_CONTROL, ORG_KDE_KWIN_KEYSTATE_STATE_LATCHED);
    EXPECT_TRUE(come({ModifierFlag::control}));
    compositor->setKey(ORG_KDE_KWIN_KEYSTATE_KEY_SHIFT, ORG_KDE_KWIN_KEYSTATE_STATE_LOCKED);
    EXPECT_TRUE(come({ModifierFlag::control, ModifierFlag::shift}));
}

TEST_F(WaylandKeyStatesTest, SaysNothingOfOtherKeysAndOfWhatIsKnown) {
    connect();
    ASSERT_TRUE(waitUntil([&] { return states.isOffered(); }));
    QSignalSpy changes(&states, &WaylandKeyStates::flagsChanged);
    constexpr std::uint32_t capsLock = 0;
    constexpr std::uint32_t altGr = 7;
    compositor->setKey(capsLock, ORG_KDE_KWIN_KEYSTATE_STATE_LOCKED);
    compositor->setKey(altGr, pressed);
    compositor->setKey(ORG_KDE_KWIN_KEYSTATE_KEY_SHIFT, pressed);
    compositor->setKey(ORG_KDE_KWIN_KEYSTATE_KEY_SHIFT, pressed);
    compositor->setKey(ORG_KDE_KWIN_KEYSTATE_KEY_META, pressed);
    EXPECT_TRUE(come({ModifierFlag::shift, ModifierFlag::command}));
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(WaylandKeyStatesTest, IsNotOfferedByACompositorThatTellsOnlyOfLocks) {
    connect({.keyStates = 4});
    EXPECT_FALSE(states.isOffered());
}

TEST_F(WaylandKeyStatesTest, ForgetsTheKeysOfACompositorThatHasEndedAndAsksTheNext) {
    connect();
    compositor->setKey(ORG_KDE_KWIN_KEYSTATE_KEY_CONTROL, pressed);
    ASSERT_TRUE(come({ModifierFlag::control}));
    QSignalSpy offers(&states, &WaylandKeyStates::offerChanged);
    compositor.reset();
    EXPECT_TRUE(come({}));
    EXPECT_FALSE(states.isOffered());
    start();
    compositor->setKey(ORG_KDE_KWIN_KEYSTATE_KEY_ALT, pressed);
    EXPECT_TRUE(come({ModifierFlag::option}));
    EXPECT_TRUE(states.isOffered());
    EXPECT_EQ(offers.count(), 2);
}

} // namespace
} // namespace tilewright::testing
