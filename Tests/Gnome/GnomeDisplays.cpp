// What a session of GNOME Shell has of displays.

#include "GnomeSession.h"

#include <QJsonArray>
#include <QLocale>
#include <Waiting.h>
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace tilewright::testing {

QRect GnomeSession::workArea(QPoint display) {
    return toRect(ask(QStringLiteral("(r => [r.x, r.y, r.width, r.height])"
                                     "(Main.layoutManager.getWorkAreaForMonitor("
                                     "Main.layoutManager.monitors"
                                     ".findIndex(m => m.x === %1 && m.y === %2)))")
                          .arg(display.x())
                          .arg(display.y())));
}

int GnomeSession::unitsPerPoint(QPoint at) const {
    for (const auto& [display, units] : units_) {
        if (display.contains(at))
            return units;
    }
    return 1;
}

QJsonValue GnomeSession::displayState() {
    // The shell serves the call itself, so nothing in it can wait for the answer.
    tell(QStringLiteral(R"(imports.gi.Gio.DBus.session.call(
        'org.gnome.Mutter.DisplayConfig', '/org/gnome/Mutter/DisplayConfig',
        'org.gnome.Mutter.DisplayConfig', 'GetCurrentState', null, null, 0, -1, null,
        (connection, result) => {
            globalThis.displayState = connection.call_finish(result).deepUnpack();
        }))"));
    QJsonValue state;
    EXPECT_TRUE(waitUntil([&] {
        state = ask(QStringLiteral("(s => { globalThis.displayState = null; return s && ["
                                   "s[0], s[1].map(([[connector], [[mode, , , , , scales]]]) =>"
                                   " [connector, mode, scales]).sort()]; })"
                                   "(globalThis.displayState ?? null)"));
        return state.isArray();
    })) << describe();
    return state;
}

void GnomeSession::offerFractionalScales() {
    // From 51 on it always does, and has no setting for it.
    if (ask(QStringLiteral("!new imports.gi.Gio.Settings({schema_id: 'org.gnome.mutter'})"
                           ".list_keys().includes('experimental-features')"))
            .toBool())
        return;
    tell(QStringLiteral("new imports.gi.Gio.Settings({schema_id: 'org.gnome.mutter'})"
                        ".set_strv('experimental-features', ['scale-monitor-framebuffer'])"));
    EXPECT_TRUE(waitUntil([&] {
        const std::vector<double> scales = offeredScales();
        return std::any_of(scales.begin(), scales.end(),
                           [](double scale) { return std::floor(scale) != scale; });
    })) << describe();
}

std::vector<double> GnomeSession::offeredScales() {
    std::vector<double> scales;
    for (const QJsonValue scale : displayState()[1][0][2].toArray())
        scales.push_back(scale.toDouble());
    return scales;
}

QPoint GnomeSession::primary() {
    return toRect(ask(QStringLiteral("(m => [m.x, m.y, 1, 1])(Main.layoutManager.primaryMonitor)")))
        .topLeft();
}

QString GnomeSession::refusalToArrange(const std::vector<GnomeDisplay>& displays,
                                       std::size_t primaryIndex) {
    const QJsonValue state = displayState();
    QStringList wanted;
    for (std::size_t index = 0; index < displays.size(); ++index) {
        const auto& [place, scale] = displays[index];
        const QJsonValue monitor = state[1][int(index)];
        wanted += QStringLiteral("[%1, %2, %3, 0, %4, [['%5', '%6', {}]]]")
                      .arg(place.x())
                      .arg(place.y())
                      .arg(scale, 0, 'g', QLocale::FloatingPointShortest)
                      .arg(index == primaryIndex ? QStringLiteral("true") : QStringLiteral("false"),
                           monitor[0].toString(), monitor[1].toString());
    }
    tell(QStringLiteral(R"(globalThis.refusal = null;
        imports.gi.Gio.DBus.session.call(
        'org.gnome.Mutter.DisplayConfig', '/org/gnome/Mutter/DisplayConfig',
        'org.gnome.Mutter.DisplayConfig', 'ApplyMonitorsConfig',
        new imports.gi.GLib.Variant('(uua(iiduba(ssa{sv}))a{sv})', [%1, 1, [%2], {}]),
        null, 0, -1, null, (connection, result) => {
            try {
                connection.call_finish(result);
                globalThis.refusal = '';
            } catch (error) {
                globalThis.refusal = error.message;
            }
        }))")
             .arg(state[0].toInt())
             .arg(wanted.join(u',')));
    QJsonValue refusal;
    EXPECT_TRUE(waitUntil([&] {
        refusal = ask(QStringLiteral("globalThis.refusal"));
        return refusal.isString();
    })) << describe();
    return refusal.toString();
}

void GnomeSession::arrange(const std::vector<GnomeDisplay>& displays, std::size_t primaryIndex) {
    const auto barInPoints = [&](QPoint display) {
        return (workArea(display).top() - display.y()) / unitsPerPoint(display);
    };
    const auto groundOf = [&](QPoint display) {
        return pixel(workArea(display).bottomRight() - QPoint(2, 2));
    };
    const int bar = barInPoints(primary());
    // The plain one of the session's settings.
    const QColor ground(0x20, 0x40, 0x60);
    const QPoint wantedPrimary = displays[primaryIndex].place;
    QStringList there;
    for (const auto& [place, scale] : displays)
        there += QStringLiteral("[%1, %2, %3]").arg(place.x()).arg(place.y()).arg(scale);
    // The shell takes nothing that was said of an older state than its newest.
    QString refusal;
    ASSERT_TRUE(waitUntil([&] {
        refusal = refusalToArrange(displays, primaryIndex);
        return refusal.isEmpty();
    })) << refusal.toStdString();
    // Each frame, and how many of its 1920 pixels are a unit, times the scale.
    const QString frames =
        QStringLiteral("Main.layoutManager.monitors.map(m => [m.x, m.y, m.width, m.height,"
                       " global.display.get_monitor_scale(m.index)])");
    EXPECT_TRUE(waitUntil([&] {
        units_.clear();
        for (const QJsonValue monitor : ask(frames).toArray())
            units_.emplace_back(toRect(monitor), int(std::lround(monitor[4].toDouble() *
                                                                 monitor[2].toDouble() / 1920)));
        return ask(QStringLiteral("JSON.stringify([%1].filter(([x, y, scale]) =>"
                                  " !%2.some(m => m[0] === x && m[1] === y"
                                  " && Math.abs(m[4] - scale) < 0.01)))")
                       .arg(there.join(u','), frames))
                       .toString() == u"[]" &&
               primary() == wantedPrimary && barInPoints(wantedPrimary) == bar &&
               // It makes the ground anew, and shows none until then.
               std::all_of(displays.begin(), displays.end(),
                           [&](const auto& display) { return groundOf(display.place) == ground; });
    })) << describe();
}

} // namespace tilewright::testing
