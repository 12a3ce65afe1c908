// Whether a Wayland compositor is there, told from sockets as compositors make them.

#include <FreeDesktop/WaylandSocket.h>
#include <ListeningSocket.h>

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tilewright;
using namespace tilewright::testing;
using namespace Qt::StringLiterals;

namespace {

class WaylandSocketTest : public ::testing::Test {
protected:
    WaylandSocketTest() { environment.insert(u"XDG_RUNTIME_DIR"_s, folder.path()); }

    QTemporaryDir folder;
    QProcessEnvironment environment;
};

} // namespace

TEST_F(WaylandSocketTest, IsInTheRuntimeFolderByTheDisplaysName) {
    EXPECT_EQ(waylandSocketPath(environment), folder.filePath(u"wayland-0"_s));
    environment.insert(u"WAYLAND_DISPLAY"_s, u"wayland-7"_s);
    EXPECT_EQ(waylandSocketPath(environment), folder.filePath(u"wayland-7"_s));
    environment.insert(u"WAYLAND_DISPLAY"_s, u"/elsewhere/wayland"_s);
    EXPECT_EQ(waylandSocketPath(environment), u"/elsewhere/wayland"_s);
}

TEST_F(WaylandSocketTest, IsNowhereWithoutARuntimeFolder) {
    environment.remove(u"XDG_RUNTIME_DIR"_s);
    EXPECT_EQ(waylandSocketPath(environment), QString());
    EXPECT_FALSE(isWaylandCompositorThere(environment));
}

TEST_F(WaylandSocketTest, AnswersWhileACompositorListensAndNotOnceItIsGone) {
    EXPECT_FALSE(isWaylandCompositorThere(environment)) << "no socket yet";
    {
        const ListeningSocket compositor(folder.filePath(u"wayland-0"_s));
        EXPECT_TRUE(isWaylandCompositorThere(environment));
        // Nobody accepts: the queue fills.
        for (int i = 0; i < 5; ++i)
            EXPECT_TRUE(isWaylandCompositorThere(environment));
    }
    EXPECT_TRUE(QFile::exists(folder.filePath(u"wayland-0"_s)));
    EXPECT_FALSE(isWaylandCompositorThere(environment)) << "left behind";
}

TEST_F(WaylandSocketTest, IsThereWhereAConnectionWasHandedOver) {
    environment.insert(u"WAYLAND_SOCKET"_s, u"5"_s);
    EXPECT_TRUE(isWaylandCompositorThere(environment));
}

TEST_F(WaylandSocketTest, IsNotThereByANameThatIsTooLong) {
    environment.insert(u"WAYLAND_DISPLAY"_s, u'/' + QString(200, u'x'));
    EXPECT_FALSE(isWaylandCompositorThere(environment));
}
