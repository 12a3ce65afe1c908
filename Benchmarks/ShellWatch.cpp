#include "ShellWatch.h"

#include <QJsonArray>
#include <chrono>

namespace tilewright::testing {

namespace {

/// The overlay is compared as one text of all that is on it: empty where there is none.
constexpr char hooks[] = R"((() => {
    const {GLib, Meta} = imports.gi;
    const now = () => GLib.get_monotonic_time() / 1000;
    const empty = () => ({shown: [], changed: [], gone: [], asked: [], frames: [], trips: [],
        painted: [], work: []});
    const watch = globalThis.tilewrightWatch = {now, notes: empty()};
    watch.take = () => {
        const notes = watch.notes;
        watch.notes = empty();
        return notes;
    };
    const overlay = () => {
        const shown = Main.extensionManager.lookup('%1')?.stateObj?._companion?._overlay;
        return shown?._surface ? shown._tiles.map(tile => `${tile.style} ${tile.opacity}`).join() : '';
    };
    let before = '';
    let began = 0;
    global.stage.connect('before-update', () => (began = now()));
    global.stage.connect('after-paint', () => {
        const moment = now();
        watch.notes.painted.push(moment);
        watch.notes.work.push(moment - began);
        const current = overlay();
        if (current === before)
            return;
        const {notes} = watch;
        (before === '' ? notes.shown : current === '' ? notes.gone : notes.changed).push(moment);
        before = current;
    });
    const give = Meta.Window.prototype.move_resize_frame;
    Meta.Window.prototype.move_resize_frame = function (user, ...frame) {
        watch.notes.asked.push([now(), frame]);
        give.call(this, user, ...frame);
    };
    const client = global.get_window_actors().map(actor => actor.meta_window)
        .find(window => window.get_title() === %2);
    for (const signal of ['size-changed', 'position-changed']) {
        client.connect(signal, () => {
            const {x, y, width, height} = client.get_frame_rect();
            watch.notes.frames.push([now(), [x, y, width, height]]);
        });
    }
    return true;
})())";

constexpr char callHooks[] = R"((() => {
    const link = Main.extensionManager.lookup('%1').stateObj._companion._link;
    const watch = globalThis.tilewrightWatch;
    const send = link._send.bind(link);
    link._send = (method, body, limit, answered) => {
        const began = watch.now();
        send(method, body, limit, answer => {
            if (method.startsWith('Drag'))
                watch.notes.trips.push(watch.now() - began);
            answered(answer);
        });
    };
    return true;
})())";

std::vector<double> numbers(const QJsonValue& list) {
    std::vector<double> values;
    for (const auto& value : list.toArray())
        values.push_back(value.toDouble());
    return values;
}

} // namespace

void ShellWatch::begin(const QString& title) {
    session_.tell(
        QString::fromLatin1(hooks).arg(QString::fromLatin1(companionUuid), u'\'' + title + u'\''));
}

void ShellWatch::followCalls() {
    session_.tell(QString::fromLatin1(callHooks).arg(QString::fromLatin1(companionUuid)));
}

ShellWatch::Notes ShellWatch::take() {
    const QJsonValue told = session_.ask(QStringLiteral("globalThis.tilewrightWatch.take()"));
    const auto all = [&](const char* what) { return numbers(told[QLatin1String(what)]); };
    Notes notes{.shown = all("shown"),
                .changed = all("changed"),
                .gone = all("gone"),
                .frameAsked = {},
                .frameFinal = {},
                .roundTrips = all("trips"),
                .painted = all("painted"),
                .work = all("work")};
    const QJsonArray asked = told[QStringLiteral("asked")].toArray();
    const QJsonArray frames = told[QStringLiteral("frames")].toArray();
    if (asked.isEmpty())
        return notes;
    notes.frameAsked = asked.first()[0].toDouble();
    if (!frames.isEmpty() && frames.last()[1] == asked.first()[1])
        notes.frameFinal = frames.last()[0].toDouble();
    return notes;
}

double ShellWatch::now() {
    const std::chrono::duration<double, std::milli> since =
        std::chrono::steady_clock::now().time_since_epoch();
    return since.count();
}

} // namespace tilewright::testing
