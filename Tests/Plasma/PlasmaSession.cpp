#include "PlasmaSession.h"

#include "DisplayFiles.h"
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
#include <csignal>
#include <gtest/gtest.h>
#include <unistd.h>

namespace tilewright::testing {

namespace {

const QString kwinService = QStringLiteral("org.kde.KWin");

/// In the home, which X server KWin has for clients: a line with its display, one with its cookies.
const QString xServerFile = QStringLiteral("/x-server");

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

QString installedKwin() {
    return QStandardPaths::findExecutable(QStringLiteral("kwin_wayland"));
}

/// The first that is made with Qt 6. Asking it for its version takes a display.
bool isKwin6() {
    return outputOf(QStringLiteral("ldd"), {installedKwin()}, inheritedEnvironment())
        .contains(QStringLiteral("libQt6Core"));
}

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

PlasmaSession::PlasmaSession(const PlasmaDisplays& displays, Around around)
    : CompositorSession(QStringLiteral("KDE"))
    , isKwin6_(isKwin6())
    , scales_(displays.scales)
    , pixels_(displays.pixels)
    , around_(around)
    , ear_(std::make_unique<Ear>()) {
    int left = 0;
    for (const double scale : scales_) {
        displays_.emplace_back(QPoint(left, 0), (QSizeF(pixels_) / scale).toSize());
        left += displays_.back().width();
    }
    set("KWIN_EFFECTS_FORCE_ANIMATIONS", QStringLiteral("1"));
    set("KWIN_SCREENSHOT_NO_PERMISSION_CHECKS", QStringLiteral("1"));
    set("QT_QPA_PLATFORMTHEME", QStringLiteral("generic"));
    set("QT_FORCE_STDERR_LOGGING", QStringLiteral("1"));
    if (isKwin6_ || displays.seen == PlasmaDisplays::Seen::onXServer)
        host_ = std::make_unique<HostDisplay>(int(scales_.size()), pixels_);
    installFiles(displays.primary);
    EXPECT_TRUE(startBuses()) << describe();
    if (!isKwin6_)
        // Without a graphics card KWin would paint without OpenGL, and make no pictures.
        set("KWIN_COMPOSE", host_ ? QStringLiteral("Q") : QStringLiteral("O2"));
    bus().registerVirtualObject(QStringLiteral("/ear"), ear_.get());
    startCompositor();
}

PlasmaSession::~PlasmaSession() {
    if (!host_)
        return;
    // A guest that loses its host leaves its X server's lock file behind.
    setInput(nullptr);
    compositor().signal(SIGTERM);
    static_cast<void>(compositor().waitForEnd());
}

void PlasmaSession::installFiles(std::size_t primary) const {
    writeFile(home() + QStringLiteral("/.config/kwinrc"), configuration);
    (isKwin6_ ? writeDisplaysOfKwin6 : writeDisplaysOfKwin5)(home(), displays_, scales_, pixels_,
                                                             primary);
    installEntries();
    installEffects();
}

void PlasmaSession::installEntries() const {
    const auto install = [this](const QString& program, const char* interface) {
        writeFile(home() + QStringLiteral("/.local/share/applications/%1.desktop")
                               .arg(QString::fromLatin1(interface)),
                  "[Desktop Entry]\nType=Application\nName=Tests\nNoDisplay=true\nExec=" +
                      QFile::encodeName(QFileInfo(program).canonicalFilePath()) +
                      "\nX-KDE-Wayland-Interfaces=" + interface + '\n');
    };
    // What is restricted stays restricted to others.
    install(QCoreApplication::applicationFilePath(), "org_kde_kwin_fake_input");
    install(QStringLiteral(TILEWRIGHT_PROGRAM), "org_kde_kwin_keystate");
    // KWin 6 finds entries by the menu that has them.
    writeFile(home() + QStringLiteral("/.config/menus/applications.menu"),
              "<!DOCTYPE Menu PUBLIC \"-//freedesktop//DTD Menu 1.0//EN\" "
              "\"http://www.freedesktop.org/standards/menu-spec/1.0/menu.dtd\">\n"
              "<Menu><Name>Applications</Name><DefaultAppDirs/><Include><All/></Include></Menu>\n");
}

void PlasmaSession::installEffects() const {
    const QString data = home() + QStringLiteral("/.local/share/");
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
        EXPECT_TRUE(QFile::copy(installedKwin(), program));
    }
    const QSize size = displays_.front().size();
    const QStringList backend = host_ ? QStringList{QStringLiteral("--x11-display"), host_->name()}
                                      : QStringList{QStringLiteral("--virtual")};
    // KWin starts it with what its X server's clients need.
    const QString witness = home() + QStringLiteral("/x-server.sh");
    writeFile(witness, "#!/bin/sh\nprintf '%s\\n' \"$DISPLAY\" \"$XAUTHORITY\" >\"$HOME" +
                           xServerFile.toUtf8() + "\"\n");
    EXPECT_TRUE(
        QFile::setPermissions(witness, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    EXPECT_TRUE(CompositorSession::startCompositor(
        program,
        backend +
            QStringList{QStringLiteral("--output-count"), QString::number(displays_.size()),
                        QStringLiteral("--width"), QString::number(size.width()),
                        QStringLiteral("--height"), QString::number(size.height()),
                        QStringLiteral("--scale"), QString::number(scales_.front()),
                        QStringLiteral("--xwayland"), QStringLiteral("--socket"), socketName()} +
            (around_ == Around::nothing ? QStringList{QStringLiteral("--no-lockscreen")}
                                        : QStringList()) +
            QStringList{witness}));
    EXPECT_TRUE(waitUntil([&] {
        return bus().interface()->isServiceRegistered(kwinService) &&
               callScripting(QStringLiteral("isScriptLoaded"), {QStringLiteral("none")}).type() ==
                   QDBusMessage::ReplyMessage;
    })) << describe();
    EXPECT_TRUE(!host_ || waitUntil([&] { return host_->spread(); })) << describe();
    setInput(std::make_unique<PlasmaInput>(socketPath()));
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

std::map<QString, QString> PlasmaSession::xServer() {
    QStringList told;
    EXPECT_TRUE(waitUntil([&] {
        QFile file(home() + xServerFile);
        told = QString::fromUtf8(file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray())
                   .split(u'\n');
        return told.size() > 2;
    })) << describe();
    return {{QStringLiteral("DISPLAY"), told[0]}, {QStringLiteral("XAUTHORITY"), told.value(1)}};
}

void PlasmaSession::place(const QString& title, QRect area) {
    tell(QStringLiteral("find(%1).frameGeometry = {x: %2, y: %3, width: %4, height: %5}")
             .arg(quoted(title))
             .arg(area.x())
             .arg(area.y())
             .arg(area.width())
             .arg(area.height()));
    EXPECT_TRUE(waitUntil([&] { return isNear(frame(title), area, roundOff()); }))
        << title.toStdString() << " does not get its place, but has " << text(frame(title))
        << describe();
}

QRect PlasmaSession::frame(const QString& title) {
    return frameOf(QStringLiteral("find(%1)").arg(quoted(title)));
}

QRect PlasmaSession::frameOf(const QString& window) {
    return toRect(ask(QStringLiteral("(w => w ? [w.frameGeometry.x, w.frameGeometry.y, "
                                     "w.frameGeometry.width, w.frameGeometry.height] : [])(%1)")
                          .arg(window)));
}

std::vector<QRect> PlasmaSession::currentDisplays() {
    const QJsonValue told = ask(QStringLiteral(
        "(workspace.screens ? workspace.screens.map(screen => screen.geometry)"
        " : Array.from({length: workspace.numScreens},"
        "   (_, i) => workspace.clientArea(KWin.ScreenArea, i, workspace.currentDesktop)))"
        ".map(frame => [frame.x, frame.y, frame.width, frame.height])"));
    std::vector<QRect> frames;
    for (const QJsonValue frame : told.toArray())
        frames.push_back(toRect(frame));
    return frames;
}

void PlasmaSession::changeSecondDisplay(const QString& what, const std::function<bool()>& isDone) {
    Subprocess& tool = start(QStringLiteral("kscreen-doctor"),
                             {QStringLiteral("output.%1.%2").arg(secondConnector(), what)},
                             {{QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland")},
                              {QStringLiteral("KSCREEN_BACKEND_INPROCESS"), QStringLiteral("1")}});
    EXPECT_TRUE(waitUntil(isDone)) << what.toStdString() << describe();
    // At times it does not end after it has said that it has done so.
    constexpr int longestEnd = 5'000;
    if (!tool.waitForEnd(longestEnd))
        tool.stop();
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

bool PlasmaSession::hasErrand() {
    for (int i = 1; i <= 20; ++i)
        if (hasScript(QStringLiteral("tilewright_errand_%1").arg(i)))
            return true;
    return false;
}

bool PlasmaSession::hasCompanion() {
    if (!hasScript(QStringLiteral("tilewright")))
        return false;
    if (isKwin6_)
        return true;
    QDBusMessage get = QDBusMessage::createMethodCall(
        kwinService, QStringLiteral("/Effects"), QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    get.setArguments({QStringLiteral("org.kde.kwin.Effects"), QStringLiteral("loadedEffects")});
    const QStringList effects =
        bus().call(get).arguments().value(0).value<QDBusVariant>().variant().toStringList();
    return effects.contains(QStringLiteral("tilewright_key_meta"));
}

std::size_t PlasmaSession::displayAt(QPoint at) const {
    std::size_t display = 0;
    while (display + 1 < displays_.size() && !displays_[display].contains(at))
        ++display;
    return display;
}

QColor PlasmaSession::pixel(QPoint at) {
    const std::size_t display = displayAt(at);
    const QPoint there = (QPointF(at - displays_[display].topLeft()) * scales_[display]).toPoint();
    return host_ ? host_->pixel(int(display), there) : pictureOf(display).pixelColor(there);
}

QImage PlasmaSession::pictureOf(const QRect& area) {
    const std::size_t display = displayAt(area.center());
    const QRectF there(QPointF(area.topLeft() - displays_[display].topLeft()) * scales_[display],
                       QSizeF(area.size()) * scales_[display]);
    return pictureOf(display).copy(there.toRect());
}

QImage PlasmaSession::pictureOf(std::size_t display) {
    QImage picture = host_ ? host_->picture(int(display)) : screenshot(displays_[display]);
    picture.setDevicePixelRatio(scales_[display]);
    return picture;
}

QImage PlasmaSession::screenshot(const QRect& area) {
    int ends[2] = {-1, -1};
    EXPECT_EQ(::pipe(ends), 0);
    QDBusMessage message = QDBusMessage::createMethodCall(
        kwinService, QStringLiteral("/org/kde/KWin/ScreenShot2"),
        QStringLiteral("org.kde.KWin.ScreenShot2"), QStringLiteral("CaptureArea"));
    message.setArguments({area.x(), area.y(), unsigned(area.width()), unsigned(area.height()),
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
    return QImage(reinterpret_cast<const uchar*>(bytes.constData()),
                  told[QStringLiteral("width")].toInt(), height, stride,
                  static_cast<QImage::Format>(told[QStringLiteral("format")].toInt()))
        .copy();
}

} // namespace tilewright::testing
