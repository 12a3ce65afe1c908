#include <X11/X11InputState.h>

#include <gmock/gmock.h>
#include <random>

namespace tilewright {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

constexpr ModifierFlags none;
constexpr ModifierFlags control{ModifierFlag::control};
constexpr ModifierFlags shift{ModifierFlag::shift};

struct X11InputStateTest : ::testing::Test {
    std::vector<EventType> told() {
        std::vector<EventType> types;
        for (const auto& report : state.takeReports(owners))
            types.push_back(report.event.type);
        return types;
    }
    std::vector<std::pair<EventType, ModifierFlags>> toldWithFlags() {
        std::vector<std::pair<EventType, ModifierFlags>> events;
        for (const auto& report : state.takeReports(owners))
            events.emplace_back(report.event.type, report.event.modifierFlags);
        return events;
    }
    void settle() { state.settle(server); }
    void pressAndSettleWith(ModifierFlags held) {
        static_cast<void>(told());
        state.pressed(1);
        server.isLeftButtonDown = true;
        settle();
        EXPECT_THAT(toldWithFlags(), ElementsAre(Pair(EventType::leftMouseDown, held)));
    }
    void pressAndSettle() {
        state.pressed(1);
        server.isLeftButtonDown = true;
        settle();
        EXPECT_THAT(told(), ElementsAre(EventType::leftMouseDown));
    }

    X11InputOwners owners;
    X11InputServerState server;
    X11InputState state;
};

TEST_F(X11InputStateTest, TellsADragFromPressToRelease) {
    pressAndSettle();
    state.moved();
    settle();
    state.released(1);
    server.isLeftButtonDown = false;
    settle();
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseDragged, EventType::leftMouseUp));
}

TEST_F(X11InputStateTest, MergesTheMovesOfOneReadingIntoOne) {
    pressAndSettle();
    for (int i = 0; i < 50; ++i)
        state.moved();
    settle();
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseDragged));
}

TEST_F(X11InputStateTest, TellsNothingOfMovesWithoutTheLeftButton) {
    state.moved();
    settle();
    state.pressed(3);
    EXPECT_THAT(told(), ElementsAre(EventType::rightMouseDown));
    state.moved();
    settle();
    EXPECT_THAT(told(), IsEmpty());
}

TEST_F(X11InputStateTest, TellsAMoveBeforeTheReleaseThatFollowedIt) {
    pressAndSettle();
    state.moved();
    state.released(1);
    server.isLeftButtonDown = false;
    settle();
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseDragged, EventType::leftMouseUp));
}

TEST_F(X11InputStateTest, KeepsTheOrderOfAReleaseAndALetGoKey) {
    server.modifiers = control;
    state.start(server);
    pressAndSettle();
    state.moved();
    state.released(1);
    state.modifiersChanged(none);
    server = {};
    settle();
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseDragged, EventType::leftMouseUp,
                                    EventType::flagsChanged));
}

TEST_F(X11InputStateTest, TellsAModifierChangeOnlyWhereOneHappened) {
    state.modifiersChanged(control);
    state.modifiersChanged(control);
    server.modifiers = control;
    settle();
    const auto reports = state.takeReports(owners);
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].event.type, EventType::flagsChanged);
    EXPECT_EQ(reports[0].event.modifierFlags, control);
}

TEST_F(X11InputStateTest, EveryReportCarriesTheModifiersOfItsMoment) {
    pressAndSettle();
    state.modifiersChanged(control);
    server.modifiers = control;
    state.moved();
    settle();
    for (const auto& report : state.takeReports(owners))
        EXPECT_EQ(report.event.modifierFlags, control);
}

TEST_F(X11InputStateTest, FollowsTheButtonMapping) {
    state.setButtonMapping({3, 2, 1});
    state.pressed(1);
    EXPECT_THAT(told(), ElementsAre(EventType::rightMouseDown));
    state.pressed(3);
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseDown));
    state.released(1);
    EXPECT_THAT(told(), IsEmpty());
    state.released(3);
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseUp));
}

TEST_F(X11InputStateTest,
       AReleaseCountsForTheButtonThatWasPressedThoughTheMappingChangedMeanwhile) {
    pressAndSettle();
    state.setButtonMapping({3, 2, 1});
    state.released(1);
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseUp));
}

TEST_F(X11InputStateTest, TellsNothingOfWheelsAndDeadButtons) {
    state.setButtonMapping({1, 2, 3, 4, 5, 6, 7, 0, 9});
    for (const quint32 button : {4U, 5U, 6U, 7U, 8U})
        state.pressed(button);
    EXPECT_THAT(told(), IsEmpty());
    state.pressed(2);
    state.pressed(9);
    EXPECT_THAT(told(), ElementsAre(EventType::otherMouseDown, EventType::otherMouseDown));
}

