#include "PlasmaSession.h"

#include <DesktopSession.h>
#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStandardPaths>
#include <Repetition.h>
#include <Waiting.h>
#include <csignal>
#include <gtest/gtest.h>
#include <unistd.h>

namespace tilewright::testing {

namespace {

const QString kwinService = QStringLiteral("org.kde.KWin");
const QString socketName = QStringLiteral("wayland-test");

/// A bus on which nothing is but what the session starts: no service comes by itself.
constexpr char busConfiguration[] = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:path=%1</listen><auth>EXTERNAL</auth>
<policy context="default"><allow send_destination="*" eavesdrop="true"/>
<allow eavesdrop="true"/><allow own="*"/></policy></busconfig>)";

/// Effects that need a graphics card end KWin where there is none.
constexpr char configuration[] = R"([Plugins]
blurEnabled=false
contrastEnabled=false
fadeEnabled=false
fadingpopupsEnabled=false
fullscreenEnabled=false
loginEnabled=false
logoutEnabled=false
maximizeEnabled=false
morphingpopupsEnabled=false
scaleEnabled=false
slideEnabled=false
slidingpopupsEnabled=false
squashEnabled=false
zoomEnabled=false
)";

/// What every script begins with.
constexpr char prelude[] = R"(
const all = () => workspace.windowList ? workspace.windowList() : workspace.clientList();
const find = title => all().filter(window => String(window.caption) === title)[0];
const active = () => workspace.windowList ? workspace.activeWindow : workspace.activeClient;
)";

QString quoted(const QString& text) {
    return QString::fromUtf8(QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact))
        .mid(1)
        .chopped(1);
}

} // namespace

const char* name(PlasmaClient client) {
    switch (client) {
    case PlasmaClient::qt:
        return "Qt";
    case PlasmaClient::gtk4:
        return "Gtk4";
    case PlasmaClient::xwayland:
        return "Xwayland";
    }
    return "";
}

/// Where scripts inside KWin answer.
class PlasmaSession::Ear final : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        answers[message.arguments().value(0).toString()] = message.arguments().value(1).toString();
        bus.send(message.createReply());
        return true;
    }

    std::map<QString, QString> answers;
};

