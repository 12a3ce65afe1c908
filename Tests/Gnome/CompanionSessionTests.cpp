// The companion as a guest in GNOME Shell: whom it believes, how it comes and goes, what it leaves.

#include "CompanionBench.h"
#include "ShellTraces.h"

#include <QJsonDocument>

namespace tilewright::testing {
namespace {

const QString hello = QStringLiteral("Hello");

QJsonObject item(const QString& icon, const QString& itemName) {
    return {{QStringLiteral("c"), QStringLiteral("item")},
            {QStringLiteral("shown"), true},
            {QStringLiteral("icon"), icon},
            {QStringLiteral("name"), itemName}};
}

const QJsonObject ourItem =
    item(QStringLiteral("tilewright-symbolic"), QStringLiteral("Tilewright"));

const QJsonObject ourPanel{{QStringLiteral("c"), QStringLiteral("panel")},
                           {QStringLiteral("shown"), true},
                           {QStringLiteral("title"), QStringLiteral("Tilewright")},
                           {QStringLiteral("corner"), QJsonArray{1662, 36}}};

} // namespace

TEST_F(CompanionTest, GreetsTheProgramWithTheDisplaysAndTheWindowInFront) {
    const QString title = session.startClient(CompositorClient::gtk4, start);
    ASSERT_TRUE(waitUntil([&] { return isInFront(title); }));
    greet();
    const QJsonObject body = program->last(hello);
    EXPECT_EQ(body[QStringLiteral("protocol")].toInt(), 1);
    EXPECT_FALSE(body[QStringLiteral("shell")].toString().isEmpty());
    EXPECT_EQ(body[QStringLiteral("focus")][QStringLiteral("frame")].toArray(),
              (QJsonArray{start.x(), start.y(), start.width(), start.height()}));
    const QJsonArray displays = body[QStringLiteral("displays")].toArray();
    ASSERT_EQ(displays.size(), 1);
    const QJsonObject display = displays[0].toObject();
    EXPECT_TRUE(display[QStringLiteral("primary")].toBool());
    EXPECT_EQ(display[QStringLiteral("frame")].toArray(), (QJsonArray{0, 0, 1920, 1080}));
    const int bar = session.ask(QStringLiteral("Main.panel.height")).toInt();
    EXPECT_GT(bar, 0);
    EXPECT_EQ(display[QStringLiteral("work")].toArray(), (QJsonArray{0, bar, 1920, 1080 - bar}));
    EXPECT_EQ(display[QStringLiteral("scale")].toDouble(), 1);
    EXPECT_EQ(display[QStringLiteral("unit")].toDouble(), 1);
    EXPECT_FALSE(display[QStringLiteral("connector")].toString().isEmpty());
}

TEST_F(CompanionTest, TellsOfTheWindowInFrontThePointerAndTheWorkArea) {
    greet();
    const QString title = session.startClient(CompositorClient::gtk4, start);
    const QJsonValue window = session.ask(QStringLiteral("global.display.focus_window.get_id()"));
    EXPECT_TRUE(waitUntil([&] {
        return program->last(QStringLiteral("Focus"))[QStringLiteral("focus")]
                   .toObject()[QStringLiteral("id")] == window;
    }));
    program->command({{QStringLiteral("c"), QStringLiteral("pointer")}});
    ASSERT_TRUE(program->waitFor(QStringLiteral("Pointer")));
    EXPECT_EQ(program->last(QStringLiteral("Pointer"))[QStringLiteral("pointer")].toArray(),
              session.ask(QStringLiteral("global.get_pointer().slice(0, 2)")).toArray());
    session.tell(QStringLiteral("global.display.focus_window.delete(0)"));
    ASSERT_TRUE(program->waitFor(QStringLiteral("Gone")));
    EXPECT_EQ(program->last(QStringLiteral("Gone"))[QStringLiteral("window")], window);
    session.tell(QStringLiteral("Main.panel.set_height(70)"));
    EXPECT_TRUE(waitUntil([&] {
        return program->last(QStringLiteral("Displays"))[QStringLiteral("displays")][0]
                   .toObject()[QStringLiteral("work")]
                   .toArray() == QJsonArray{0, 70, 1920, 1010};
    }));
}

TEST_F(CompanionTest, TellsTheWorkAreaAtALoginThoughTheProgramIsThereBeforeTheBars) {
    greet();
    const int greetings = program->count(hello);
    session.logInAgain();
    ASSERT_TRUE(program->waitFor(hello, greetings)) << session.describe();
    const auto toldLast = [&] {
        QRect area;
        for (const CompanionCall& call : program->calls()) {
            if (call.method != hello && call.method != QStringLiteral("Displays"))
                continue;
            const QJsonValue work =
                call.body[QStringLiteral("displays")][0][QStringLiteral("work")];
            area = {work[0].toInt(), work[1].toInt(), work[2].toInt(), work[3].toInt()};
        }
        return area;
    };
    EXPECT_GT(session.workArea().top(), 0);
    EXPECT_TRUE(waitUntil([&] { return toldLast() == session.workArea(); })) << session.describe();
}

TEST_F(CompanionTest, WatchesNothingForAProgramThatSpeaksAnotherProtocol) {
    const int actors = actorsOnStage();
    program = std::make_unique<FakeProgram>(session.busAddress());
    program->protocol = 2;
    ASSERT_TRUE(program->waitFor(hello)) << session.describe();
    const QString parts =
        QStringLiteral("Main.extensionManager.lookup('%1').stateObj._companion._parts === null")
            .arg(QString::fromLatin1(companionUuid));
    EXPECT_TRUE(waitUntil([&] { return session.ask(parts).toBool(); }));
    EXPECT_EQ(actorsOnStage(), actors);
    const QString title = session.startClient(CompositorClient::qt, start);
    session.grab(title);
    session.input().glide({1000, 600});
    session.input().release();
    EXPECT_TRUE(waitUntil([&] { return !session.isDragging(); }));
    EXPECT_EQ(program->calls().size(), 1U);
    // One that it understands is greeted when it comes.
    program.reset();
    greet();
}

TEST_F(CompanionTest, TakesTheDesktopsOwnWindowForNone) {
    greet();
    const auto focus = [&] {
        return program->last(QStringLiteral("Focus"))[QStringLiteral("focus")];
    };
    const QString ordinary = session.startClient(CompositorClient::gtk4, start);
    ASSERT_TRUE(waitUntil([&] { return focus().isObject() && isInFront(ordinary); }));
    const QString icons = session.startClient(CompositorClient::xwayland, start);
    ASSERT_TRUE(waitUntil([&] { return isInFront(icons); }));
    const QString iconsWindow = QStringLiteral("global.get_window_actors().map(a => a.meta_window)"
                                               ".find(w => w.get_title() === '%1')")
                                    .arg(icons);
    // It becomes a window as those are that draw icons on the desktop. Its frame may have its name.
    session.tell(QStringLiteral("imports.gi.GLib.spawn_command_line_async(`xprop -id "
                                "${%1.get_description().split(' ')[0]} -f _NET_WM_WINDOW_TYPE 32a "
                                "-set _NET_WM_WINDOW_TYPE _NET_WM_WINDOW_TYPE_DESKTOP`)")
                     .arg(iconsWindow));
    ASSERT_TRUE(waitUntil([&] {
        return session
            .ask(iconsWindow +
                 QStringLiteral("?.get_window_type() === imports.gi.Meta.WindowType.DESKTOP"))
            .toBool();
    })) << session.describe();
    const auto isToldInFront = [&] { return focus().isObject() && isInFront(ordinary); };
    constexpr std::chrono::milliseconds once{400};
    // A busy X server confirms the focus of its client late, and the shell then takes it for a
    // wish.
    ASSERT_TRUE(waitUntil([&] {
        session.place(ordinary, start.translated(20, 20));
        return waitUntil(isToldInFront, once);
    })) << session.describe();
    session.tell(QStringLiteral("Main.activateWindow(%1)").arg(iconsWindow));
    ASSERT_TRUE(waitUntil([&] { return isInFront(icons); })) << session.describe();
    EXPECT_TRUE(waitUntil([&] { return focus().isNull(); }));
}

TEST_F(CompanionTest, TellsOfTheWishForLessMotion) {
    const QString setting =
        QStringLiteral("new imports.gi.Gio.Settings({schema_id: 'org.gnome.desktop.interface'})"
                       ".set_boolean('enable-animations', %1)");
    greet();
    EXPECT_EQ(program->last(hello)[QStringLiteral("reducedMotion")], QJsonValue(false));
    for (const bool isReduced : {true, false}) {
        session.tell(setting.arg(isReduced ? QStringLiteral("false") : QStringLiteral("true")));
        EXPECT_TRUE(waitUntil([&] {
            return program->last(QStringLiteral("MotionWish"))[QStringLiteral("reduced")] ==
                   QJsonValue(isReduced);
        })) << session.describe();
    }
    session.tell(setting.arg(QStringLiteral("false")));
    session.setCompanionEnabled(false);
    const int greetings = program->count(hello);
    session.setCompanionEnabled(true);
    ASSERT_TRUE(program->waitFor(hello, greetings));
    EXPECT_EQ(program->last(hello)[QStringLiteral("reducedMotion")], QJsonValue(true));
}

TEST(Companion, SaysNothingToAnotherProgramThatTookTheName) {
    GnomeSession session(QStringLiteral("/usr/bin/tilewright"));
    FakeProgram stranger(session.busAddress());
    // The companion has looked at the stranger by the time that all of this is done.
    const QString title = session.startClient(CompositorClient::qt, CompanionTest::start);
    session.grab(title);
    session.input().release();
    EXPECT_TRUE(staysTrue([&] { return stranger.calls().empty() && !stranger.isListenedTo(); },
                          std::chrono::seconds(1)));
}

TEST_F(CompanionTest, HasAnItemThatIsNamedAndClickedByMouseAndKeyboard) {
    greet();
    program->command(ourItem);
    ASSERT_TRUE(waitUntil([&] { return hasItem(); }));
    const QString button = QStringLiteral("Main.panel.statusArea['%1'].get_first_child()")
                               .arg(QString::fromLatin1(companionUuid));
    EXPECT_EQ(session.ask(button + QStringLiteral(".accessible_name")).toString(),
              QStringLiteral("Tilewright"));
    const QPoint center = session.waitForItem().center();
    session.input().move(center);
    session.input().click();
    ASSERT_TRUE(program->waitFor(QStringLiteral("ItemClicked")));
    const QJsonArray place =
        program->last(QStringLiteral("ItemClicked"))[QStringLiteral("item")].toArray();
    EXPECT_TRUE(QRect(place[0].toInt(), place[1].toInt(), place[2].toInt(), place[3].toInt())
                    .contains(center));
    EXPECT_EQ(program->last(QStringLiteral("ItemClicked"))[QStringLiteral("pointer")].toArray(),
              (QJsonArray{center.x(), center.y()}));

    session.tell(button + QStringLiteral(".grab_key_focus()"));
    session.input().tap(KernelKey::enter);
    EXPECT_TRUE(program->waitFor(QStringLiteral("ItemClicked"), 1));

    program->command(
        {{QStringLiteral("c"), QStringLiteral("item")}, {QStringLiteral("shown"), false}});
    EXPECT_TRUE(waitUntil([&] { return !hasItem(); }));
}

TEST_F(CompanionTest, HasAnItemThatIsTappedOnATouchScreenWhereverTheMouseIs) {
    greet();
    program->command(ourItem);
    const QPoint center = session.waitForItem().center();
    session.input().move({300, 900});
    session.tapScreen(center);
    ASSERT_TRUE(program->waitFor(QStringLiteral("ItemClicked"))) << session.describe();
    EXPECT_EQ(program->last(QStringLiteral("ItemClicked"))[QStringLiteral("pointer")].toArray(),
              (QJsonArray{center.x(), center.y()}));
    EXPECT_FALSE(program->waitFor(QStringLiteral("ItemClicked"), 1, std::chrono::milliseconds(300)))
        << "one tap is one click";
}

TEST_F(CompanionTest, HidesEverythingBehindTheLockAndGreetsAgainAfterIt) {
    greet();
    snapWithControl();
    program->command(ourItem);
    ASSERT_TRUE(waitUntil([&] { return hasItem(); }));
    const int actors = actorsOnStage();
    const QString title = session.startClient(CompositorClient::qt, start);
    dragToLeftZone(title);
    program->forgetCalls();
    session.lock();
    EXPECT_FALSE(hasItem());
    EXPECT_EQ(actorsOnStage(), actors);
    EXPECT_TRUE(waitUntil([&] { return !isHighlighted(inLeftTile); }));
    session.input().release();
    session.input().releaseKey(KernelKey::control);
    EXPECT_EQ(program->count(hello), 0);
    session.unlock();
    EXPECT_TRUE(program->waitFor(hello)) << session.describe();
}

TEST_F(CompanionTest, CanBeSwitchedOffAndOnInMidDrag) {
    greet();
    snapWithControl();
    const int actors = actorsOnStage();
    const QString title = session.startClient(CompositorClient::qt, start);
    dragToLeftZone(title);
    session.setCompanionEnabled(false);
    EXPECT_TRUE(waitUntil([&] { return isBare(inLeftTile); }));
    EXPECT_EQ(actorsOnStage(), actors);
    program->forgetCalls();
    session.setCompanionEnabled(true);
    ASSERT_TRUE(program->waitFor(hello));
    session.input().glide({1200, 600});
    session.input().release();
    session.input().releaseKey(KernelKey::control);
    EXPECT_TRUE(waitUntil([&] { return !session.isDragging(); }));
    // The next one is as any.
    dragToLeftZone(title);
    session.input().release();
    EXPECT_TRUE(waitUntil([&] { return session.frame(title) == leftZone; })) << session.describe();
    session.input().releaseKey(KernelKey::control);
}

TEST_F(CompanionTest, LeavesNothingWhenItIsSwitchedOffHoweverOftenAndWhateverItHasBegun) {
    greet();
    snapWithControl();
    program->answer = [snap = program->answer](const CompanionCall& call) {
        return call.method == hello ? QJsonArray{ourItem, ourPanel} : snap(call);
    };
    const QString other = session.startClient(CompositorClient::gtk4, start.translated(-400, 200));
    ASSERT_TRUE(waitUntil([&] { return isInFront(other); })) << session.describe();
    const QJsonValue window = session.ask(QStringLiteral("global.display.focus_window.get_id()"));
    const QString title = session.startClient(CompositorClient::qt, start);
    session.setCompanionEnabled(false);
    const ShellTraces traces(session);
    const int actors = actorsOnStage();
    const int actorsInBar = traces.actorsInBar();
    const QStringList matchRules = traces.matchRules();
    const QStringList objects = traces.exportedObjects();
    for (int time = 0; time < 50; ++time) {
        const int greetings = program->count(hello);
        session.setCompanionEnabled(true);
        ASSERT_TRUE(program->waitFor(hello, greetings)) << time;
        ASSERT_TRUE(waitUntil([&] { return hasItem(); })) << time;
        EXPECT_EQ(traces.held().watches, 1);
        session.setCompanionEnabled(false);
        ASSERT_FALSE(hasItem()) << time;
    }
    // The last time in the midst of everything.
    const int greetings = program->count(hello);
    session.setCompanionEnabled(true);
    ASSERT_TRUE(program->waitFor(hello, greetings));
    dragToLeftZone(title);
    EXPECT_GT(traces.held().handlers, 10) << "they are seen";
    EXPECT_GT(traces.held().sources, 0);
    program->isHung = true;
    session.input().glide({760, 520}, 2);
    program->command({{QStringLiteral("c"), QStringLiteral("frame")},
                      {QStringLiteral("window"), window},
                      {QStringLiteral("frame"), QJsonArray{8, 40, 944, 500}}});
    session.setCompanionEnabled(false);
    EXPECT_EQ(traces.held(), ShellTraces::Held());
    EXPECT_EQ(actorsOnStage(), actors);
    EXPECT_EQ(traces.actorsInBar(), actorsInBar);
    EXPECT_TRUE(waitUntil([&] { return traces.matchRules() == matchRules; }))
        << traces.matchRules().join(u'\n').toStdString();
    EXPECT_EQ(traces.exportedObjects(), objects);
    session.input().release();
    session.input().releaseKey(KernelKey::control);
    EXPECT_EQ(session.describe().find(companionUuid), std::string::npos) << session.describe();
}

TEST_F(CompanionTest, BelievesNothingThatMakesNoSenseAndGoesOn) {
    greet();
    const QString title = session.startClient(CompositorClient::qt, start);
    session.grab(title);
    const int actors = actorsOnStage();
    const auto sent = [&](const QJsonObject& commands) {
        program->answerRaw(
            QString::fromUtf8(QJsonDocument(commands).toJson(QJsonDocument::Compact)));
    };
    const auto changed = [](QJsonObject command, const char* field, const QJsonValue& value) {
        command[QLatin1String(field)] = value;
        return QJsonObject{{QStringLiteral("do"), QJsonArray{command}}};
    };
    QJsonArray styled = overlay(0)[QStringLiteral("tiles")].toArray();
    QJsonArray tile = styled[0].toArray();
    tile[5] = QJsonArray{QStringLiteral("0,0,0,1);background-image:url(file:///x)"), 0, 0, 1};
    QJsonArray crowd;
    for (int index = 0; index < 65; ++index)
        crowd.append(styled[0]);
    styled[0] = tile;
    sent(changed(overlay(0), "tiles", styled));
    sent(changed(overlay(0), "tiles", crowd));
    sent(changed(overlay(0), "tiles", QStringLiteral("many")));
    sent(changed(overlay(0), "area", QJsonArray{0, 0, 1e9, 1}));
    sent(changed(overlay(0), "transition", -1));
    sent(changed(ourItem, "icon", QStringLiteral("../metadata.json")));
    sent(changed(ourItem, "name", 7));
    sent(changed(ourPanel, "corner", QJsonArray{0, 1e9}));
    sent(changed(ourPanel, "corner", QStringLiteral("left")));
    // More commands than any answer has: what lies beyond is not looked at.
    QJsonArray many;
    for (int index = 0; index < 32; ++index)
        many.append(QJsonObject{{QStringLiteral("c"), QStringLiteral("unknown")}});
    many.append(overlay(0));
    sent({{QStringLiteral("do"), many}});
    sent({{QStringLiteral("do"), QJsonArray{overlay(0)}},
          {QStringLiteral("pad"), QString(64 * 1024, u'x')}});
    EXPECT_TRUE(waitUntil([&] { return program->isListenedTo(); }));
    EXPECT_EQ(actorsOnStage(), actors);
    EXPECT_FALSE(hasItem());
    EXPECT_EQ(program->count(QStringLiteral("PanelAwaited")), 0);

    // What makes no sense as a whole is as good as no answer: it listens again a second later.
    program->answerRaw(QStringLiteral("[[["));
    program->answerRaw(QStringLiteral("7"));
    program->command(overlay(0));
    EXPECT_TRUE(waitUntil([&] { return isHighlighted(inLeftTile); })) << session.describe();
    session.input().release();
    EXPECT_TRUE(waitUntil([&] { return isBare(inLeftTile); }));
    // Outside a drag nobody would take it away.
    program->command(overlay(0));
    EXPECT_TRUE(waitUntil([&] { return program->isListenedTo(); }));
    EXPECT_EQ(actorsOnStage(), actors);
}

} // namespace tilewright::testing