TEST_F(X11InputStateTest, SynthesisesAReleaseThatWasLost) {
    pressAndSettle();
    server.isLeftButtonDown = false;
    state.moved();
    settle();
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseDragged, EventType::leftMouseUp));
    EXPECT_FALSE(state.isLeftButtonDown());
}

TEST_F(X11InputStateTest, ALostReleaseThatTurnsUpLateIsNotToldTwice) {
    pressAndSettle();
    server.isLeftButtonDown = false;
    settle();
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseUp));
    state.released(1);
    settle();
    EXPECT_THAT(told(), IsEmpty());
}

TEST_F(X11InputStateTest, AReleaseLostBetweenTwoPressesIsToldBeforeTheSecond) {
    pressAndSettle();
    state.pressed(1);
    settle();
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseUp, EventType::leftMouseDown));
}

TEST_F(X11InputStateTest, FindsAPressThatWasLost) {
    server.isLeftButtonDown = true;
    settle();
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseDown));
    state.moved();
    settle();
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseDragged));
}

TEST_F(X11InputStateTest, FindsAModifierChangeThatWasLost) {
    server.modifiers = control;
    settle();
    EXPECT_THAT(told(), ElementsAre(EventType::flagsChanged));
    server.modifiers = none;
    settle();
    EXPECT_THAT(told(), ElementsAre(EventType::flagsChanged));
    EXPECT_EQ(state.modifiers(), none);
}

TEST_F(X11InputStateTest, WhenKeyAndButtonWereBothLostTheKeyIsToldFirst) {
    server.modifiers = control;
    state.start(server);
    pressAndSettle();
    server = {};
    settle();
    EXPECT_THAT(told(), ElementsAre(EventType::flagsChanged, EventType::leftMouseUp));
}

TEST_F(X11InputStateTest, APressThatTheServerHoldsBackIsNoDragUntilItCounts) {
    state.pressed(1);
    settle();
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseDown));
    state.moved();
    settle();
    EXPECT_THAT(told(), IsEmpty());
    server.isLeftButtonDown = true;
    state.moved();
    settle();
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseDragged));
}

TEST_F(X11InputStateTest, AReleaseThatTheServerHoldsBackIsNoNewPress) {
    pressAndSettle();
    state.released(1);
    settle();
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseUp));
    settle();
    EXPECT_THAT(told(), IsEmpty());
    server.isLeftButtonDown = false;
    settle();
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_FALSE(state.isLeftButtonDown());
}

TEST_F(X11InputStateTest, APressThatTheServerNeverCountsEndsInTheLongRun) {
    state.pressed(1);
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseDown));
    for (int i = 0; i < 1000 && state.isLeftButtonDown(); ++i) {
        state.moved();
        settle();
    }
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseUp));
}

TEST_F(X11InputStateTest, AServerThatDoesNotAnswerChangesNothing) {
    pressAndSettle();
    state.moved();
    state.settle(std::nullopt);
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseDragged));
    EXPECT_TRUE(state.isLeftButtonDown());
}

TEST_F(X11InputStateTest, ADragBelongsToWhereItBeganAndKeysToWhoHasTheKeyboard) {
    owners.pointer = X11InputOwner::own;
    state.pressed(1);
    EXPECT_EQ(state.takeReports(owners).at(0).owner, X11InputOwner::own);
    owners.pointer = X11InputOwner::other;
    server.isLeftButtonDown = true;
    state.moved();
    settle();
    state.modifiersChanged(control);
    state.released(1);
    state.pressed(3);
    const auto reports = state.takeReports(owners);
    ASSERT_EQ(reports.size(), 4U);
    EXPECT_EQ(reports[0].owner, X11InputOwner::own);
    EXPECT_EQ(reports[1].owner, X11InputOwner::other);
    EXPECT_EQ(reports[2].owner, X11InputOwner::own);
    EXPECT_EQ(reports[3].owner, X11InputOwner::other);
    owners.keyboard = X11InputOwner::own;
    state.modifiersChanged(none);
    EXPECT_EQ(state.takeReports(owners).at(0).owner, X11InputOwner::own);
}

