// Which desktop serves a session: one test for each row of what can be found.

#include <Tilewright/DesktopChoice.h>

#include <gtest/gtest.h>

using namespace tilewright;
using XServer = SessionFacts::XServer;

namespace {

constexpr bool compositor = true;
constexpr bool noCompositor = false;
constexpr bool calledWayland = true;
constexpr bool notCalledWayland = false;
constexpr bool gnomeShell = true;

DesktopChoice choiceFor(XServer server, bool hasWaylandCompositor, bool isCalledWayland,
                        bool hasGnomeShell = false) {
    return chooseDesktop({.xServer = server,
                          .hasWaylandCompositor = hasWaylandCompositor,
                          .isCalledWayland = isCalledWayland,
                          .hasGnomeShell = hasGnomeShell});
}

/// With KWin on the session bus.
DesktopChoice choiceWithKWin(XServer server, bool hasWaylandCompositor, bool isCalledWayland) {
    return chooseDesktop({.xServer = server,
                          .hasWaylandCompositor = hasWaylandCompositor,
                          .isCalledWayland = isCalledWayland,
                          .hasKWin = true});
}

} // namespace

TEST(DesktopChoice, IsX11InAnX11Session) {
    EXPECT_EQ(choiceFor(XServer::independent, noCompositor, notCalledWayland), DesktopChoice::x11);
}

TEST(DesktopChoice, IsX11WhateverStaleVariablesSayOfAWaylandSession) {
    EXPECT_EQ(choiceFor(XServer::independent, noCompositor, calledWayland), DesktopChoice::x11);
}

TEST(DesktopChoice, IsX11WhereACompositorRunsInAWindowOfAnX11Session) {
    EXPECT_EQ(choiceFor(XServer::independent, compositor, notCalledWayland), DesktopChoice::x11);
}

TEST(DesktopChoice, IsTheServerBesideTheCompositorOfAWaylandSession) {
    EXPECT_EQ(choiceFor(XServer::besideWayland, compositor, calledWayland),
              DesktopChoice::x11BesideWayland);
}

TEST(DesktopChoice, BelievesTheServerMoreThanTheEnvironment) {
    EXPECT_EQ(choiceFor(XServer::besideWayland, compositor, notCalledWayland),
              DesktopChoice::x11BesideWayland);
    EXPECT_EQ(choiceFor(XServer::besideWayland, noCompositor, notCalledWayland),
              DesktopChoice::x11BesideWayland)
        << "the compositor's socket is not named here";
}

TEST(DesktopChoice, BelievesTheEnvironmentWhereTheServerDoesNotSayWhoseItIs) {
    EXPECT_EQ(choiceFor(XServer::independent, compositor, calledWayland),
              DesktopChoice::x11BesideWayland);
}

TEST(DesktopChoice, IsWaylandWithoutAnXServer) {
    EXPECT_EQ(choiceFor(XServer::none, compositor, calledWayland), DesktopChoice::wayland);
    EXPECT_EQ(choiceFor(XServer::none, compositor, notCalledWayland), DesktopChoice::wayland);
}

TEST(DesktopChoice, IsNoneWhereNothingAnswersWhateverTheEnvironmentSays) {
    EXPECT_EQ(choiceFor(XServer::none, noCompositor, notCalledWayland), DesktopChoice::none);
    EXPECT_EQ(choiceFor(XServer::none, noCompositor, calledWayland), DesktopChoice::none);
}

TEST(DesktopChoice, IsGnomeInAWaylandSessionOfItWithOrWithoutAnXServer) {
    for (const bool isCalled : {calledWayland, notCalledWayland}) {
        EXPECT_EQ(choiceFor(XServer::besideWayland, compositor, isCalled, gnomeShell),
                  DesktopChoice::gnome);
        EXPECT_EQ(choiceFor(XServer::none, compositor, isCalled, gnomeShell), DesktopChoice::gnome);
    }
    EXPECT_EQ(choiceFor(XServer::independent, compositor, calledWayland, gnomeShell),
              DesktopChoice::gnome)
        << "the server does not say whose it is";
}

TEST(DesktopChoice, IsX11InAnX11SessionOfGnome) {
    for (const bool isCalled : {calledWayland, notCalledWayland})
        EXPECT_EQ(choiceFor(XServer::independent, noCompositor, isCalled, gnomeShell),
                  DesktopChoice::x11);
    EXPECT_EQ(choiceFor(XServer::independent, compositor, notCalledWayland, gnomeShell),
              DesktopChoice::x11)
        << "a compositor in a window";
}

TEST(DesktopChoice, IsNotGnomeWhereItsCompositorCannotBeReached) {
    EXPECT_EQ(choiceFor(XServer::besideWayland, noCompositor, calledWayland, gnomeShell),
              DesktopChoice::x11BesideWayland);
    EXPECT_EQ(choiceFor(XServer::none, noCompositor, calledWayland, gnomeShell),
              DesktopChoice::none);
}

TEST(DesktopChoice, IsTheServerBesideGnomeWhereQtIsNoClientOfCompositors) {
    EXPECT_EQ(chooseDesktop({.xServer = XServer::besideWayland,
                             .hasWaylandCompositor = true,
                             .hasGnomeShell = true,
                             .hasQtWayland = false}),
              DesktopChoice::x11BesideWayland);
}

TEST(DesktopChoice, IsPlasmaInAWaylandSessionOfItWithOrWithoutAnXServer) {
    for (const bool isCalled : {calledWayland, notCalledWayland}) {
        EXPECT_EQ(choiceWithKWin(XServer::besideWayland, compositor, isCalled),
                  DesktopChoice::plasma);
        EXPECT_EQ(choiceWithKWin(XServer::none, compositor, isCalled), DesktopChoice::plasma);
    }
    EXPECT_EQ(choiceWithKWin(XServer::independent, compositor, calledWayland),
              DesktopChoice::plasma)
        << "the server does not say whose it is";
}

TEST(DesktopChoice, IsX11InAnX11SessionOfPlasmaWhoseWindowManagerHasTheSameName) {
    for (const bool isCalled : {calledWayland, notCalledWayland})
        EXPECT_EQ(choiceWithKWin(XServer::independent, noCompositor, isCalled), DesktopChoice::x11);
    EXPECT_EQ(choiceWithKWin(XServer::independent, compositor, notCalledWayland),
              DesktopChoice::x11)
        << "a compositor in a window";
}

TEST(DesktopChoice, IsTheServerBesidePlasmaWhereQtIsNoClientOfCompositors) {
    EXPECT_EQ(chooseDesktop({.xServer = XServer::besideWayland,
                             .hasWaylandCompositor = true,
                             .hasKWin = true,
                             .hasQtWayland = false}),
              DesktopChoice::x11BesideWayland);
}

TEST(NoDesktopMessage, SaysWhatWasLookedForAndWhere) {
    EXPECT_EQ(noDesktopMessage(QStringLiteral(":7"), QStringLiteral("/run/user/1/wayland-0")),
              QStringLiteral("no desktop was found: neither an X server at :7 nor a Wayland "
                             "compositor at /run/user/1/wayland-0 answers"));
    EXPECT_EQ(noDesktopMessage({}, {}),
              QStringLiteral("no desktop was found: neither an X server (DISPLAY names none) nor a "
                             "Wayland compositor (XDG_RUNTIME_DIR names none) answers"));
}
