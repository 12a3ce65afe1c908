#include "ShellTraces.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QJsonArray>
#include <QXmlStreamReader>
#include <gtest/gtest.h>

namespace tilewright::testing {

namespace {

/// Notes each signal handler, source and watch that comes from the companion's files.
constexpr char notes[] = R"(globalThis.traces = (() => {
    const {Clutter, Gio, GLib, GObject} = imports.gi;
    // Whoever calls the method that asks this: what the shell does for its own part in the course
    // of a call of ours is its own.
    const isOurs = () => new Error().stack.split('\n')[2].includes('%1');
    const handlers = new Set();
    const sources = new Set();
    const watches = new Set();
    const note = (holder, method, noted) => {
        const original = holder[method];
        holder[method] = function (...args) {
            const id = original.apply(this, args);
            if (isOurs())
                noted(this, id, original);
            return id;
        };
    };
    for (const method of ['connect', 'connect_after']) {
        note(GObject.Object.prototype, method, (object, id, original) => {
            const entry = {isAlive: () => GObject.signal_handler_is_connected(object, id)};
            handlers.add(entry);
            // They go with it, and nothing of it may be asked then.
            if (object instanceof Clutter.Actor && object !== global.stage)
                original.call(object, 'destroy', () => handlers.delete(entry));
        });
    }
    let emitter = Main.overview;
    while (!Object.prototype.hasOwnProperty.call(emitter, 'connect'))
        emitter = Object.getPrototypeOf(emitter);
    if (emitter !== GObject.Object.prototype) {
        note(emitter, 'connect', (object, id) =>
            handlers.add({isAlive: () => object.signalHandlerIsConnected(id)}));
    }
    for (const method of ['timeout_add', 'timeout_add_seconds', 'idle_add'])
        note(GLib, method, (_namespace, id) => sources.add(id));
    note(Gio, 'bus_watch_name', (_namespace, id) => watches.add(id));
    const unwatch = Gio.bus_unwatch_name;
    Gio.bus_unwatch_name = id => {
        watches.delete(id);
        unwatch(id);
    };
    const context = GLib.MainContext.default();
    return {
        held: () => [
            [...handlers].filter(handler => handler.isAlive()).length,
            [...sources].filter(id => context.find_source_by_id(id) !== null).length,
            watches.size,
        ],
        actors: function count(actor) {
            return actor.get_children().reduce((sum, child) => sum + count(child), 1);
        },
    };
})())";

} // namespace

ShellTraces::ShellTraces(GnomeSession& session)
    : session_(session) {
    session_.tell(QString::fromLatin1(notes).arg(QString::fromLatin1(companionUuid)));
}

ShellTraces::Held ShellTraces::held() const {
    const QJsonArray counts = session_.ask(QStringLiteral("traces.held()")).toArray();
    EXPECT_EQ(counts.size(), 3);
    return {counts[0].toInt(), counts[1].toInt(), counts[2].toInt()};
}

int ShellTraces::actorsInBar() const {
    return session_.ask(QStringLiteral("traces.actors(Main.panel._rightBox)")).toInt();
}

QDBusMessage ShellTraces::call(const QString& service, const QString& path,
                               const QString& interface, const QString& method) const {
    const QDBusMessage answer =
        session_.bus().call(QDBusMessage::createMethodCall(service, path, interface, method));
    EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage)
        << method.toStdString() << ": " << answer.errorMessage().toStdString();
    return answer;
}

QStringList ShellTraces::matchRules() const {
    const QString bus = QStringLiteral("org.freedesktop.DBus");
    const QDBusMessage answer = call(bus, QStringLiteral("/org/freedesktop/DBus"),
                                     QStringLiteral("org.freedesktop.DBus.Debug.Stats"),
                                     QStringLiteral("GetAllMatchRules"));
    const auto rules = qdbus_cast<QMap<QString, QStringList>>(answer.arguments().value(0));
    const QString shell =
        session_.bus().interface()->serviceOwner(QStringLiteral("org.gnome.Shell"));
    QStringList ofShell = rules.value(shell);
    EXPECT_FALSE(ofShell.isEmpty());
    ofShell.sort();
    return ofShell;
}

QStringList ShellTraces::exportedObjects() const {
    QStringList objects;
    collectObjects(QStringLiteral("/"), objects);
    EXPECT_GT(objects.size(), 5);
    objects.sort();
    return objects;
}

void ShellTraces::collectObjects(const QString& path, QStringList& objects) const {
    const QDBusMessage answer =
        call(QStringLiteral("org.gnome.Shell"), path,
             QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect"));
    QXmlStreamReader xml(answer.arguments().value(0).toString());
    QStringList children;
    while (!xml.atEnd()) {
        if (!xml.readNextStartElement())
            continue;
        const QString name = xml.attributes().value(QStringLiteral("name")).toString();
        if (xml.name() == QStringLiteral("interface"))
            objects.append(path + u' ' + name);
        else if (xml.name() == QStringLiteral("node") && !name.isEmpty())
            children.append((path == u"/" ? QString() : path) + u'/' + name);
    }
    for (const QString& child : std::as_const(children))
        collectObjects(child, objects);
}

} // namespace tilewright::testing
