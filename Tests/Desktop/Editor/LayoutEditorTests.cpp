// The layout editor in a real window, worked with the pointer as a user does, and what it leaves on
// disk.

#include <DesktopSession.h>
#include <Waiting.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <csignal>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tilewright::testing {
namespace {

class LayoutEditorOnScreen : public ::testing::Test {
protected:
    LayoutEditorOnScreen() {
        // The window first: a request to map one that arrives while the window manager starts can
        // get lost, whereas it adopts every window that is there.
        startEditor();
        EXPECT_TRUE(waitUntil([&] {
            for (const auto window : desktop.inspector().allWindows()) {
                if (desktop.inspector().title(window) == u"Layouts"_s &&
                    desktop.inspector().isMapped(window))
                    return true;
            }
            return false;
        }));
        EXPECT_TRUE(desktop.startWindowManager(WindowManagerKind::openbox));
        waitForEditor();
    }

    void startEditor() {
        QFile::remove(reportFile());
        editor = &desktop.start(QStringLiteral(TILEWRIGHT_EDITOR_WINDOW),
                                {desktop.home(), reportFile()});
    }
    void waitForEditor() {
        ASSERT_TRUE(waitUntil([&] { return !placeNow(u"Canvas"_s).isEmpty(); }))
            << contents(reportFile()).toStdString() << windowsOnScreen();
    }
    /// For the message of a failed test.
    [[nodiscard]] std::string windowsOnScreen() {
        QStringList lines{desktop.windowManager().isRunning() ? u"window manager runs"_s
                                                              : u"no window manager"_s,
                          editor->isRunning() ? u"editor runs"_s : u"no editor"_s};
        for (const auto window : desktop.inspector().allWindows()) {
            const QString title = desktop.inspector().title(window);
            if (!title.isEmpty())
                lines.append(title + (desktop.inspector().isMapped(window) ? u" mapped"_s : u""_s));
        }
        return lines.join(u'\n').toStdString();
    }
    void closeEditor() {
        editor->stop();
        ASSERT_TRUE(
            waitUntil([&] { return !desktop.inspector().clientTitled(u"Layouts"_s).has_value(); }));
    }

