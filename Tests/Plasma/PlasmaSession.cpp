#include "PlasmaSession.h"

#include "PlasmaInput.h"

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
#include <Waiting.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace tilewright::testing {

namespace {

const QString kwinService = QStringLiteral("org.kde.KWin");

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

} // namespace

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

PlasmaSession::PlasmaSession(const PlasmaDisplays& displays)
    : CompositorSession(QStringLiteral("KDE"))
    , scale_(displays.scale)
    , ear_(std::make_unique<Ear>()) {
    const QSize size = (QSizeF(1920, 1080) / scale_).toSize();
    for (int number = 0; number < displays.count; ++number)
        displays_.emplace_back(QPoint(number * size.width(), 0), size);
    // Without a graphics card KWin would paint without OpenGL, and run no effects.
    set("KWIN_COMPOSE", QStringLiteral("O2"));
    set("KWIN_EFFECTS_FORCE_ANIMATIONS", QStringLiteral("1"));
    set("KWIN_SCREENSHOT_NO_PERMISSION_CHECKS", QStringLiteral("1"));
    set("QT_QPA_PLATFORMTHEME", QStringLiteral("generic"));
    set("QT_FORCE_STDERR_LOGGING", QStringLiteral("1"));
    installFiles();
    EXPECT_TRUE(startBuses()) << describe();
    bus().registerVirtualObject(QStringLiteral("/ear"), ear_.get());
    startCompositor();
}

PlasmaSession::~PlasmaSession() = default;

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

void PlasmaSession::startCompositor() {
    // A copy has not the privileges of the installed one, which some containers may not give.
    const QString program = home() + QStringLiteral("/kwin_wayland");
    if (!QFile::exists(program)) {
        EXPECT_TRUE(
            QFile::copy(QStandardPaths::findExecutable(QStringLiteral("kwin_wayland")), program));
    }
    const QSize size = displays_.front().size();
    EXPECT_TRUE(CompositorSession::startCompositor(
        program,
        {QStringLiteral("--virtual"), QStringLiteral("--output-count"),
         QString::number(displays_.size()), QStringLiteral("--width"),
         QString::number(size.width()), QStringLiteral("--height"), QString::number(size.height()),
         QStringLiteral("--scale"), QString::number(scale_), QStringLiteral("--no-lockscreen"),
         QStringLiteral("--xwayland"), QStringLiteral("--socket"), socketName()}));
    EXPECT_TRUE(waitUntil([&] {
        return bus().interface()->isServiceRegistered(kwinService) &&
               callScripting(QStringLiteral("isScriptLoaded"), {QStringLiteral("none")}).type() ==
                   QDBusMessage::ReplyMessage;
    })) << describe();
    setInput(std::make_unique<PlasmaInput>(home() + QStringLiteral("/run/") + socketName()));
    useInput(displays_.front().bottomRight() - QPoint(220, 80));
}

void PlasmaSession::killCompositor() {
    setInput(nullptr);
    compositor().stop();
    EXPECT_TRUE(waitUntil([&] { return !bus().interface()->isServiceRegistered(kwinService); }));
}

QDBusMessage PlasmaSession::callScripting(const QString& method, const QVariantList& arguments) {
    QDBusMessage message =
        QDBusMessage::createMethodCall(kwinService, QStringLiteral("/Scripting"),
                                       QStringLiteral("org.kde.kwin.Scripting"), method);
    message.setArguments(arguments);
    return bus().call(message);
}

QString PlasmaSession::begin(const QString& script) {
    const QString name = QStringLiteral("question-%1").arg(++questions_);
    const QString path = home() + u'/' + name + QStringLiteral(".js");
    writeFile(path, QString::fromLatin1(prelude).toUtf8() +
                        QStringLiteral("const answer = value => callDBus('%1', '/ear', "
                                       "'org.tilewright.Ear', 'hear', '%2', "
                                       "JSON.stringify([value]));\n%3;\n")
                            .arg(bus().baseService(), name, script)
                            .toUtf8());
    const QDBusMessage id = callScripting(QStringLiteral("loadScript"), {path, name});
    EXPECT_GE(id.arguments().value(0, -1).toInt(), 0) << id.errorMessage().toStdString();
    static_cast<void>(callScripting(QStringLiteral("start")));
    return name;
}

QJsonValue PlasmaSession::answerTo(const QString& script) {
    EXPECT_TRUE(waitUntil([&] { return ear_->answers.count(script) > 0; })) << describe();
    static_cast<void>(callScripting(QStringLiteral("unloadScript"), {script}));
    return QJsonDocument::fromJson(ear_->answers[script].toUtf8()).array().first();
}

QJsonValue PlasmaSession::ask(const QString& expression) {
    return answerTo(begin(QStringLiteral("answer(%1)").arg(expression)));
}

QStringList PlasmaSession::xServerArguments() {
    QFile children(QStringLiteral("/proc/%1/task/%1/children").arg(compositor().pid()));
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

std::map<QString, QString> PlasmaSession::xServer() {
    QStringList server;
    EXPECT_TRUE(waitUntil([&] { return (server = xServerArguments()).size() > 2; })) << describe();
    return {
        {QStringLiteral("DISPLAY"), server.value(1)},
        {QStringLiteral("XAUTHORITY"), server.value(server.indexOf(QStringLiteral("-auth")) + 1)}};
}

void PlasmaSession::place(const QString& title, QRect area) {
    tell(QStringLiteral("find(%1).frameGeometry = {x: %2, y: %3, width: %4, height: %5}")
             .arg(quoted(title))
             .arg(area.x())
             .arg(area.y())
             .arg(area.width())
             .arg(area.height()));
    EXPECT_TRUE(waitUntil([&] { return frame(title) == area; }))
        << title.toStdString() << " does not get its place" << describe();
}

QRect PlasmaSession::frame(const QString& title) {
    return toRect(
        ask(QStringLiteral("(w => w ? [w.frameGeometry.x, w.frameGeometry.y, "
                           "w.frameGeometry.width, w.frameGeometry.height] : [])(find(%1))")
                .arg(quoted(title))));
}

bool PlasmaSession::isWindow(const QString& title, const QString& property) {
    return ask(QStringLiteral("(w => Boolean(w && w.%2))(find(%1))").arg(quoted(title), property))
        .toBool();
}

bool PlasmaSession::isDragging() {
    return ask(QStringLiteral("all().some(window => window.move)")).toBool();
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
    const QRect desktop = displays_.front() | displays_.back();
    message.setArguments({desktop.x(), desktop.y(), unsigned(desktop.width()),
                          unsigned(desktop.height()),
                          QVariantMap{{QStringLiteral("native-resolution"), true}},
                          QVariant::fromValue(QDBusUnixFileDescriptor(ends[1]))});
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
    QImage picture = QImage(reinterpret_cast<const uchar*>(bytes.constData()),
                            told[QStringLiteral("width")].toInt(), height, stride,
                            static_cast<QImage::Format>(told[QStringLiteral("format")].toInt()))
                         .copy();
    picture.setDevicePixelRatio(scale_);
    return picture;
}

} // namespace tilewright::testing