TEST_F(X11InputStateTest, NeedsOwnersForPressesAndKeysAloneSinceADragHasItsOwn) {
    EXPECT_FALSE(state.needsOwners());
    state.pressed(1);
    EXPECT_TRUE(state.needsOwners());
    told();
    server.isLeftButtonDown = true;
    state.moved();
    settle();
    state.released(1);
    EXPECT_FALSE(state.needsOwners());
    EXPECT_THAT(told(), ElementsAre(EventType::leftMouseDragged, EventType::leftMouseUp));
    state.modifiersChanged(control);
    EXPECT_TRUE(state.needsOwners());
}

TEST_F(X11InputStateTest, EscapeTakesTheKeysAwayUntilTheButtonIsLetGo) {
    server.modifiers = control;
    state.modifiersChanged(control);
    pressAndSettleWith(control);
    state.escapePressed();
    state.moved();
    settle();
    EXPECT_THAT(toldWithFlags(), ElementsAre(Pair(EventType::flagsChanged, none),
                                             Pair(EventType::leftMouseDragged, none)));
    EXPECT_EQ(state.modifiers(), none);
    server.modifiers = shift;
    state.modifiersChanged(shift);
    state.escapePressed();
    settle();
    EXPECT_THAT(told(), IsEmpty());
    state.released(1);
    server.isLeftButtonDown = false;
    settle();
    EXPECT_THAT(toldWithFlags(), ElementsAre(Pair(EventType::leftMouseUp, none),
                                             Pair(EventType::flagsChanged, shift)));
    state.escapePressed();
    settle();
    EXPECT_THAT(told(), IsEmpty()) << "nothing is dragged";
    EXPECT_EQ(state.modifiers(), shift);
}

TEST_F(X11InputStateTest, EscapeWithoutAKeyTellsNothingAndCallsTheDragOffAllTheSame) {
    pressAndSettle();
    state.escapePressed();
    state.modifiersChanged(control);
    server.modifiers = control;
    settle();
    EXPECT_THAT(told(), IsEmpty());
    state.released(1);
    server.isLeftButtonDown = false;
    settle();
    EXPECT_THAT(toldWithFlags(), ElementsAre(Pair(EventType::leftMouseUp, none),
                                             Pair(EventType::flagsChanged, control)));
    pressAndSettleWith(control);
}

TEST_F(X11InputStateTest, StartsInTheMiddleOfADrag) {
    state.start({true, control}, X11InputOwner::own);
    EXPECT_TRUE(state.isLeftButtonDown());
    EXPECT_THAT(told(), IsEmpty());
    state.released(1);
    const auto reports = state.takeReports(owners);
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].event.type, EventType::leftMouseUp);
    EXPECT_EQ(reports[0].owner, X11InputOwner::own);
}

TEST_F(X11InputStateTest, WhoIsFarBehindHearsOfOnePressForAllThatHeMissed) {
    for (std::size_t i = 0; i < X11InputState::mostReports; ++i) {
        state.modifiersChanged(control);
        state.pressed(1);
        state.moved();
        state.released(1);
        state.modifiersChanged(none);
        state.pressed(3);
    }
    const auto events = told();
    EXPECT_LE(events.size(), X11InputState::mostReports);
    EXPECT_GT(events.size(), 3U);
    EXPECT_THAT(
        std::vector(events.begin(), events.begin() + 3),
        ElementsAre(EventType::leftMouseDown, EventType::leftMouseUp, EventType::rightMouseDown));
}

TEST_F(X11InputStateTest, ADragThatEndedFarBehindEndsWithoutKeys) {
    server.modifiers = control;
    state.modifiersChanged(control);
    pressAndSettleWith(control);
    state.released(1);
    for (std::size_t i = 0; i < X11InputState::mostReports; ++i)
        state.modifiersChanged(i % 2 == 0 ? none : control);
    EXPECT_THAT(toldWithFlags(),
                ElementsAre(Pair(EventType::flagsChanged, none), Pair(EventType::leftMouseUp, none),
                            Pair(EventType::flagsChanged, control)));
}

TEST_F(X11InputStateTest, ADragThatLastsGoesOnHoweverFarBehind) {
    pressAndSettleWith(none);
    for (std::size_t i = 0; i <= X11InputState::mostReports; ++i)
        state.modifiersChanged(i % 2 == 0 ? control : none);
    EXPECT_THAT(toldWithFlags(), ElementsAre(Pair(EventType::flagsChanged, control)));
    for (std::size_t i = 0; i < X11InputState::mostReports; ++i) {
        state.moved();
        state.modifiersChanged(i % 2 == 0 ? none : control);
    }
    const auto events = toldWithFlags();
    EXPECT_LE(events.size(), X11InputState::mostReports);
    EXPECT_EQ(events.front(), std::pair(EventType::leftMouseDragged, control));
}

