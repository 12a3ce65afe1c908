#include "MockCompanion.h"
#include "PrivateBus.h"
#include "SettingsProgram.h"

#include <Gnome/GnomeExtension.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

using State = GnomeExtension::State;

class GnomeExtensionTest : public ::testing::Test {
protected:
    void putFilesThere() const {
        const QString place = folder.filePath(GnomeCompanionFiles::packagedName());
        EXPECT_TRUE(QDir().mkpath(place));
        QFile file(place + QStringLiteral("/metadata.json"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    }
    [[nodiscard]] bool becomes(State state) {
        return waitUntil([&] { return extension.state() == state; });
    }

    PrivateBus bus;
    QTemporaryDir folder;
    SettingsProgram settings;
    MessageBus own{bus.connect()};
    GnomeExtension extension{
        own, GnomeCompanionFiles({QStringLiteral("/nonexistent"), folder.path()}, {}),
        settings.program()};
};

} // namespace

TEST_F(GnomeExtensionTest, IsUnknownWithoutAShell) {
    PrivateBus::takeAllIn(own.connection());
    QCoreApplication::processEvents();
    EXPECT_EQ(extension.state(), State::unknown);
    extension.turnOn();
    EXPECT_EQ(extension.state(), State::unknown);
}

TEST_F(GnomeExtensionTest, TellsWhetherTheShellHasYetToSeeItOrItIsNowhere) {
    MockCompanion shell(bus.connect());
    EXPECT_TRUE(becomes(State::notInstalled));
    putFilesThere();
    extension.refresh();
    EXPECT_TRUE(becomes(State::notSeen));
}

TEST_F(GnomeExtensionTest, IsToRunFromTheNextLoginOnOnceItsFilesAreThere) {
    MockCompanion shell(bus.connect());
    ASSERT_TRUE(becomes(State::notInstalled));
    EXPECT_EQ(settings.calls(), QStringList());
    putFilesThere();
    extension.refresh();
    ASSERT_TRUE(becomes(State::notSeen));
    EXPECT_TRUE(waitUntil([&] {
        return settings.started() == "['" + GnomeCompanionFiles::packagedName().toUtf8() + "']";
    }));
}

TEST_F(GnomeExtensionTest, IsWhatTheShellSaysOfIt) {
    MockCompanion shell(bus.connect());
    const std::map<int, State> states{{1, State::active},  {2, State::off}, {3, State::refused},
                                      {4, State::refused}, {6, State::off}, {8, State::active}};
    for (const auto& [told, state] : states) {
        shell.extensionState = told;
        shell.announceExtension();
        EXPECT_TRUE(becomes(state)) << told;
    }
}

TEST_F(GnomeExtensionTest, IsTurnedOnAlsoWhereTheUserHasAllExtensionsOff) {
    MockCompanion shell(bus.connect());
    shell.extensionState = 2;
    shell.areExtensionsOn = false;
    shell.announceExtension();
    ASSERT_TRUE(becomes(State::off));
    extension.turnOn();
    EXPECT_TRUE(becomes(State::active));
    EXPECT_EQ(shell.enablings, 1);
    EXPECT_TRUE(shell.areExtensionsOn);
    extension.turnOn();
    PrivateBus::takeAllIn(own.connection());
    QCoreApplication::processEvents();
    EXPECT_EQ(shell.enablings, 1) << "it is on already";
}

TEST_F(GnomeExtensionTest, TellsThatTheShellHasStoppedItAndNotThatNothingIsKnown) {
    MockCompanion shell(bus.connect());
    shell.extensionState = 1;
    int stops = 0;
    QObject::connect(&extension, &GnomeExtension::stopped, &extension, [&] { ++stops; });
    ASSERT_TRUE(becomes(State::active));
    shell.extensionState = 2;
    shell.announceExtension();
    ASSERT_TRUE(becomes(State::off));
    EXPECT_EQ(stops, 1);
    shell.extensionState = 1;
    shell.announceExtension();
    ASSERT_TRUE(becomes(State::active));
    shell.leave();
    EXPECT_TRUE(becomes(State::unknown));
    EXPECT_EQ(stops, 1) << "a shell that does not answer may still run it";
}

TEST_F(GnomeExtensionTest, TellsThatItWasStoppedAgainBeforeAnybodySawItRun) {
    MockCompanion shell(bus.connect());
    shell.extensionState = 2;
    shell.announceExtension();
    ASSERT_TRUE(becomes(State::off));
    int stops = 0;
    QObject::connect(&extension, &GnomeExtension::stopped, &extension, [&] { ++stops; });
    // On and off again: by the time that it is asked about, it is off.
    shell.announceExtension();
    EXPECT_TRUE(waitUntil([&] { return stops > 0; }));
    EXPECT_EQ(extension.state(), State::off);
}

TEST_F(GnomeExtensionTest, HearsNobodyButTheShell) {
    MockCompanion shell(bus.connect());
    shell.extensionState = 1;
    ASSERT_TRUE(waitUntil([&] {
        shell.announceExtension();
        return extension.state() == State::active;
    }));
    shell.extensionState = 2;
    QDBusMessage signal = QDBusMessage::createSignal(QStringLiteral("/org/gnome/Shell"),
                                                     QStringLiteral("org.gnome.Shell.Extensions"),
                                                     QStringLiteral("ExtensionStateChanged"));
    signal << GnomeCompanionFiles::packagedName() << QVariantMap();
    const QDBusConnection stranger = bus.connect();
    stranger.send(signal);
    PrivateBus::takeAllIn(stranger);
    PrivateBus::takeAllIn(own.connection());
    QCoreApplication::processEvents();
    EXPECT_EQ(extension.state(), State::active);
    shell.announceExtension();
    EXPECT_TRUE(becomes(State::off));
}

} // namespace tilewright::testing