    [[nodiscard]] QString reportFile() const { return desktop.home() + u"/report.json"_s; }
    [[nodiscard]] QString layoutsFile() const {
        return desktop.home() + u"/Tilewright/layouts.json"_s;
    }
    static QByteArray contents(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    [[nodiscard]] QJsonObject report() const {
        return QJsonDocument::fromJson(contents(reportFile())).object();
    }

    /// Where something stands on the screen now; empty while it does not.
    [[nodiscard]] QRectF placeNow(const QString& name) {
        const QJsonArray place = report()[u"places"].toObject()[name].toArray();
        if (place.size() != 4)
            return {};
        const auto window = desktop.inspector().clientTitled(u"Layouts"_s);
        if (!window)
            return {};
        return QRectF(place[0].toDouble(), place[1].toDouble(), place[2].toDouble(),
                      place[3].toDouble())
            .translated(desktop.inspector().clientFrame(*window).topLeft());
    }
    /// Clicks an entry of the open menu.
    void choose(const QString& title) {
        QJsonArray place;
        EXPECT_TRUE(waitUntil([&] {
            place = report()[u"menu"].toObject()[title].toArray();
            return place.size() == 4;
        })) << title.toStdString();
        desktop.input().click(
            {place[0].toInt() + (place[2].toInt() / 2), place[1].toInt() + (place[3].toInt() / 2)});
    }
    /// Where something stands once it is there.
    QRectF place(const QString& name) {
        QRectF found;
        EXPECT_TRUE(waitUntil([&] {
            found = placeNow(name);
            return !found.isEmpty();
        })) << name.toStdString();
        return found;
    }
    void click(const QString& name) { desktop.input().click(place(name).center().toPoint()); }
    void drag(QPointF from, QPointF by) {
        desktop.input().move(from.toPoint());
        desktop.input().press();
        desktop.input().glide(from.toPoint(), from.toPoint() + by.toPoint(), 15);
        desktop.input().release();
    }
    [[nodiscard]] bool hasShown(const QStringList& toasts) const {
        QStringList shown;
        for (const QJsonValue& toast : report()[u"toasts"].toArray())
            shown.append(toast.toString());
        return shown == toasts;
    }
    /// Whether a tile stands, to half a pixel, where a zone of the canvas does.
    bool tileIsAt(int index, double x, double y, double width, double height) {
        return waitUntil([&] {
            const QRectF canvas = placeNow(u"Canvas"_s);
            const QRectF tile = placeNow(u"tile %1"_s.arg(index));
            const auto isNear = [](double a, double b) { return std::abs(a - b) < 0.5; };
            return isNear(tile.x(), canvas.x() + x * canvas.width()) &&
                   isNear(tile.y(), canvas.y() + y * canvas.height()) &&
                   isNear(tile.width(), width * canvas.width()) &&
                   isNear(tile.height(), height * canvas.height());
        });
    }
    void typeName(const QString& oldName, const QString& name) {
        // Selected by the pointer: what is typed replaces the old name.
        const QRectF field = place(u"Layout name"_s);
        drag(QPointF(field.right() - 3, field.center().y()), QPointF(-field.width() - 10, 0));
        // The window manager sees a click first, and may move the focus about until it passes it
        // on.
        EXPECT_TRUE(waitUntil([&] { return report()[u"selectedText"].toString() == oldName; }));
        desktop.input().type(name);
    }

    static void expectZone(const QJsonObject& zone, const QString& name, double x, double y,
                           double width, double height) {
        static const QRegularExpression canonical(u"^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"_s);
        EXPECT_TRUE(canonical.match(zone[u"id"].toString()).hasMatch());
        EXPECT_EQ(zone[u"name"].toString(), name);
        EXPECT_NEAR(zone[u"x"].toDouble(), x, 1e-9);
        EXPECT_NEAR(zone[u"y"].toDouble(), y, 1e-9);
        EXPECT_NEAR(zone[u"width"].toDouble(), width, 1e-9);
        EXPECT_NEAR(zone[u"height"].toDouble(), height, 1e-9);
        EXPECT_EQ(zone.size(), 6);
    }

    DesktopSession desktop;
    Subprocess* editor = nullptr;
};

TEST_F(LayoutEditorOnScreen, BuildsSavesReopensRenamesAndUpdatesALayout) {
    // From scratch: the left half, then the right half beside it.
    click(u"New"_s);
    ASSERT_TRUE(tileIsAt(0, 0, 0, 0.5, 1));
    click(u"Add Zone"_s);
    ASSERT_TRUE(tileIsAt(1, 0.5, 0, 0.5, 1));

    // The right half's lower edge goes up to a little above the middle.
    const QRectF canvas = place(u"Canvas"_s);
    const int up = static_cast<int>(canvas.height() * 0.5) + 3;
    drag(place(u"Bottom right corner"_s).center(), QPointF(0, -up));
    const double height = 1 - (up / canvas.height());
    ASSERT_TRUE(tileIsAt(1, 0.5, 0, 0.5, height));

    // That leaves room for a quarter below; then the left half goes.
    click(u"Add Zone"_s);
    ASSERT_TRUE(tileIsAt(2, 0.5, 0.5, 0.5, 0.5));
    click(u"tile 0"_s);
    ASSERT_TRUE(waitUntil([&] { return placeNow(u"selected tile"_s) == placeNow(u"tile 0"_s); }));
    click(u"Delete"_s);
    ASSERT_TRUE(tileIsAt(0, 0.5, 0, 0.5, height));

    // The quarter moves to the left and snaps to the canvas; the other's left edge does so, too,
    // and its lower edge, dragged by the same corner, to the quarter.
    drag(place(u"tile 1"_s).center(), QPointF(-canvas.width() * 0.49, 0));
    ASSERT_TRUE(tileIsAt(1, 0, 0.5, 0.5, 0.5));
    click(u"tile 0"_s);
    ASSERT_TRUE(waitUntil([&] { return placeNow(u"selected tile"_s) == placeNow(u"tile 0"_s); }));
    drag(place(u"Bottom left corner"_s).center(), QPointF(-canvas.width() * 0.49, 0));
    ASSERT_TRUE(tileIsAt(0, 0, 0, 1, 0.5));

    EXPECT_FALSE(QFile::exists(layoutsFile()));
    click(u"Save Layout"_s);
    ASSERT_TRUE(waitUntil([&] { return hasShown({u"Layout saved"_s}); }));
    const QByteArray saved = contents(layoutsFile());
    const QJsonObject document = QJsonDocument::fromJson(saved).object();
    EXPECT_EQ(document.keys(), (QStringList{u"assignments"_s, u"customLayouts"_s}));
    EXPECT_TRUE(document[u"assignments"].toObject().isEmpty());
    ASSERT_EQ(document[u"customLayouts"].toArray().size(), 1);
    const QJsonObject layout = document[u"customLayouts"][0].toObject();
    EXPECT_EQ(layout[u"name"].toString(), u"My Layout"_s);
    EXPECT_EQ(layout[u"systemImage"].toString(), u"square.dashed"_s);
    EXPECT_EQ(layout[u"isBuiltIn"], QJsonValue(false));
    ASSERT_EQ(layout[u"zones"].toArray().size(), 2);
    expectZone(layout[u"zones"][0].toObject(), u"Zone 2"_s, 0, 0, 1, 0.5);
    expectZone(layout[u"zones"][1].toObject(), u"Zone 3"_s, 0, 0.5, 0.5, 0.5);

    // Another run finds it again.
    closeEditor();
    startEditor();
    waitForEditor();
    click(u"Open"_s);
    choose(u"My Layout"_s);
    ASSERT_TRUE(tileIsAt(0, 0, 0, 1, 0.5));
    ASSERT_TRUE(tileIsAt(1, 0, 0.5, 0.5, 0.5));
    EXPECT_FALSE(place(u"Editing"_s).isEmpty());

    typeName(u"My Layout"_s, u" halves "_s);
    click(u"Update Layout"_s);
    ASSERT_TRUE(waitUntil([&] { return hasShown({u"“halves” already exists"_s}); }))
        << contents(reportFile()).toStdString();
    EXPECT_EQ(contents(layoutsFile()), saved);

    typeName(u" halves "_s, u"focus"_s);
    click(u"Update Layout"_s);
    ASSERT_TRUE(waitUntil([&] {
        return hasShown({u"“halves” already exists"_s, u"Layout updated"_s});
    }));
    QJsonObject renamed = layout;
    renamed[u"name"] = u"focus"_s;
    QJsonObject expected = document;
    expected[u"customLayouts"] = QJsonArray{renamed};
    EXPECT_EQ(QJsonDocument::fromJson(contents(layoutsFile())).object(), expected)
        << contents(layoutsFile()).toStdString();
}

TEST_F(LayoutEditorOnScreen, DoesWhatWasClickedWhileItWasBusyInTheOrderOfTheClicks) {
    std::vector<QPoint> places;
    for (const QString& name : {u"New"_s, u"Add Zone"_s, u"Snap to edges"_s, u"Snap to edges"_s})
        places.push_back(place(name).center().toPoint());
    // Not to be used yet, and so not reported, but to the right of "Add Zone".
    const QRectF add = place(u"Add Zone"_s);
    places.push_back(QPointF(add.right() + 30, add.center().y()).toPoint());
    places.push_back(place(u"Save Layout"_s).center().toPoint());
    editor->signal(SIGSTOP);
    for (const QPoint& at : places)
        desktop.input().click(at);
    editor->signal(SIGCONT);
    ASSERT_TRUE(waitUntil([&] { return hasShown({u"Layout saved"_s}); }))
        << contents(reportFile()).toStdString();
    const QJsonObject document = QJsonDocument::fromJson(contents(layoutsFile())).object();
    ASSERT_EQ(document[u"customLayouts"].toArray().size(), 1);
    const QJsonArray zones = document[u"customLayouts"][0].toObject()[u"zones"].toArray();
    ASSERT_EQ(zones.size(), 1) << "the second zone was added and deleted";
    expectZone(zones[0].toObject(), u"Zone 1"_s, 0, 0, 0.5, 1);
}

} // namespace
} // namespace tilewright::testing