TEST_F(X11InputStateTest, ADragBegunWhileFarBehindIsTold) {
    for (std::size_t i = 0; i < X11InputState::mostReports / 2; ++i) {
        state.pressed(1);
        state.released(1);
    }
    state.pressed(1);
    state.moved();
    state.modifiersChanged(shift);
    EXPECT_THAT(toldWithFlags(), ElementsAre(Pair(EventType::leftMouseDown, none),
                                             Pair(EventType::leftMouseUp, none),
                                             Pair(EventType::leftMouseDown, none),
                                             Pair(EventType::leftMouseDragged, none),
                                             Pair(EventType::flagsChanged, shift)));
}

/// A server whose every event may be lost, late for the server's own count, or both.
class UnreliableInput {
public:
    explicit UnreliableInput(unsigned seed)
        : random_(seed) {
        state_.start(truth_);
    }

    void step() {
        switch (below(7)) {
        case 6:
            state_.escapePressed();
            break;
        case 0:
            setButton(!truth_.isLeftButtonDown);
            break;
        case 1:
            truth_.modifiers = ModifierFlags(static_cast<quint32>(below(16)) << 17);
            if (below(4) != 0)
                state_.modifiersChanged(truth_.modifiers);
            break;
        case 2:
        case 3:
            if (state_.isLeftButtonDown())
                state_.moved();
            break;
        default:
            state_.settle(below(50) == 0 ? std::nullopt : std::optional(counted()));
            break;
        }
    }

    /// Nothing more is lost or late: what the server says prevails, in the end also over what was
    /// heard and never counted.
    void comeToRest() {
        held_ = false;
        for (int i = 0; i < 300; ++i)
            state_.settle(counted());
        check();
        EXPECT_EQ(state_.isLeftButtonDown(), truth_.isLeftButtonDown);
        // What Escape has called off ends with the button.
        truth_.isLeftButtonDown = false;
        for (int i = 0; i < 300; ++i)
            state_.settle(counted());
        check();
        EXPECT_EQ(state_.modifiers(), truth_.modifiers);
    }

    /// What was told so far fits together, and with how things are.
    void check() {
        const auto reports = state_.takeReports({});
        EXPECT_LE(reports.size(), X11InputState::mostReports);
        for (const auto& report : reports) {
            switch (report.event.type) {
            case EventType::leftMouseDown:
                EXPECT_FALSE(isDown_);
                isDown_ = true;
                break;
            case EventType::leftMouseUp:
                EXPECT_TRUE(isDown_);
                isDown_ = false;
                break;
            case EventType::leftMouseDragged:
                EXPECT_TRUE(isDown_);
                break;
            case EventType::flagsChanged:
                EXPECT_NE(report.event.modifierFlags, flags_);
                flags_ = report.event.modifierFlags;
                break;
            default:
                ADD_FAILURE();
            }
        }
        EXPECT_EQ(isDown_, state_.isLeftButtonDown());
        EXPECT_EQ(flags_, state_.modifiers());
    }

private:
    int below(int bound) { return std::uniform_int_distribution(0, bound - 1)(random_); }

    void setButton(bool isDown) {
        held_ = below(5) == 0;
        heldState_ = truth_.isLeftButtonDown;
        truth_.isLeftButtonDown = isDown;
        if (below(4) == 0)
            return;
        if (isDown)
            state_.pressed(1);
        else
            state_.released(1);
    }

    X11InputServerState counted() const {
        return {held_ ? heldState_ : truth_.isLeftButtonDown, truth_.modifiers};
    }

    std::mt19937 random_;
    X11InputState state_;
    X11InputServerState truth_;
    bool held_ = false;
    bool heldState_ = false;
    bool isDown_ = false;
    ModifierFlags flags_;
};

TEST(X11InputState, NothingSticksWhateverIsLostOrLate) {
    for (unsigned seed = 0; seed < 2'000; ++seed) {
        SCOPED_TRACE(seed);
        UnreliableInput input(seed);
        for (int i = 0; i < 200; ++i) {
            input.step();
            input.check();
        }
        input.comeToRest();
        if (::testing::Test::HasFailure())
            return;
    }
}

TEST(X11InputState, WhatIsLeftOutForWhoIsFarBehindFitsTogether) {
    for (unsigned seed = 0; seed < 1'000; ++seed) {
        SCOPED_TRACE(seed);
        UnreliableInput input(seed);
        for (int i = 0; i < 4; ++i) {
            for (int j = 0; j < 500; ++j)
                input.step();
            input.check();
        }
        input.comeToRest();
        if (::testing::Test::HasFailure())
            return;
    }
}

} // namespace
} // namespace tilewright
