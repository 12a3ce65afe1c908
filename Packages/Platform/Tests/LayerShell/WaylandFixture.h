#pragma once

#include "FakeCompositor.h"

#include <LayerShell/WaylandConnection.h>
#include <Platform/QtMainLoop.h>
#include <Waiting.h>

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <optional>

namespace tilewright::testing {

/// A folder with the socket of a compositor in it, once that is started.
class WaylandFixture : public ::testing::Test {
protected:
    void start(FakeCompositor::Offers offers = {}) {
        compositor.emplace(folder.path(), name, offers);
    }
    /// Starts it with one display, and connects.
    void connect(FakeCompositor::Offers offers = {}) {
        start(offers);
        compositor->addOutput({});
        ASSERT_TRUE(waitUntil([&] { return connection.isReady(); }));
    }
    [[nodiscard]] QString socketPath() const { return folder.filePath(name); }

    const QString name = QStringLiteral("wayland-test");
    QTemporaryDir folder;
    QtMainLoop loop;
    std::optional<FakeCompositor> compositor;
    WaylandConnection connection{loop, socketPath()};
};

} // namespace tilewright::testing