PlasmaSession::PlasmaSession()
    : witness_(QStringLiteral("plasma-witness-") + folder_.path())
    , ear_(std::make_unique<Ear>()) {
    setUpEnvironment();
    installFiles();
    EXPECT_TRUE(
        startBus(systemBus_, QStringLiteral("system-bus"),
                 QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS")) &&
        startBus(sessionBus_, QStringLiteral("bus"), QStringLiteral("DBUS_SESSION_BUS_ADDRESS")))
        << describe();
    // The bus's socket is there a little before it takes anybody in.
    EXPECT_TRUE(waitUntil([&] {
        if (QDBusConnection::connectToBus(busAddress(), witness_).isConnected())
            return true;
        QDBusConnection::disconnectFromBus(witness_);
        return false;
    }));
    bus().registerVirtualObject(QStringLiteral("/ear"), ear_.get());
    startCompositor();
}

PlasmaSession::~PlasmaSession() {
    input_.reset();
    programs_.clear();
    QDBusConnection::disconnectFromBus(witness_);
    // Told to end, it takes the X server's lock file away with it.
    kwin_.signal(SIGTERM);
    static_cast<void>(kwin_.waitForEnd());
    kwin_.stop();
    sessionBus_.stop();
    systemBus_.stop();
}

void PlasmaSession::setUpEnvironment() {
    for (const char* kept : {"PATH", "LD_LIBRARY_PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (qEnvironmentVariableIsSet(kept))
            environment_.insert(QString::fromLatin1(kept), qEnvironmentVariable(kept));
    }
    const auto folder = [&](const char* variable, const char* path) {
        const QString full = home() + QString::fromLatin1(path);
        QDir().mkpath(full);
        QFile::setPermissions(full, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        environment_.insert(QString::fromLatin1(variable), full);
    };
    folder("HOME", "");
    folder("XDG_RUNTIME_DIR", "/run");
    folder("XDG_CONFIG_HOME", "/.config");
    folder("XDG_DATA_HOME", "/.local/share");
    folder("XDG_CACHE_HOME", "/.cache");
    const auto set = [&](const char* variable, const char* value) {
        environment_.insert(QString::fromLatin1(variable), QString::fromLatin1(value));
    };
    set("XDG_SESSION_TYPE", "wayland");
    set("XDG_CURRENT_DESKTOP", "KDE");
    set("LC_ALL", "C.UTF-8");
    set("LIBGL_ALWAYS_SOFTWARE", "1");
    set("NO_AT_BRIDGE", "1");
    set("GTK_A11Y", "none");
    // Without a graphics card KWin would paint without OpenGL, and run no effects.
    set("KWIN_COMPOSE", "O2");
    set("KWIN_EFFECTS_FORCE_ANIMATIONS", "1");
    set("KWIN_SCREENSHOT_NO_PERMISSION_CHECKS", "1");
    set("QT_QPA_PLATFORMTHEME", "generic");
    set("QT_FORCE_STDERR_LOGGING", "1");
}

void PlasmaSession::installFiles() const {
    writeFile(home() + QStringLiteral("/.config/kwinrc"), configuration);
    const QString data = home() + QStringLiteral("/.local/share/");
    // What is restricted stays restricted to others.
    writeFile(data + QStringLiteral("applications/tests.desktop"),
              "[Desktop Entry]\nType=Application\nName=Tests\nNoDisplay=true\nExec=" +
                  QFile::encodeName(
                      QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath()) +
                  "\nX-KDE-Wayland-Interfaces=org_kde_kwin_fake_input\n");
    const QDir effects(QStringLiteral(TILEWRIGHT_KWIN_EFFECTS));
    int count = 0;
    for (QDirIterator it(effects.path(), QDir::Files, QDirIterator::Subdirectories); it.hasNext();
         ++count) {
        QFile file(it.next());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        writeFile(data + QStringLiteral("kwin/effects/") +
                      effects.relativeFilePath(file.fileName()),
                  file.readAll());
    }
    EXPECT_EQ(count, 8);
}

bool PlasmaSession::startBus(Subprocess& bus, const QString& name, const QString& variable) {
    const QString socket = home() + QStringLiteral("/run/") + name;
    const QString file = home() + QStringLiteral("/%1.conf").arg(name);
    writeFile(file, QString::fromLatin1(busConfiguration).arg(socket).toUtf8());
    environment_.insert(variable, QStringLiteral("unix:path=") + socket);
    return bus.start(QStringLiteral("dbus-daemon"),
                     {QStringLiteral("--nofork"), QStringLiteral("--config-file=") + file},
                     environment_, logFile()) &&
           waitUntil([&] { return QFile::exists(socket); });
}

QString PlasmaSession::busAddress() const {
    return environment_.value(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
}

void PlasmaSession::startCompositor() {
    // A copy has not the privileges of the installed one, which some containers may not give.
    const QString program = home() + QStringLiteral("/kwin_wayland");
    if (!QFile::exists(program)) {
        EXPECT_TRUE(
            QFile::copy(QStandardPaths::findExecutable(QStringLiteral("kwin_wayland")), program));
    }
    environment_.remove(QStringLiteral("WAYLAND_DISPLAY"));
    EXPECT_TRUE(kwin_.start(program,
                            {QStringLiteral("--virtual"), QStringLiteral("--width"),
                             QStringLiteral("1920"), QStringLiteral("--height"),
                             QStringLiteral("1080"), QStringLiteral("--no-lockscreen"),
                             QStringLiteral("--xwayland"), QStringLiteral("--socket"), socketName},
                            environment_, logFile()));
    environment_.insert(QStringLiteral("WAYLAND_DISPLAY"), socketName);
    EXPECT_TRUE(waitUntil([&] {
        return bus().interface()->isServiceRegistered(kwinService) &&
               callScripting(QStringLiteral("isScriptLoaded"), {QStringLiteral("none")}).type() ==
                   QDBusMessage::ReplyMessage;
    })) << describe();
    input_ = std::make_unique<PlasmaInput>(home() + QStringLiteral("/run/") + socketName);
    // A seat gets its pointer and its keyboard with the first use of each, and clients lose that.
    input_->move({1700, 1000});
    input_->click();
    input_->tap(KernelKey::shift);
}

void PlasmaSession::killCompositor() {
    input_.reset();
    kwin_.stop();
    EXPECT_TRUE(waitUntil([&] { return !bus().interface()->isServiceRegistered(kwinService); }));
}

QDBusMessage PlasmaSession::callScripting(const QString& method, const QVariantList& arguments) {
    QDBusMessage message =
        QDBusMessage::createMethodCall(kwinService, QStringLiteral("/Scripting"),
                                       QStringLiteral("org.kde.kwin.Scripting"), method);
    message.setArguments(arguments);
    return bus().call(message);
}

QJsonValue PlasmaSession::ask(const QString& expression) {
    const QString name = QStringLiteral("question-%1").arg(++questions_);
    const QString path = home() + u'/' + name + QStringLiteral(".js");
    writeFile(path, QString::fromLatin1(prelude).toUtf8() +
                        QStringLiteral("callDBus('%1', '/ear', 'org.tilewright.Ear', 'hear', '%2', "
                                       "JSON.stringify([%3]));\n")
                            .arg(bus().baseService(), name, expression)
                            .toUtf8());
    const QDBusMessage id = callScripting(QStringLiteral("loadScript"), {path, name});
    EXPECT_GE(id.arguments().value(0, -1).toInt(), 0) << id.errorMessage().toStdString();
    static_cast<void>(callScripting(QStringLiteral("start")));
    EXPECT_TRUE(waitUntil([&] { return ear_->answers.count(name) > 0; }))
        << expression.toStdString() << describe();
    static_cast<void>(callScripting(QStringLiteral("unloadScript"), {name}));
    QFile::remove(path);
    return QJsonDocument::fromJson(ear_->answers[name].toUtf8()).array().first();
}

Subprocess& PlasmaSession::start(const QString& program, const QStringList& arguments,
                                 const std::map<QString, QString>& moreEnvironment) {
    QProcessEnvironment environment = environment_;
    for (const auto& [key, value] : moreEnvironment)
        environment.insert(key, value);
    auto& process = *programs_.emplace_back(std::make_unique<Subprocess>());
    EXPECT_TRUE(process.start(program, arguments, environment, logFile()))
        << program.toStdString() << " did not start";
    return process;
}

QStringList PlasmaSession::xServer() const {
    QFile children(QStringLiteral("/proc/%1/task/%1/children").arg(kwin_.pid()));
    if (!children.open(QIODevice::ReadOnly))
        return {};
    const QStringList numbers = QString::fromLatin1(children.readAll()).split(u' ');
    for (const QString& child : numbers) {
        QFile command(QStringLiteral("/proc/%1/cmdline").arg(child));
        if (!command.open(QIODevice::ReadOnly))
            continue;
        const QStringList arguments = QString::fromLocal8Bit(command.readAll()).split(u'\0');
        if (arguments.first().endsWith(QStringLiteral("Xwayland")))
            return arguments;
    }
    return {};
}

QString PlasmaSession::startClient(PlasmaClient client, QRect area) {
    const QString title =
        QStringLiteral("client-%1-%2").arg(QString::fromLatin1(name(client))).arg(++clients_);
    const QString platform = QStringLiteral("QT_QPA_PLATFORM");
    const QStringList arguments{title, QStringLiteral("window")};
    switch (client) {
    case PlasmaClient::qt:
        start(QStringLiteral(TILEWRIGHT_TEST_WINDOW), arguments,
              {{platform, QStringLiteral("wayland")}});
        break;
    case PlasmaClient::gtk4:
        start(QStringLiteral("/usr/bin/python3"), {QStringLiteral(TILEWRIGHT_GTK4_WINDOW), title},
              {{QStringLiteral("GSK_RENDERER"), QStringLiteral("cairo")}});
        break;
    case PlasmaClient::xwayland: {
        QStringList server;
        EXPECT_TRUE(waitUntil([&] { return (server = xServer()).size() > 2; })) << describe();
        start(QStringLiteral(TILEWRIGHT_TEST_WINDOW), arguments,
              {{platform, QStringLiteral("xcb")},
               {QStringLiteral("DISPLAY"), server.value(1)},
               {QStringLiteral("XAUTHORITY"),
                server.value(server.indexOf(QStringLiteral("-auth")) + 1)}});
        break;
    }
    }
    EXPECT_TRUE(waitUntil([&] { return !frame(title).isEmpty(); }))
        << "no window of " << name(client) << " appeared" << describe();
    tell(QStringLiteral("find(%1).frameGeometry = {x: %2, y: %3, width: %4, height: %5}")
             .arg(quoted(title))
             .arg(area.x())
             .arg(area.y())
             .arg(area.width())
             .arg(area.height()));
    EXPECT_TRUE(waitUntil([&] { return frame(title) == area; }))
        << title.toStdString() << " does not get its place" << describe();
    return title;
}

QRect PlasmaSession::frame(const QString& title) {
    const QJsonArray numbers =
        ask(QStringLiteral("(w => w ? [w.frameGeometry.x, w.frameGeometry.y, "
                           "w.frameGeometry.width, w.frameGeometry.height] : [])(find(%1))")
                .arg(quoted(title)))
            .toArray();
    return QRectF(numbers[0].toDouble(), numbers[1].toDouble(), numbers[2].toDouble(),
                  numbers[3].toDouble())
        .toRect();
}

bool PlasmaSession::isWindow(const QString& title, const QString& property) {
    return ask(QStringLiteral("(w => Boolean(w && w.%2))(find(%1))").arg(quoted(title), property))
        .toBool();
}

bool PlasmaSession::isDragging() {
    return ask(QStringLiteral("all().some(window => window.move)")).toBool();
}

void PlasmaSession::grab(const QString& title) {
    constexpr QPoint inTitleBar(-60, 12);
    constexpr std::chrono::milliseconds onceTold{1500};
    constexpr int attempts = 4;
    for (int attempt = 1; attempt <= attempts; ++attempt) {
        const QRect before = frame(title);
        const QPoint from = QPoint(before.center().x(), before.top()) + inTitleBar;
        input_->move(from);
        input_->press();
        input_->glide(from + QPoint(60, 60));
        if (waitUntil([&] { return isDragging(); }, onceTold))
            return;
        input_->release();
        tellRepetition("a client that took no notice of a press on its title bar");
    }
    ADD_FAILURE() << "no drag began" << describe();
}

bool PlasmaSession::hasScript(const QString& name) {
    return callScripting(QStringLiteral("isScriptLoaded"), {name}).arguments().value(0).toBool();
}

bool PlasmaSession::hasCompanion() {
    if (!hasScript(QStringLiteral("tilewright")))
        return false;
    QDBusMessage get = QDBusMessage::createMethodCall(
        kwinService, QStringLiteral("/Effects"), QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    get.setArguments({QStringLiteral("org.kde.kwin.Effects"), QStringLiteral("loadedEffects")});
    const QStringList effects =
        bus().call(get).arguments().value(0).value<QDBusVariant>().variant().toStringList();
    return effects.contains(QStringLiteral("tilewright_key_meta"));
}

QImage PlasmaSession::picture() {
    int ends[2] = {-1, -1};
    EXPECT_EQ(::pipe(ends), 0);
    QDBusMessage message = QDBusMessage::createMethodCall(
        kwinService, QStringLiteral("/org/kde/KWin/ScreenShot2"),
        QStringLiteral("org.kde.KWin.ScreenShot2"), QStringLiteral("CaptureArea"));
    message.setArguments(
        {0, 0, 1920U, 1080U, QVariantMap(), QVariant::fromValue(QDBusUnixFileDescriptor(ends[1]))});
    ::close(ends[1]);
    const QDBusMessage answer = bus().call(message);
    message = {};
    EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << answer.errorMessage().toStdString();
    const auto told = qdbus_cast<QVariantMap>(answer.arguments().value(0));
    QFile pipe;
    EXPECT_TRUE(pipe.open(ends[0], QIODevice::ReadOnly, QFile::AutoCloseHandle));
    const int stride = told[QStringLiteral("stride")].toInt();
    const int height = told[QStringLiteral("height")].toInt();
    QByteArray bytes;
    while (bytes.size() < stride * height) {
        const QByteArray some = pipe.read(stride * height - bytes.size());
        if (some.isEmpty())
            break;
        bytes += some;
    }
    EXPECT_EQ(bytes.size(), stride * height);
    return QImage(reinterpret_cast<const uchar*>(bytes.constData()),
                  told[QStringLiteral("width")].toInt(), height, stride,
                  static_cast<QImage::Format>(told[QStringLiteral("format")].toInt()))
        .copy();
}

std::string PlasmaSession::describe() const {
    constexpr qint64 lastPart = 3000;
    QFile log(logFile());
    if (!log.open(QIODevice::ReadOnly))
        return "\nnothing was printed\n";
    log.seek(std::max<qint64>(0, log.size() - lastPart));
    return "\nthe session printed:\n" + log.readAll().toStdString();
}

} // namespace tilewright::testing
