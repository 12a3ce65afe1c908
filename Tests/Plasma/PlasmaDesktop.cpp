#include "PlasmaDesktop.h"

#include <PlasmaPrograms.h>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <Waiting.h>
#include <gtest/gtest.h>

namespace tilewright::testing {

namespace {

constexpr std::chrono::seconds afterItsStart{60};

/// As Plasma numbers what its panel does about windows.
constexpr int windowsGoBelow = 3;

} // namespace

PlasmaDesktop::PlasmaDesktop(PlasmaSession& session, Panel panel)
    : session_(session) {
    if (panel == Panel::aboveWindows) {
        // Which number the first one gets is not said.
        QByteArray panels;
        for (int number = 1; number < 20; ++number)
            panels += "[PlasmaViews][Panel " + QByteArray::number(number) +
                      "]\npanelVisibility=" + QByteArray::number(windowsGoBelow) + '\n';
        writeFile(session_.home() + QStringLiteral("/.config/plasmashellrc"), panels);
    }
    start(plasmaProgram(QStringLiteral("kactivitymanagerd")), "org.kde.ActivityManager");
    start(QStringLiteral("kded%1").arg(session_.generation()), "org.kde.StatusNotifierWatcher");
    start(plasmaProgram(QStringLiteral("org_kde_powerdevil")),
          "org.kde.Solid.PowerManagement.PolicyAgent");
    start(QStringLiteral("plasmashell"), "org.kde.plasmashell");
    EXPECT_TRUE(waitUntil(
        [&] {
            first_ = this->panel().isEmpty() ? QImage() : tray();
            return !first_.isNull() &&
                   staysTrue([&] { return tray() == first_; }, std::chrono::milliseconds(2000));
        },
        afterItsStart))
        << session_.describe();
}

void PlasmaDesktop::start(const QString& program, const char* service) {
    session_.start(program, {},
                   {{QStringLiteral("KDE_FULL_SESSION"), QStringLiteral("true")},
                    {QStringLiteral("KDE_SESSION_VERSION"), QString::number(session_.generation())},
                    {QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland")},
                    {QStringLiteral("QT_QPA_PLATFORMTHEME"), QStringLiteral("kde")},
                    {QStringLiteral("QT_QUICK_BACKEND"), QStringLiteral("software")}});
    EXPECT_TRUE(waitUntil([&] { return isOnBus(service); }, afterItsStart))
        << program.toStdString() << session_.describe();
}

bool PlasmaDesktop::isOnBus(const char* service) const {
    return session_.bus().interface()->isServiceRegistered(QString::fromLatin1(service));
}

QRect PlasmaDesktop::panel() const {
    return session_.frameOf(QStringLiteral("all().filter(window => window.dock)[0]"));
}

QString PlasmaDesktop::setPanelHiding(const QString& how) {
    QDBusMessage script = QDBusMessage::createMethodCall(
        QStringLiteral("org.kde.plasmashell"), QStringLiteral("/PlasmaShell"),
        QStringLiteral("org.kde.PlasmaShell"), QStringLiteral("evaluateScript"));
    script << QStringLiteral("panels()[0].hiding = '%1'; print(panels()[0].hiding)").arg(how);
    const QDBusReply<QString> printed = session_.bus().call(script);
    EXPECT_TRUE(printed.isValid()) << printed.error().message().toStdString();
    return printed.value().trimmed();
}

QRect PlasmaDesktop::workArea() const {
    return session_.frameOf(
        QStringLiteral("({frameGeometry: workspace.clientArea(KWin.MaximizeArea, all()[0])})"));
}

QImage PlasmaDesktop::tray() const {
    // The clock, and what clears the desktop.
    constexpr int tellsTime = 150;
    const QRect whole = panel();
    return session_.picture().copy(whole.adjusted(whole.width() / 2, 0, -tellsTime, 0) &
                                   session_.displays().front());
}

std::optional<QPoint> PlasmaDesktop::newItem() const {
    constexpr int icon = 22;
    const QImage now = tray();
    for (int x = 0; x < now.width(); ++x)
        for (int y = 0; y < now.height(); ++y)
            if (now.pixel(x, y) != first_.pixel(x, y))
                return QPoint(panel().center().x() + x + icon / 2, panel().center().y());
    return std::nullopt;
}

bool PlasmaDesktop::isKeptAwake() const {
    constexpr unsigned display = 4;
    QDBusMessage question =
        QDBusMessage::createMethodCall(QStringLiteral("org.kde.Solid.PowerManagement.PolicyAgent"),
                                       QStringLiteral("/org/kde/Solid/PowerManagement/PolicyAgent"),
                                       QStringLiteral("org.kde.Solid.PowerManagement.PolicyAgent"),
                                       QStringLiteral("HasInhibition"));
    question << display;
    const QDBusReply<bool> answer = session_.bus().call(question);
    EXPECT_TRUE(answer.isValid()) << answer.error().message().toStdString();
    return answer.value();
}

} // namespace tilewright::testing
