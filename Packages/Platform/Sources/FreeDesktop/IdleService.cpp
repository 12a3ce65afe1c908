#include "IdleService.h"

#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace tilewright {

namespace {

/// The flag of session managers and of the portal for "the session may not be marked idle".
constexpr quint32 idleFlag = 8;

QVariantList named(const QString& application, const QString& reason) {
    return {application, reason};
}

QVariantList forSessionManager(const QString& application, const QString& reason) {
    constexpr quint32 noWindow = 0;
    return {application, noWindow, reason, idleFlag};
}

QVariantList forPortal(const QString& /*application*/, const QString& reason) {
    const QString noWindow;
    return {noWindow, idleFlag, QVariantMap{{u"reason"_s, reason}}};
}

QVariantList forLoginManager(const QString& application, const QString& reason) {
    return {u"idle"_s, application, reason, u"block"_s};
}

IdleService sessionService(const QString& name, const QStringList& paths,
                           const QString& interface) {
    IdleService service;
    service.name = name;
    service.paths = paths;
    service.interface = interface;
    service.arguments = named;
    service.release = u"UnInhibit"_s;
    return service;
}

std::vector<IdleService> allServices() {
    std::vector<IdleService> services{
        sessionService(u"org.freedesktop.ScreenSaver"_s,
                       {u"/org/freedesktop/ScreenSaver"_s, u"/ScreenSaver"_s},
                       u"org.freedesktop.ScreenSaver"_s),
        sessionService(u"org.freedesktop.PowerManagement"_s,
                       {u"/org/freedesktop/PowerManagement/Inhibit"_s},
                       u"org.freedesktop.PowerManagement.Inhibit"_s),
        sessionService(u"org.mate.ScreenSaver"_s, {u"/org/mate/ScreenSaver"_s},
                       u"org.mate.ScreenSaver"_s),
        sessionService(u"org.xfce.ScreenSaver"_s, {u"/org/xfce/ScreenSaver"_s},
                       u"org.xfce.ScreenSaver"_s),
    };

    IdleService sessionManager =
        sessionService(u"org.gnome.SessionManager"_s, {u"/org/gnome/SessionManager"_s},
                       u"org.gnome.SessionManager"_s);
    sessionManager.arguments = forSessionManager;
    sessionManager.release = u"Uninhibit"_s;
    services.push_back(sessionManager);

    IdleService portal =
        sessionService(u"org.freedesktop.portal.Desktop"_s, {u"/org/freedesktop/portal/desktop"_s},
                       u"org.freedesktop.portal.Inhibit"_s);
    portal.grant = IdleService::Grant::request;
    portal.arguments = forPortal;
    services.push_back(portal);

    IdleService loginManager =
        sessionService(u"org.freedesktop.login1"_s, {u"/org/freedesktop/login1"_s},
                       u"org.freedesktop.login1.Manager"_s);
    loginManager.bus = IdleService::Bus::system;
    loginManager.grant = IdleService::Grant::descriptor;
    loginManager.arguments = forLoginManager;
    services.push_back(loginManager);
    return services;
}

} // namespace

const std::vector<IdleService>& idleServices() {
    static const std::vector<IdleService> services = allServices();
    return services;
}

} // namespace tilewright
